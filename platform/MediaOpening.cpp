#include <platform/MediaOpening.hpp>

#include <platform/Errors.hpp>
#include <platform/FileManager.hpp>

#include <array>
#include <utility>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/log.h>
}

namespace corvanta {

namespace {

constexpr const char* allowedProtocols = "file";

// Not here, because they open what their bytes or names tell them to: hls, dash, imf, concat, sdp, rtsp,
// webm_dash_manifest, vobsub, mlv, lavfi, every device; because they draw any text: tty and its like; because
// they are nobody's video: game formats, subtitles, trackers, samples without a head.
constexpr const char* selfContained =
    "mov,matroska,avi,mpegts,mpeg,flv,asf,ogg,wtv,nut,mxf,gxf,rm,dv,ivf,yuv4mpegpipe,"
    "h264,hevc,mpegvideo,m4v,mjpeg,vc1,obu,av1,dirac,cavsvideo,h261,h263,dnxhd,"
    "wav,w64,caf,aiff,au,mp3,aac,loas,ac3,eac3,flac,amr,amrnb,amrwb,ape,dts,dtshd,truehd,mlp,tta,wv,mpc,mpc8,"
    "tak,voc,qcp,oma,dsf,xwma,gif,apng,png_pipe,jpeg_pipe,bmp_pipe,webp_pipe,tiff_pipe,jpegxl_pipe";

PlatformError failure(int code, const std::string& path) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(code, text.data(), text.size());
    const char* reason = code == AVERROR_EXIT ? "reading it took too long, or was stopped" : text.data();
    return {"AssetReader", code, path + ": " + reason};
}

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

class Dictionary {
  public:
    Dictionary() = default;
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;
    ~Dictionary() { av_dict_free(&entries_); }

    void set(const char* key, const std::string& value) { av_dict_set(&entries_, key, value.c_str(), 0); }
    AVDictionary** entries() { return &entries_; }

  private:
    AVDictionary* entries_ = nullptr;
};

} // namespace

std::string allowedContainers(std::string_view path) {
    // ffmpeg takes a picture by its name for one of a sequence if the name looks like a pattern.
    const bool couldBePattern = path.find_first_of("%*?[{") != std::string_view::npos;
    return couldBePattern ? selfContained : std::string(selfContained) + ",image2";
}

std::vector<std::string> withOpeningLimits(std::vector<std::string> arguments) {
    std::vector<std::string> limited;
    std::string container;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const bool hasValue = index + 1 < arguments.size();
        if (hasValue && arguments[index] == "-f") {
            container = arguments[index + 1];
        } else if (hasValue && arguments[index] == "-i") {
            std::string containers =
                container == "lavfi" ? container : allowedContainers(arguments[index + 1]);
            if (container == "concat") {
                containers += ",concat";
            }
            limited.insert(limited.end(), {"-protocol_whitelist", allowedProtocols, "-format_whitelist",
                                           std::move(containers)});
            container.clear();
        }
        limited.push_back(std::move(arguments[index]));
    }
    return limited;
}

void OpenMedia::Close::operator()(AVFormatContext* format) const { avformat_close_input(&format); }

OpenMedia::OpenMedia(const std::string& path, Options options) : path_(path), options_(std::move(options)) {
    quietenLibrary();
    if (!FileManager::fileExists(path) || FileManager::isEndless(path)) {
        throw failure(AVERROR(ENOENT), path_);
    }
    AVFormatContext* format = avformat_alloc_context();
    if (format == nullptr) {
        throw failure(AVERROR(ENOMEM), path_);
    }
    format->interrupt_callback = {&OpenMedia::isOver, this};
    Dictionary limits;
    limits.set("protocol_whitelist", allowedProtocols);
    limits.set("format_whitelist", allowedContainers(path));
    // As ffprobe does, so that both tell the same of a transport stream.
    limits.set("scan_all_pmts", "1");
    restartClock();
    // The protocol's name keeps a relative path with a colon from being read as another protocol.
    const int result = avformat_open_input(&format, ("file:" + path).c_str(), nullptr, limits.entries());
    if (result < 0) {
        throw failure(result, path_);
    }
    format_.reset(format);
}

OpenMedia::~OpenMedia() = default;

void OpenMedia::analyse() {
    if (analysed_) {
        return;
    }
    analysed_ = true;
    reading_ = false;
    restartClock();
    std::vector<Dictionary> limits(format_->nb_streams);
    std::vector<AVDictionary*> options;
    for (Dictionary& limit : limits) {
        limit.set("max_pixels", std::to_string(mostPixels));
        options.push_back(*limit.entries());
    }
    const int result = avformat_find_stream_info(format_.get(), options.data());
    // What of them was not taken.
    for (std::size_t stream = 0; stream < limits.size(); ++stream) {
        *limits[stream].entries() = options[stream];
    }
    if (result < 0) {
        throw failure(result, path_);
    }
    // What was cut short looks like a file that ended there.
    if (isOver(this) != 0) {
        throw failure(AVERROR_EXIT, path_);
    }
}

bool OpenMedia::seek(std::int64_t seconds) {
    const std::int64_t start = format_->start_time == AV_NOPTS_VALUE ? 0 : format_->start_time;
    std::int64_t time = 0;
    if (__builtin_mul_overflow(seconds, std::int64_t{AV_TIME_BASE}, &time) ||
        __builtin_add_overflow(time, start, &time)) {
        return false;
    }
    reading_ = false;
    restartClock();
    return avformat_seek_file(format_.get(), -1, INT64_MIN, time, time, 0) >= 0;
}

bool OpenMedia::read(AVPacket& packet) {
    if (!std::exchange(reading_, true)) {
        restartClock();
    }
    const bool found = av_read_frame(format_.get(), &packet) >= 0;
    if (!found && isOver(this) != 0) {
        throw failure(AVERROR_EXIT, path_);
    }
    return found;
}

int OpenMedia::isOver(void* opening) {
    const auto& self = *static_cast<const OpenMedia*>(opening);
    return self.options_.stop.stop_requested() || std::chrono::steady_clock::now() > self.deadline_ ? 1 : 0;
}

void OpenMedia::restartClock() { deadline_ = std::chrono::steady_clock::now() + options_.patience; }

} // namespace corvanta
