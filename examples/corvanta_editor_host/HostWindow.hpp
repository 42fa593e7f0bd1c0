#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoEditorResult.hpp>

#include <QFileDialog>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QWidget>

#include <memory>

/// The host's own window, which the editor covers while it is open. Takes a video that is dropped on it,
/// chosen in a dialog or in a list, and tells what came of it; an edited file's path goes to standard output
/// as well.
class HostWindow : public QWidget {
  public:
    /// `recentVideos` is what the list offers; without any there is none.
    explicit HostWindow(const QStringList& recentVideos);

    /// Opens the editor on a file that can be edited, which writes to `output`, a path without its extension.
    /// Throws what presentCorvantaSdkVideoEditorView does.
    void edit(const QString& video, const QString& output);

    /// The same on any file, beside which it writes; says what is in the way of that.
    void open(const QString& file);

    /// Asks for a file, and opens that.
    void choose();

    bool isEditing() const { return isEditing_; }
    QString message() const { return message_.text(); }

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void addRecent(const QStringList& videos);
    void finish(const corvanta::CorvantaSdkVideoEditorResult& result);

    QVBoxLayout layout_{this};
    QLabel invitation_;
    QPushButton chooser_;
    QLabel recentTitle_;
    QListWidget recent_;
    QLabel message_;
    QPushButton folder_;
    QString edited_;
    QTemporaryDir forgotten_;
    std::unique_ptr<QFileDialog> dialog_;
    bool isEditing_ = false;
};
