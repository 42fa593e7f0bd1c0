#include <platform/AssetReader.hpp>

#include <platform/Errors.hpp>
#include <platform/FileManager.hpp>

#include <array>
#include <cerrno>
#include <cstdint>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

namespace corvanta {

namespace {

PlatformError failure(int code) { return {"AssetReader", code}; }

// A refused file is told by an error; the library's own lines on the host's standard error would only repeat
// it. A host that has set a level of its own keeps it.
void quietenLibrary() {
    [[maybe_unused]] static const bool once = [] {
        if (av_log_get_level() == AV_LOG_INFO) {
            av_log_set_level(AV_LOG_QUIET);
        }
        return true;
    }();
}

struct CloseInput {
    void operator()(AVFormatContext* format) const { avformat_close_input(&format); }
};

} // namespace

struct AssetReader::Context {
    std::unique_ptr<AVFormatContext, CloseInput> format;
    bool analysed = false;

    // Most containers tell what is wanted in their header; the others need some packets read.
    void analyse() {
        if (!analysed) {
            analysed = true;
            if (const int result = avformat_find_stream_info(format.get(), nullptr); result < 0) {
                throw failure(result);
            }
        }
    }

    const AVStream* firstVideoTrack() const {
        for (unsigned index = 0; index < format->nb_streams; ++index) {
            if (format->streams[index]->codecpar->codec_type == AVMEDIA_TYPE_VIDEO) {
                return format->streams[index];
            }
        }
        return nullptr;
    }
};

AssetReader::AssetReader(const URL& url) : context_(std::make_unique<Context>()) {
    quietenLibrary();
    const std::string path = url.path();
    if (!FileManager::fileExists(path) || FileManager::isEndless(path)) {
        throw failure(AVERROR(ENOENT));
    }
    AVFormatContext* format = nullptr;
    // The protocol's name keeps a relative path with a colon from being read as another protocol.
    const int result = avformat_open_input(&format, ("file:" + path).c_str(), nullptr, nullptr);
    if (result < 0) {
        throw failure(result);
    }
    context_->format.reset(format);
}

AssetReader::AssetReader(AssetReader&&) noexcept = default;
AssetReader& AssetReader::operator=(AssetReader&&) noexcept = default;
AssetReader::~AssetReader() = default;

double AssetReader::duration() {
    const auto& format = context_->format;
    if (format->duration == AV_NOPTS_VALUE) {
        context_->analyse();
    }
    if (format->duration == AV_NOPTS_VALUE) {
        throw failure(AVERROR_INVALIDDATA);
    }
    return static_cast<double>(format->duration) / AV_TIME_BASE;
}

std::optional<AffineTransform> AssetReader::firstVideoTrackTransform() {
    if (context_->firstVideoTrack() == nullptr) {
        context_->analyse();
    }
    const AVStream* track = context_->firstVideoTrack();
    if (track == nullptr) {
        return std::nullopt;
    }
    std::size_t size = 0;
    const auto* matrix = reinterpret_cast<const std::int32_t*>(
        av_stream_get_side_data(track, AV_PKT_DATA_DISPLAYMATRIX, &size));
    if (matrix == nullptr || size < 9 * sizeof(std::int32_t)) {
        return AffineTransform{};
    }
    constexpr double fixedPointOne = 65536;
    return AffineTransform{matrix[0] / fixedPointOne, matrix[1] / fixedPointOne, matrix[3] / fixedPointOne,
                           matrix[4] / fixedPointOne};
}

} // namespace corvanta
