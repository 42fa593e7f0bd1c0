#pragma once

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>
#include <CorvantaSdkVideo/Editor/Views/FrameConverter.hpp>

#include <QImage>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QVideoFrame>
#include <QVideoSink>
#include <QtQmlIntegration/qqmlintegration.h>

namespace corvanta {

/// Shows the frames of the view model's player, fitted into the item, on black with rounded corners. It
/// paints them itself: that works on every scene graph, and clips to the corners.
class CorvantaSdkVideoPlayer : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(corvanta::CorvantaSdkVideoEditorViewModel* viewModel READ viewModel WRITE setViewModel NOTIFY
                   viewModelChanged)
    Q_PROPERTY(double radius MEMBER radius_ NOTIFY radiusChanged)
    Q_PROPERTY(double frameAspectRatio READ frameAspectRatio NOTIFY frameAspectRatioChanged)

  public:
    explicit CorvantaSdkVideoPlayer(QQuickItem* parent = nullptr);
    ~CorvantaSdkVideoPlayer() override;

    CorvantaSdkVideoEditorViewModel* viewModel() const { return viewModel_; }
    void setViewModel(CorvantaSdkVideoEditorViewModel* viewModel);
    /// Width over height of the frames as they are shown; 0 before the first one.
    double frameAspectRatio() const { return frameAspectRatio_; }

    void paint(QPainter* painter) override;

  Q_SIGNALS:
    void viewModelChanged();
    void radiusChanged();
    void frameAspectRatioChanged();

  protected:
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;

  private:
    void takeFrame(const QVideoFrame& frame);
    void detach();

    QPointer<CorvantaSdkVideoEditorViewModel> viewModel_;
    QPointer<MediaPlayer> player_;
    QVideoSink sink_;
    double radius_ = 0;
    double frameAspectRatio_ = 0;
    QVideoFrame frame_;

    // The scene graph's thread alone touches these, after they were handed over while the other one waited.
    QVideoFrame paintedFrame_;
    PictureColors paintedColors_;
    FrameConverter converter_;
    QImage paintedImage_;
    QSize paintedRoom_;
};

} // namespace corvanta
