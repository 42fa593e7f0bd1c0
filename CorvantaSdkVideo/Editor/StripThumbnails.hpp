#pragma once

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditor.hpp>
#include <CorvantaSdkVideo/Editor/PictureColors.hpp>
#include <platform/Task.hpp>
#include <platform/URL.hpp>

#include <QImage>
#include <QObject>
#include <QPointer>
#include <QSize>

#include <functional>
#include <memory>

namespace corvanta {

/// Makes the thumbnails of a clip in even steps, one at a time, on the editor's worker. Lives on the Qt
/// thread; destroyed, it ends the run for the one that is being made.
class StripThumbnails : public QObject {
    Q_OBJECT

  public:
    StripThumbnails(std::shared_ptr<CorvantaSdkVideoEditor> editor, URL video, int count);
    ~StripThumbnails() override;

    /// Makes them all for a clip of `duration` seconds, anew if some are being made. After one that can't be
    /// made no other follows.
    void make(double duration, QSize pixels, const PictureColors& colors);

    bool isMaking() const { return isMaking_; }
    /// What the newest ones are made for; not valid before there are any.
    QSize pixels() const { return pixels_; }

  Q_SIGNALS:
    void made(int index, const QImage& picture);

  private:
    static Task<> makeAll(QPointer<StripThumbnails> strip, std::shared_ptr<CorvantaSdkVideoEditor> editor,
                          URL video);

    const std::shared_ptr<CorvantaSdkVideoEditor> editor_;
    const URL video_;
    const int count_;
    double duration_ = 0;
    QSize pixels_;
    PictureColors colors_;
    /// Counts the calls of `make`.
    int round_ = 0;
    bool isMaking_ = false;
    /// Ends the run for the one that is being made; empty while none is.
    std::function<void()> stop_;
};

} // namespace corvanta
