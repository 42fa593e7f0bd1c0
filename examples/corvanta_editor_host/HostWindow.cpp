#include "HostWindow.hpp"

#include "VideoFiles.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/Editor/Presentation/PresentCorvantaSdkVideoEditorView.hpp>

#include <QDesktopServices>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QSettings>
#include <QShortcut>
#include <QStandardPaths>
#include <QUrl>
#include <QWindow>

#include <cstdio>
#include <exception>
#include <memory>

using namespace corvanta;

namespace {

QStringList localFiles(const QMimeData& data) {
    QStringList files;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) {
            files.append(url.toLocalFile());
        }
    }
    return files;
}

} // namespace

HostWindow::HostWindow(const QStringList& recentVideos)
    : invitation_(QStringLiteral("Drop a video here")), chooser_(QStringLiteral("&Open a video…")),
      recentTitle_(QStringLiteral("&Recently used on this desktop")),
      folder_(QStringLiteral("&Show it in its folder")) {
    setWindowTitle(QStringLiteral("Corvanta editor"));
    setAcceptDrops(true);
    layout_.setContentsMargins(24, 24, 24, 24);
    layout_.setSpacing(12);
    QFont font = invitation_.font();
    font.setPointSizeF(font.pointSizeF() * 1.5);
    invitation_.setFont(font);
    invitation_.setAlignment(Qt::AlignCenter);
    invitation_.setStyleSheet(
        QStringLiteral("border: 2px dashed palette(mid); border-radius: 12px; padding: 12px;"));
    message_.setAlignment(Qt::AlignCenter);
    message_.setWordWrap(true);
    message_.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    layout_.addWidget(&invitation_, 1);
    layout_.addWidget(&chooser_);
    addRecent(recentVideos);
    layout_.addWidget(&message_);
    layout_.addWidget(&folder_);
    folder_.hide();
    connect(&chooser_, &QPushButton::clicked, this, &HostWindow::choose);
    connect(&folder_, &QPushButton::clicked, this,
            [this] { QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(edited_).absolutePath())); });
    const auto onKey = [this](const QKeySequence& keys, auto slot) {
        connect(std::make_unique<QShortcut>(keys, this).release(), &QShortcut::activated, this, slot);
    };
    onKey(QKeySequence::Open, &HostWindow::choose);
    for (const QKeySequence& keys : {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::Key_Q)}) {
        onKey(keys, &QWidget::close);
    }
    chooser_.setFocus();
}

void HostWindow::addRecent(const QStringList& videos) {
    if (videos.isEmpty()) {
        return;
    }
    for (const QString& video : videos) {
        QListWidgetItem* const item =
            std::make_unique<QListWidgetItem>(QFileInfo(video).fileName(), &recent_).release();
        item->setData(Qt::UserRole, video);
        item->setToolTip(video);
    }
    recent_.setTextElideMode(Qt::ElideMiddle);
    recent_.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    recent_.setMaximumHeight(recent_.sizeHintForRow(0) * static_cast<int>(videos.size()) +
                             2 * recent_.frameWidth());
    recentTitle_.setBuddy(&recent_);
    layout_.addWidget(&recentTitle_);
    layout_.addWidget(&recent_);
    connect(&recent_, &QListWidget::itemActivated, this,
            [this](const QListWidgetItem* item) { open(item->data(Qt::UserRole).toString()); });
    connect(&recent_, &QListWidget::itemClicked, this,
            [this](const QListWidgetItem* item) { open(item->data(Qt::UserRole).toString()); });
}

void HostWindow::edit(const QString& video, const QString& output) {
    winId(); // The window behind it is there before it has been shown.
    isEditing_ = presentCorvantaSdkVideoEditorView(
        windowHandle(), CorvantaSdkVideoFile(URL::fromFilePath(video.toStdString())),
        CorvantaSdkVideoFileDescriptor::custom(parseablePath(output.toStdString())),
        [this](const CorvantaSdkVideoEditorResult& result) { finish(result); });
}

void HostWindow::open(const QString& file) {
    if (isEditing_) {
        return;
    }
    folder_.hide();
    message_.clear();
    if (const std::string reason = reasonAgainst(file); !reason.empty()) {
        message_.setText(QString::fromStdString(reason));
        return;
    }
    try {
        edit(QFileInfo(file).absoluteFilePath(), placeForEdit(file));
    } catch (const std::exception& error) {
        message_.setText(QString::fromStdString(error.what()));
    }
}

void HostWindow::choose() {
    if (isEditing_ || (dialog_ && dialog_->isVisible())) {
        return;
    }
    // Where a desktop has no dialog Qt's own comes, which keeps the folders that it has been in.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, forgotten_.path());
    dialog_ = std::make_unique<QFileDialog>(this, chooser_.text().remove('&'));
    dialog_->setFileMode(QFileDialog::ExistingFile);
    dialog_->setNameFilters(
        {QStringLiteral("Videos (*.mp4 *.m4v *.mov *.mkv *.webm *.avi *.mpg *.mpeg *.ts *.mts "
                        "*.m2ts *.3gp *.ogv *.flv *.wmv)"),
         QStringLiteral("All files (*)")});
    dialog_->setOption(QFileDialog::HideNameFilterDetails);
    const QString videos = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    dialog_->setDirectory(QFileInfo(videos).isDir() ? videos : QDir::homePath());
    connect(dialog_.get(), &QFileDialog::fileSelected, this, &HostWindow::open);
    dialog_->open();
}

void HostWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!isEditing_ && !localFiles(*event->mimeData()).isEmpty()) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
}

void HostWindow::dropEvent(QDropEvent* event) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
    const QStringList files = localFiles(*event->mimeData());
    if (files.size() > 1) {
        message_.setText(QStringLiteral("One video at a time, please"));
        return;
    }
    // Whoever the file comes from waits for the answer, and a probe takes its time.
    QMetaObject::invokeMethod(
        this, [this, file = files.front()] { open(file); }, Qt::QueuedConnection);
}

void HostWindow::finish(const CorvantaSdkVideoEditorResult& result) {
    isEditing_ = false;
    if (!result.editedVideoURL) {
        message_.setText(QStringLiteral("Left without an edit"));
        return;
    }
    const std::string path = result.editedVideoURL->path();
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    edited_ = QString::fromStdString(path);
    message_.setText(edited_);
    folder_.show();
}
