#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoFile.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>
#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>
#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditor.hpp>
#include <CorvantaSdkVideo/Editor/Player/MediaPlayer.hpp>
#include <CorvantaSdkVideo/Editor/TrimmerGeometry.hpp>
#include <CorvantaSdkVideo/Editor/Views/CorvantaColor.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Shared/VideosInformationGenerator.hpp>

#include <QColor>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QProperty>
#include <QRectF>
#include <QSize>
#include <QSizeF>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace corvanta {

class StripThumbnails;

/// The editor's whole state and all its rules; the screen shows the properties and forwards gestures.
///
/// Lives on the Qt application's thread and is used there alone. Lengths are in points, times in seconds.
/// Destroying it ends its thumbnails quietly; an edit that runs then is finished, and nobody is told.
class CorvantaSdkVideoEditorViewModel : public QObject {
    Q_OBJECT

    // The trimmer
    Q_PROPERTY(QSizeF trimmerSize READ trimmerSize NOTIFY trimmerSizeChanged)
    Q_PROPERTY(QSizeF thumbnailSize READ thumbnailSize NOTIFY thumbnailSizeChanged)
    Q_PROPERTY(double trimmerXOffset READ trimmerXOffset NOTIFY trimmerXOffsetChanged)
    Q_PROPERTY(double leftSpaceSize READ leftSpaceSize NOTIFY leftSpaceSizeChanged)
    Q_PROPERTY(double rightSpaceSize READ rightSpaceSize NOTIFY rightSpaceSizeChanged)
    Q_PROPERTY(bool showRightWhiteSpace READ showRightWhiteSpace NOTIFY showRightWhiteSpaceChanged)
    Q_PROPERTY(QColor trimmerBorderColor READ trimmerBorderColor NOTIFY trimmerBorderColorChanged)
    Q_PROPERTY(QList<QImage> thumbnails READ thumbnails NOTIFY thumbnailsChanged)
    Q_PROPERTY(QString trimmerRange READ trimmerRange NOTIFY trimmerRangeChanged)
    Q_PROPERTY(double trimmerStart READ trimmerStart NOTIFY trimmerStartChanged)
    Q_PROPERTY(double stopAt READ stopAt NOTIFY stopAtChanged)
    Q_PROPERTY(bool isTrimmerRangeVisible READ isTrimmerRangeVisible NOTIFY isTrimmerRangeVisibleChanged)
    Q_PROPERTY(int thumbnailCount MEMBER thumbnailCount CONSTANT)
    Q_PROPERTY(int totalTrimmerHorizontalPadding READ totalTrimmerHorizontalPadding CONSTANT)
    Q_PROPERTY(double frameDistance READ frameDistance NOTIFY isReadyChanged)
    Q_PROPERTY(double frameDuration READ frameDuration NOTIFY isReadyChanged)
    Q_PROPERTY(double videoDuration READ videoDuration NOTIFY isReadyChanged)
    Q_PROPERTY(double keptLength READ keptLength NOTIFY keptLengthChanged)
    Q_PROPERTY(bool keepsAll READ keepsAll NOTIFY keepsAllChanged)
    Q_PROPERTY(double pixelRatio MEMBER pixelRatio_)

    // Playback, sound and rotation
    Q_PROPERTY(bool didFinishPlaying READ didFinishPlaying NOTIFY didFinishPlayingChanged)
    Q_PROPERTY(bool isPlaying READ isPlaying NOTIFY isPlayingChanged)
    Q_PROPERTY(bool videoIsInPortraitMode READ videoIsInPortraitMode NOTIFY videoIsInPortraitModeChanged)
    Q_PROPERTY(QString soundIcon READ soundIcon NOTIFY soundIconChanged)
    Q_PROPERTY(QColor soundIconColor READ soundIconColor NOTIFY soundIconColorChanged)
    Q_PROPERTY(QColor soundBackgroundColor READ soundBackgroundColor NOTIFY soundBackgroundColorChanged)
    Q_PROPERTY(int videoRotation READ videoRotation NOTIFY videoRotationChanged)
    Q_PROPERTY(double videoAspectRatio READ videoAspectRatio NOTIFY videoAspectRatioChanged)
    Q_PROPERTY(double volumeHeight READ volumeHeight NOTIFY volumeHeightChanged)
    Q_PROPERTY(bool hasSound READ hasSound NOTIFY isReadyChanged)

    // Tabs and the course of the editor
    Q_PROPERTY(bool isTrimmerVisible READ isTrimmerVisible NOTIFY isTrimmerVisibleChanged)
    Q_PROPERTY(bool isSoundVisible READ isSoundVisible NOTIFY isSoundVisibleChanged)
    Q_PROPERTY(bool isRotationVisible READ isRotationVisible NOTIFY isRotationVisibleChanged)
    Q_PROPERTY(bool isReady READ isReady NOTIFY isReadyChanged)
    Q_PROPERTY(bool isUnreadable READ isUnreadable NOTIFY noticeChanged)
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged)
    Q_PROPERTY(bool isTrimming READ isTrimming NOTIFY isTrimmingChanged)
    Q_PROPERTY(double editProgress READ editProgress NOTIFY editProgressChanged)
    Q_PROPERTY(bool isAuthenticated READ isAuthenticated CONSTANT)
    Q_PROPERTY(bool hasError READ hasError NOTIFY errorChanged)
    Q_PROPERTY(QString errorDescription READ errorDescription NOTIFY errorChanged)

  public:
    static constexpr int thumbnailCount = 8;
    static constexpr int trimmerHeight = 64;
    static constexpr int trimmerHorizontalPadding = 16;
    static constexpr double thumbnailListHorizontalPadding = 24;
    static constexpr double thumbnailHorizontalPadding = TrimmerGeometry::thumbnailHorizontalPadding;
    static constexpr double spacing = 20;
    static constexpr double tabOptionsHeight = 20;
    static constexpr double spacersMinimumHeight = 20;
    static constexpr double playerActionButtonSize = 50;
    static constexpr double initialVolumeHeight = 192;

    using Completion = std::function<void(const CorvantaSdkVideoEditorResult&)>;
    using Handler = std::function<void()>;

    /// Without `output`, or if it gives no URL, a new file in the documents directory is written.
    /// `completion` is called at most once, on the Qt thread; it may destroy the view model, and must not
    /// throw. Without `makeMediaPlayer` it plays with QtMediaPlayer. Throws what making the player throws.
    CorvantaSdkVideoEditorViewModel(std::shared_ptr<CorvantaSdkVideoEditor> editor,
                                    VideosInformationGenerator videosInformationGenerator,
                                    const std::shared_ptr<CorvantaCredentialsManager>& credentialsManager,
                                    const CorvantaSdkVideoFile& input,
                                    const std::optional<CorvantaSdkVideoFileDescriptor>& output,
                                    Completion completion, const MakeMediaPlayer& makeMediaPlayer = {});
    ~CorvantaSdkVideoEditorViewModel() override;

    /// Lays the trimmer out for the size that the screen has, and starts to read the file and to make its
    /// thumbnails. What can't be read leaves blank thumbnails and a duration of 0, and a `notice`. A second
    /// call starts anew, but for `trimmerStart`.
    Q_INVOKABLE void setupTrimmer(const QSizeF& forScreenSize);

    /// Lays the trimmer out for another size of the screen; the chosen range stays, in seconds.
    Q_INVOKABLE void resizeTrimmer(const QSizeF& forScreenSize);
    /// Makes the thumbnails anew if they were made for another width or `pixelRatio`.
    Q_INVOKABLE void renewThumbnails();

    /// Each change of a drag on the strip: where the pointer is, in the strip's own coordinates, and the
    /// strip's own rectangle. A location outside of it, its right and lower sides included, is ignored.
    Q_INVOKABLE void applyTrimming(const QPointF& location, const QRectF& strip);

    /// Move an edge, or the whole range, by a distance on the strip: up to the strip's very ends, and up to
    /// the least distance of the edges. Nothing before the file has been read.
    Q_INVOKABLE void moveStartBy(double distance);
    Q_INVOKABLE void moveEndBy(double distance);
    Q_INVOKABLE void moveRangeBy(double distance);
    /// Keeps what lies between two times, as far as the clip has it and the edges can stand so close. Nothing
    /// before the file has been read.
    Q_INVOKABLE void keep(double start, double end);
    /// Keeps the whole clip again. Turn and volume stay.
    Q_INVOKABLE void resetRange();

    /// Whether a drag that begins there, inside of the frame, is on none of its parts.
    Q_INVOKABLE bool isFreeAt(double position) const;
    /// Whether a tap there is inside of the frame and beside what shows of the handles.
    Q_INVOKABLE bool isBetweenHandlesAt(double position) const;
    /// The time that a position on the strip stands for.
    Q_INVOKABLE double secondsAt(double position) const { return geometry_.secondsAt(position); }

    Q_INVOKABLE void handleAction();
    /// Shows the picture at that time, which need not be a whole second; playing goes on from there.
    void seekTo(double seconds);

    Q_INVOKABLE void showTrimmer();
    Q_INVOKABLE void showSound();
    Q_INVOKABLE void showRotation();

    /// Each change of a drag on the sound bar, likewise; `translation` is the movement since it began.
    Q_INVOKABLE void changeVolume(const QPointF& location, const QSizeF& translation, const QRectF& bar);
    Q_INVOKABLE void muteVideo();

    Q_INVOKABLE void rotateLeft();
    Q_INVOKABLE void rotateRight();

    /// Confirms: runs the edit, and then `completion` and `handler`. A failure sets `error` and leaves the
    /// editor as it is. Does nothing while an edit runs and after the editor has ended.
    ///
    /// The edit records `videoRotation` plus `currentRotation`, whose senses are opposite: a clip whose probe
    /// states a quarter turn comes out at 180 degrees to what the screen shows.
    void trimVideo(Handler handler);
    /// The same with a cut that has been chosen, and with the picture coming out as the screen shows it: the
    /// file's own turn and the chosen one on top.
    void trimVideo(CorvantaSdkVideoCut cut, Handler handler);
    /// Ends an edit that runs; the editor stays as it is. An output that wasn't there before goes.
    Q_INVOKABLE void cancelEdit();

    /// Cancels: calls `completion` without a URL and then `handler`, from the event loop. Does nothing while
    /// an edit runs and after the editor has ended.
    void closeTrimmer(Handler handler);

    /// For the alert that has shown `error`.
    Q_INVOKABLE void clearError() { error_ = std::nullopt; }

    QSizeF trimmerSize() const { return trimmerSize_; }
    QSizeF thumbnailSize() const { return thumbnailSize_; }
    double trimmerXOffset() const { return trimmerXOffset_; }
    double leftSpaceSize() const { return leftSpaceSize_; }
    double rightSpaceSize() const { return rightSpaceSize_; }
    bool showRightWhiteSpace() const { return showRightWhiteSpace_; }
    QColor trimmerBorderColor() const { return trimmerBorderColor_; }
    QList<QImage> thumbnails() const { return thumbnails_; }
    QString trimmerRange() const { return trimmerRange_; }
    double trimmerStart() const { return trimmerStart_; }
    double stopAt() const { return stopAt_; }
    bool isTrimmerRangeVisible() const { return isTrimmerRangeVisible_; }

    /// What one frame of the file takes on the strip.
    double frameDistance() const;
    /// 0 before the file has been read.
    double frameDuration() const { return frameDuration_; }
    double keptLength() const { return keptLength_; }
    /// Whether the range is the whole clip, by what a hand can tell.
    bool keepsAll() const { return keepsAll_; }
    /// Whether an edit would change anything.
    Q_INVOKABLE bool hasChanges() const;
    /// Of a thumbnail on the strip.
    QSize thumbnailPixels() const;
    /// What was read of the file; nothing before, and of a file that can't be read.
    const std::optional<CorvantaSdkVideoInformation>& information() const { return information_; }
    bool isMakingThumbnails() const;

    double screenWidth() const { return screenWidth_; }
    double screenHeight() const { return screenHeight_; }
    /// The centres of the grab handles, 12 points inside the frame's outer sides.
    double leftEdgePosition() const { return geometry_.leftEdge(); }
    double rightEdgePosition() const { return geometry_.rightEdge(); }
    double trimmerRightEdgePosition() const { return geometry_.rightSide(); }
    double videoDuration() const { return geometry_.duration(); }
    QSizeF videoResolution() const;
    std::optional<Orientation> videoOrientation() const;

    static constexpr int totalTrimmerHorizontalPadding() { return 2 * trimmerHorizontalPadding; }
    static constexpr double totalThumbnailListHorizontalPadding() {
        return 2 * thumbnailListHorizontalPadding;
    }
    double trimmerInitialWidth() const { return screenWidth_ - totalTrimmerHorizontalPadding(); }
    double trimmerCenter() const { return geometry_.center(); }

    bool didFinishPlaying() const { return didFinishPlaying_; }
    bool isPlaying() const { return isPlaying_; }
    bool videoIsInPortraitMode() const { return videoIsInPortraitMode_; }
    /// The symbol's name.
    QString soundIcon() const { return soundIcon_; }
    QColor soundIconColor() const { return soundIconColor_; }
    QColor soundBackgroundColor() const { return soundBackgroundColor_; }
    /// Degrees clockwise, chosen by the user; negative if the user went to the left.
    int videoRotation() const { return videoRotation_; }
    /// Width over height.
    double videoAspectRatio() const { return videoAspectRatio_; }
    double volumeHeight() const { return volumeHeight_; }
    /// What `muteVideo` comes back to; 0 before the first mute.
    double previousVolumeHeight() const { return previousVolumeHeight_; }
    /// Degrees, as the file's probe states them.
    std::int64_t currentRotation() const { return information_ ? information_->rotation() : 0; }

    /// Whether the file has a sound track.
    bool hasSound() const { return information_ && !information_->audios.empty(); }

    /// The file has been read: it has a length, and can be edited.
    bool isReady() const { return isReady_; }
    /// It has been tried, and can't be.
    bool isUnreadable() const { return isUnreadable_; }
    /// What is wrong with the file, in words for the user; empty if nothing is, as far as it is known.
    QString notice() const { return notice_; }

    bool isTrimmerVisible() const { return isTrimmerVisible_; }
    bool isSoundVisible() const { return isSoundVisible_; }
    bool isRotationVisible() const { return isRotationVisible_; }
    bool isTrimming() const { return isTrimming_; }
    /// How far the edit that runs has come, 0 to 1.
    double editProgress() const { return editProgress_; }
    bool isAuthenticated() const { return isAuthenticated_; }
    std::optional<CorvantaSdkVideoError> error() const { return error_; }
    bool hasError() const { return error().has_value(); }
    QString errorDescription() const;

    const URL& videoURL() const { return videoURL_; }
    const URL& outputURL() const { return outputURL_; }
    MediaPlayer& videoPlayer() const { return *videoPlayer_; }
    const std::shared_ptr<CorvantaSdkVideoEditor>& editor() const { return editor_; }

  Q_SIGNALS:
    void trimmerSizeChanged();
    void thumbnailSizeChanged();
    void trimmerXOffsetChanged();
    void leftSpaceSizeChanged();
    void rightSpaceSizeChanged();
    void showRightWhiteSpaceChanged();
    void trimmerBorderColorChanged();
    void thumbnailsChanged();
    void trimmerRangeChanged();
    void trimmerStartChanged();
    void stopAtChanged();
    void isTrimmerRangeVisibleChanged();
    void didFinishPlayingChanged();
    void isPlayingChanged();
    void videoIsInPortraitModeChanged();
    void soundIconChanged();
    void soundIconColorChanged();
    void soundBackgroundColorChanged();
    void videoRotationChanged();
    void videoAspectRatioChanged();
    void volumeHeightChanged();
    void isTrimmerVisibleChanged();
    void isSoundVisibleChanged();
    void isRotationVisibleChanged();
    void isReadyChanged();
    void noticeChanged();
    void isTrimmingChanged();
    void editProgressChanged();
    void keepsAllChanged();
    void keptLengthChanged();
    void errorChanged();

  private:
    using ViewModel = CorvantaSdkVideoEditorViewModel;

    void setupInitialUI();
    void updateUIforTrimmingIfNeeded();
    void moveRightEdge(double position);
    void moveLeftEdge(double position);
    void moveTrimmerCenter(double position);
    void setRightSpaceSize(double size);
    void setTrimmerStart(double seconds);
    void setStopAt(double seconds);
    void updateRange();
    void showFrame();

    void takeInformation(const CorvantaSdkVideoInformation& information, double duration);
    void tellWhatIsWrong(const QString& file, bool playerHasFailed);
    void generateThumbnails();
    void setThumbnail(int index, const QImage& image);

    void play();
    void pause();
    void seek(double seconds);
    void onDidFinishPlaying();
    void followPlayer(double seconds);
    void setVolumeHeight(double height);
    void checkVideoOrientation();
    void showTab(bool trimmer, bool sound, bool rotation);

    bool hasEnded() const { return !completion_; }
    void startEdit(CorvantaSdkVideoEditorInput input, Handler handler);
    /// The view model may be gone afterwards.
    void end(const CorvantaSdkVideoEditorResult& result, const Handler& handler);

    // These hold the view model weakly, and look at it on the Qt thread alone.
    static Task<> readVideo(QPointer<ViewModel> model, VideosInformationGenerator generator, URL video);
    static Task<> runEdit(QPointer<ViewModel> model, std::shared_ptr<CorvantaSdkVideoEditor> editor,
                          CorvantaSdkVideoEditorInput input, Handler handler);

    const std::shared_ptr<CorvantaSdkVideoEditor> editor_;
    const VideosInformationGenerator videosInformationGenerator_;
    const URL videoURL_;
    const URL outputURL_;
    const bool isAuthenticated_;
    /// Empty once the editor has ended.
    Completion completion_;

    double screenWidth_ = 0;
    double screenHeight_ = 0;
    TrimmerGeometry geometry_{trimmerInitialWidth()};
    bool isUnreadable_ = false;
    QString fileNotice_;
    bool playerHasFailed_ = false;
    double frameDuration_ = 0;
    /// Where the player stands, in seconds.
    double playerPosition_ = 0;
    std::optional<CorvantaSdkVideoInformation> information_;
    double previousVolumeHeight_ = 0;
    bool isClosing_ = false;
    /// Ends the edit that runs; empty while none does.
    std::function<void()> stopEdit_;

    /// The screen's pixels in a point.
    double pixelRatio_ = 1;
    const std::unique_ptr<StripThumbnails> stripThumbnails_;

// Assigning to one of these emits its signal if the value has changed.
#define CORVANTA_OBSERVABLE(Type, property, start)                                                           \
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(ViewModel, Type, property##_, start, &ViewModel::property##Changed)
    CORVANTA_OBSERVABLE(QSizeF, trimmerSize, QSizeF(0, 0))
    CORVANTA_OBSERVABLE(QSizeF, thumbnailSize, QSizeF(0, 0))
    CORVANTA_OBSERVABLE(double, trimmerXOffset, 0)
    CORVANTA_OBSERVABLE(double, leftSpaceSize, 0)
    CORVANTA_OBSERVABLE(double, rightSpaceSize, 0)
    CORVANTA_OBSERVABLE(bool, showRightWhiteSpace, false)
    CORVANTA_OBSERVABLE(QColor, trimmerBorderColor, CorvantaColor::gray)
    CORVANTA_OBSERVABLE(QList<QImage>, thumbnails, QList<QImage>(thumbnailCount))
    CORVANTA_OBSERVABLE(QString, trimmerRange, QString())
    CORVANTA_OBSERVABLE(double, trimmerStart, 0)
    CORVANTA_OBSERVABLE(double, stopAt, 0)
    CORVANTA_OBSERVABLE(bool, isTrimmerRangeVisible, false)
    CORVANTA_OBSERVABLE(bool, didFinishPlaying, false)
    CORVANTA_OBSERVABLE(bool, isPlaying, false)
    CORVANTA_OBSERVABLE(bool, videoIsInPortraitMode, true)
    CORVANTA_OBSERVABLE(QString, soundIcon, QStringLiteral("speaker.wave.3"))
    CORVANTA_OBSERVABLE(QColor, soundIconColor, QColor(Qt::white))
    CORVANTA_OBSERVABLE(QColor, soundBackgroundColor, CorvantaColor::gray)
    CORVANTA_OBSERVABLE(int, videoRotation, 0)
    CORVANTA_OBSERVABLE(double, videoAspectRatio, 0.5)
    CORVANTA_OBSERVABLE(double, volumeHeight, initialVolumeHeight)
    CORVANTA_OBSERVABLE(bool, isTrimmerVisible, true)
    CORVANTA_OBSERVABLE(bool, isSoundVisible, false)
    CORVANTA_OBSERVABLE(bool, isRotationVisible, false)
    CORVANTA_OBSERVABLE(bool, isReady, false)
    CORVANTA_OBSERVABLE(QString, notice, QString())
    CORVANTA_OBSERVABLE(bool, isTrimming, false)
    CORVANTA_OBSERVABLE(double, editProgress, 0)
    CORVANTA_OBSERVABLE(bool, keepsAll, true)
    CORVANTA_OBSERVABLE(double, keptLength, 0)
    CORVANTA_OBSERVABLE(std::optional<CorvantaSdkVideoError>, error, std::nullopt)
#undef CORVANTA_OBSERVABLE

    /// Goes first, since it may still emit.
    const std::unique_ptr<MediaPlayer> videoPlayer_;
};

} // namespace corvanta
