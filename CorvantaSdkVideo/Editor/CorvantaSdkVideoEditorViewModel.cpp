#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <CorvantaSdkVideo/Editor/Player/QtMediaPlayer.hpp>
#include <CorvantaSdkVideo/Editor/QtExecutor.hpp>
#include <CorvantaSdkVideo/Editor/StripThumbnails.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <platform/UUID.hpp>

#include <QCoreApplication>

#include <boost/asio/post.hpp>

#include <string>
#include <string_view>
#include <utility>

namespace corvanta {

namespace {

URL locationFor(const std::optional<CorvantaSdkVideoFileDescriptor>& output) {
    const std::string_view fileExtension = FileExtension(FileExtension::mp4).rawValue();
    if (const auto chosen = output ? output->url(fileExtension) : std::nullopt) {
        return *chosen;
    }
    return CorvantaSdkVideoUtils::outputURL(uuidString(makeUUID()), fileExtension);
}

} // namespace

CorvantaSdkVideoEditorViewModel::CorvantaSdkVideoEditorViewModel(
    std::shared_ptr<CorvantaSdkVideoEditor> editor, VideosInformationGenerator videosInformationGenerator,
    const std::shared_ptr<CorvantaCredentialsManager>& credentialsManager, const CorvantaSdkVideoFile& input,
    const std::optional<CorvantaSdkVideoFileDescriptor>& output, Completion completion,
    const MakeMediaPlayer& makeMediaPlayer)
    : editor_(std::move(editor)), videosInformationGenerator_(std::move(videosInformationGenerator)),
      videoURL_(input.url()), outputURL_(locationFor(output)),
      isAuthenticated_(credentialsManager->isUserAuthenticated()),
      completion_(completion ? std::move(completion) : [](const CorvantaSdkVideoEditorResult&) {}),
      stripThumbnails_(std::make_unique<StripThumbnails>(editor_, videoURL_, thumbnailCount)),
      videoPlayer_(makeMediaPlayer ? makeMediaPlayer(videoURL_) : QtMediaPlayer::make(videoURL_)) {
    connect(videoPlayer_.get(), &MediaPlayer::didPlayToEndTime, this, &ViewModel::onDidFinishPlaying);
    connect(videoPlayer_.get(), &MediaPlayer::timeObserved, this, [this](double seconds) {
        if (seconds >= stopAt()) {
            onDidFinishPlaying();
        }
    });
    connect(videoPlayer_.get(), &MediaPlayer::failed, this, [this] { tellWhatIsWrong(fileNotice_, true); });
    connect(videoPlayer_.get(), &MediaPlayer::recovered, this,
            [this] { tellWhatIsWrong(fileNotice_, false); });
    connect(videoPlayer_.get(), &MediaPlayer::positionChanged, this, &ViewModel::followPlayer);
    connect(stripThumbnails_.get(), &StripThumbnails::made, this, &ViewModel::setThumbnail);
}

CorvantaSdkVideoEditorViewModel::~CorvantaSdkVideoEditorViewModel() = default;

void CorvantaSdkVideoEditorViewModel::showTrimmer() { showTab(true, false, false); }

void CorvantaSdkVideoEditorViewModel::showSound() { showTab(false, true, false); }

void CorvantaSdkVideoEditorViewModel::showRotation() { showTab(false, false, true); }

void CorvantaSdkVideoEditorViewModel::showTab(bool trimmer, bool sound, bool rotation) {
    isTrimmerVisible_ = trimmer;
    isSoundVisible_ = sound;
    isRotationVisible_ = rotation;
}

void CorvantaSdkVideoEditorViewModel::trimVideo(Handler handler) {
    startEdit({videoURL_, outputURL_, trimmerStart(), stopAt(), videoRotation() + currentRotation(),
               videoPlayer_->volume()},
              std::move(handler));
}

void CorvantaSdkVideoEditorViewModel::closeTrimmer(Handler handler) {
    if (isTrimming() || isClosing_ || hasEnded()) {
        return;
    }
    isClosing_ = true;
    Logger::addLog(Event::editVideo, EventMessage::closeEditVideoScreen());
    const CorvantaSdkVideoEditorResult withoutEdit;
    boost::asio::post(QtExecutor(), [model = QPointer(this), withoutEdit, handler = std::move(handler)] {
        if (model) {
            model->end(withoutEdit, handler);
        }
    });
}

void CorvantaSdkVideoEditorViewModel::end(const CorvantaSdkVideoEditorResult& result,
                                          const Handler& handler) {
    const QPointer<ViewModel> self = this;
    std::exchange(completion_, nullptr)(result);
    // The handler closes the screen, which has gone with the view model.
    if (self && handler) {
        handler();
    }
}

QString CorvantaSdkVideoEditorViewModel::errorDescription() const {
    const auto present = error();
    const std::string text(present ? present->description() : std::string_view());
    return text.empty() ? QString() : QCoreApplication::translate("CorvantaSdkVideoEditor", text.c_str());
}

} // namespace corvanta
