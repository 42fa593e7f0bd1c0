#pragma once

#include <platform/MediaOpening.hpp>

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>

struct AVPacket;
struct AVStream;

namespace corvanta {

/// One coded picture of a track, as its container states it. Times are in units of the track's time base.
struct CodedPicture {
    enum class Kind {
        /// Needs pictures before it.
        dependent,
        /// A key picture behind which no picture shows that needs anything before it (IDR).
        entry,
        /// A key picture that pictures shown before it may cross (CRA).
        openEntry,
        /// Called a key by its container, and nothing that decoding is sure to begin at.
        unsafeKey,
    };

    std::int64_t pts = 0;
    std::int64_t dts = 0;
    std::int64_t duration = 0;
    Kind kind = Kind::dependent;
    /// False for one that is decoded for others' sake alone: an edit list hides it.
    bool shown = true;

    bool isKey() const { return kind != Kind::dependent; }
    bool isEntry() const { return kind == Kind::entry || kind == Kind::openEntry; }
};

/// What a second encoding of a track's pictures must be like. Names are ffmpeg's; an empty one is unknown.
struct PictureFormat {
    std::string codec;
    /// libav's number of the codec's profile.
    int profile = -1;
    std::string pixelFormat;
    int bitsPerComponent = 0;
    std::string colorRange;
    std::string colorPrimaries;
    std::string colorTransfer;
    std::string colorMatrix;
    bool isInterlaced = false;
    /// For H.264: an id that none of the track's parameter sets has.
    int freeParameterSetId = 0;
};

/// Reads the coded pictures of a file's first video track (covers apart) in decoding order, without decoding.
/// One thread at a time.
class CodedPictures {
  public:
    /// Throws PlatformError if the file can't be opened or has no such track.
    explicit CodedPictures(const std::string& path, OpenMedia::Options options = {});
    ~CodedPictures();

    const AVStream& track() const { return *track_; }
    /// The track's number among all of the file's.
    int trackIndex() const;
    PictureFormat format() const;

    double secondsPerTick() const;
    /// The tick at `seconds` behind the file's start, which is where ffmpeg's own positions count from.
    std::int64_t ticks(double seconds) const;
    double seconds(std::int64_t ticks) const;

    /// Goes to a key picture that is not shown after `tick`, or to the file's first.
    void seek(std::int64_t tick);

    /// The next picture; nothing at the end. Throws PlatformError for a picture without times, for a change
    /// of the codec's parameters on the way, and when time is up.
    std::optional<CodedPicture> next();

    /// The packet of the picture that `next` gave last; the caller may take what it holds.
    AVPacket& packet() { return *packet_; }

  private:
    struct FreePacket {
        void operator()(AVPacket* packet) const;
    };
    using PacketPointer = std::unique_ptr<AVPacket, FreePacket>;

    PacketPointer read();
    void readAhead();
    CodedPicture::Kind kindOf(const AVPacket& packet) const;

    OpenMedia media_;
    AVStream* track_ = nullptr;
    std::int64_t start_ = 0;
    std::deque<PacketPointer> ahead_;
    PacketPointer packet_;
};

} // namespace corvanta
