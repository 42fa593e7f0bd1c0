#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

struct AVFormatContext;
struct AVPacket;

/// The one door through which files of unknown origin are opened as media, in process and by ffmpeg alike:
/// local files alone, and containers alone that hold their media themselves. A text that names other files
/// (HLS, DASH, ffconcat, SDP, playlists, patterns of image names), a script and a device are refused.
namespace corvanta {

/// Whether a file could last so long. Damaged and hostile files state more, which sums of milliseconds can't
/// hold.
constexpr bool isPossibleDuration(double seconds) {
    constexpr double longest = 1e10;
    return seconds >= -longest && seconds <= longest;
}

/// The containers that the file at `path` may be, as ffmpeg's option "format_whitelist" takes them.
std::string allowedContainers(std::string_view path);

/// The arguments of an ffmpeg or ffprobe run with the limits of opening before each "-i". Two more containers
/// are allowed where the command names them: "-f lavfi", which reads no file, and "-f concat", a list of the
/// caller's own. The list's files are limited in their turn, but could be such lists themselves: probe them
/// before.
std::vector<std::string> withOpeningLimits(std::vector<std::string> arguments);

/// A file that is open for reading in process. One thread at a time.
class OpenMedia {
  public:
    struct Options {
        /// Each call, and each row of reads, gives up after this time: a file can be made to be read for
        /// ever.
        std::chrono::milliseconds patience = std::chrono::seconds(30);
        /// A request ends the call that is under way within one read.
        std::stop_token stop = {};
    };

    /// Opens the file at the plain path `path`. Throws PlatformError ("AssetReader", libav's code) if it
    /// can't be opened, is no media of the allowed kinds, or time is up.
    OpenMedia(const std::string& path, Options options);
    explicit OpenMedia(const std::string& path) : OpenMedia(path, Options{}) {}
    OpenMedia(const OpenMedia&) = delete;
    OpenMedia& operator=(const OpenMedia&) = delete;
    ~OpenMedia();

    AVFormatContext& format() const { return *format_; }

    /// Reads some packets, for what the header doesn't tell; does so once. Throws PlatformError. Pictures of
    /// more than `mostPixels` are not decoded, since their memory would be the host's: what only a decoder
    /// tells of them stays unknown.
    void analyse();
    static constexpr std::int64_t mostPixels = std::int64_t{8192} * 8192;

    /// Goes on at the last place at or before `seconds` after the file's start at which decoding can begin.
    /// False if there is no way to it, or time is up.
    bool seek(std::int64_t seconds);

    /// The next packet; false at the end. Throws PlatformError when time is up.
    bool read(AVPacket& packet);

  private:
    struct Close {
        void operator()(AVFormatContext* format) const;
    };

    static int isOver(void* opening);
    void restartClock();

    std::string path_;
    Options options_;
    std::chrono::steady_clock::time_point deadline_;
    std::unique_ptr<AVFormatContext, Close> format_;
    bool analysed_ = false;
    bool reading_ = false;
};

} // namespace corvanta
