#pragma once

#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>

#include <QImage>

namespace corvanta {

/// By what a video's coded values are to be read as colours (ITU-T H.273).
struct PictureColors {
    enum class Matrix { bt601, bt709, bt2020, rgb };

    Matrix matrix = Matrix::bt601;
    bool isFullRange = false;

    bool operator==(const PictureColors&) const = default;
};

/// Of the first video track. One that doesn't tell is read as players do: of more than 576 lines it is high
/// definition.
PictureColors pictureColorsOf(const CorvantaSdkVideoInformation& information);

/// A JPEG image that ffmpeg has written of such a picture, in its colours: ffmpeg keeps the coded values, and
/// JPEG is always read by BT.601.
QImage withColors(QImage image, const PictureColors& colors);

} // namespace corvanta
