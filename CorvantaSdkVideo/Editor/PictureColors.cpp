#include <CorvantaSdkVideo/Editor/PictureColors.hpp>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace corvanta {

namespace {

using Matrix = PictureColors::Matrix;

// The parts of red and blue in luma.
struct Luma {
    double red;
    double blue;
};

constexpr Luma standardDefinition{0.299, 0.114};

int component(double value) { return static_cast<int>(std::lround(std::clamp(value, 0.0, 255.0))); }

QRgb readBy(const Luma& luma, QRgb color) {
    const auto [red, blue] = standardDefinition;
    const double y = red * qRed(color) + (1 - red - blue) * qGreen(color) + blue * qBlue(color);
    const double cb = (qBlue(color) - y) / (1 - blue);
    const double cr = (qRed(color) - y) / (1 - red);
    const double newRed = y + cr * (1 - luma.red);
    const double newBlue = y + cb * (1 - luma.blue);
    const double newGreen = (y - luma.red * newRed - luma.blue * newBlue) / (1 - luma.red - luma.blue);
    return qRgb(component(newRed), component(newGreen), component(newBlue));
}

Matrix matrixOf(const CorvantaSdkVideoTrackInformation& picture) {
    const std::string& name = picture.color.matrix;
    if (name == "gbr") {
        return Matrix::rgb;
    }
    if (name == "bt709" || name == "smpte240m") {
        return Matrix::bt709;
    }
    if (name.starts_with("bt2020")) {
        return Matrix::bt2020;
    }
    constexpr std::int64_t mostLinesOfStandardDefinition = 576;
    return name.empty() && picture.height > mostLinesOfStandardDefinition ? Matrix::bt709 : Matrix::bt601;
}

} // namespace

PictureColors pictureColorsOf(const CorvantaSdkVideoInformation& information) {
    if (information.videos.empty()) {
        return {};
    }
    const CorvantaSdkVideoTrackInformation& picture = information.videos.front();
    return {.matrix = matrixOf(picture), .isFullRange = picture.color.range == "pc"};
}

QImage withColors(QImage image, const PictureColors& colors) {
    const bool isReadRight = colors.matrix != Matrix::bt709 && colors.matrix != Matrix::bt2020;
    if (image.isNull() || isReadRight) {
        return image;
    }
    const Luma luma = colors.matrix == Matrix::bt709 ? Luma{0.2126, 0.0722} : Luma{0.2627, 0.0593};
    image = std::move(image).convertToFormat(QImage::Format_RGB32);
    for (int row = 0; row < image.height(); ++row) {
        auto* const line = reinterpret_cast<QRgb*>(image.scanLine(row));
        std::transform(line, line + image.width(), line, [&](QRgb color) { return readBy(luma, color); });
    }
    return image;
}

} // namespace corvanta
