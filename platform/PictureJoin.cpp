#include <platform/PictureJoin.hpp>

#include <platform/CodedPictures.hpp>
#include <platform/Errors.hpp>
#include <platform/MediaPacket.hpp>
#include <platform/NalUnits.hpp>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <span>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
}

namespace corvanta {

namespace {

using Bytes = std::span<const std::uint8_t>;

void check(int result) {
    if (result < 0) {
        throw PlatformError("PictureJoin", result);
    }
}

struct FreeFilter {
    void operator()(AVBSFContext* filter) const { av_bsf_free(&filter); }
};

PacketPointer makePacket() {
    PacketPointer packet(av_packet_alloc());
    check(packet ? 0 : AVERROR(ENOMEM));
    return packet;
}

// Nine numbers, row by row, the last column with a finer unit; a point is a row that is multiplied from the
// left (ISO/IEC 14496-12, 6.2.2).
using DisplayMatrix = std::array<std::int32_t, 9>;
constexpr std::int32_t one = 1 << 16;
constexpr DisplayMatrix identity{one, 0, 0, 0, one, 0, 0, 0, 1 << 30};

DisplayMatrix displayMatrixOf(const AVStream& track) {
    DisplayMatrix matrix = identity;
    std::size_t size = 0;
    const std::uint8_t* const data = av_stream_get_side_data(&track, AV_PKT_DATA_DISPLAYMATRIX, &size);
    if (data != nullptr && size >= sizeof(DisplayMatrix)) {
        std::memcpy(matrix.data(), data, sizeof(DisplayMatrix));
    }
    return matrix;
}

// The turns alone: where the picture lies then is for the player to find.
DisplayMatrix product(const DisplayMatrix& first, const DisplayMatrix& second) {
    DisplayMatrix both = identity;
    for (const std::size_t row : {0U, 3U}) {
        for (const std::size_t column : {0U, 1U}) {
            const std::int64_t sum =
                std::int64_t{first[row]} * second[column] + std::int64_t{first[row + 1]} * second[3 + column];
            both[row + column] = static_cast<std::int32_t>(sum / one);
        }
    }
    return both;
}

// The pictures of one run, with start codes and, at each key, the parameter sets: the one form that runs of
// different parameters can share.
class RunReader {
  public:
    RunReader(const PictureRun& run, const OpenMedia::Options& options) : pictures_(run.file, options) {
        const AVCodecParameters& codec = *pictures_.track().codecpar;
        const bool isHEVC = codec.codec_id == AV_CODEC_ID_HEVC;
        const Bytes extradata(codec.extradata, static_cast<std::size_t>(codec.extradata_size));
        const char* const name = nalLengthSize(extradata, isHEVC) == 0 ? "null"
                                 : isHEVC                              ? "hevc_mp4toannexb"
                                 : codec.codec_id == AV_CODEC_ID_H264  ? "h264_mp4toannexb"
                                                                       : "null";
        AVBSFContext* filter = nullptr;
        check(av_bsf_alloc(av_bsf_get_by_name(name), &filter));
        filter_.reset(filter);
        check(avcodec_parameters_copy(filter->par_in, &codec));
        filter->time_base_in = pictures_.track().time_base;
        check(av_bsf_init(filter));
    }

    CodedPictures& pictures() { return pictures_; }
    const AVCodecParameters& parameters() const { return *filter_->par_out; }

    Bytes extradata() const {
        return {parameters().extradata, static_cast<std::size_t>(parameters().extradata_size)};
    }

    /// The packet of the picture that was read last.
    PacketPointer take() {
        PacketPointer packet = makePacket();
        check(av_bsf_send_packet(filter_.get(), &pictures_.packet()));
        check(av_bsf_receive_packet(filter_.get(), packet.get()));
        return packet;
    }

  private:
    CodedPictures pictures_;
    std::unique_ptr<AVBSFContext, FreeFilter> filter_;
};

// An mp4 file of one track.
class TrackWriter {
  public:
    TrackWriter(const std::string& path, const AVStream& like, int degrees,
                const AVCodecParameters& parameters, Bytes extradata) {
        AVFormatContext* format = nullptr;
        check(avformat_alloc_output_context2(&format, nullptr, "mp4", nullptr));
        format_.reset(format);
        AVStream* const track = avformat_new_stream(format, nullptr);
        check(track != nullptr ? 0 : AVERROR(ENOMEM));
        check(avcodec_parameters_copy(track->codecpar, &parameters));
        track->codecpar->codec_tag = 0;
        setExtradata(*track->codecpar, extradata);
        track->time_base = like.time_base;
        track->avg_frame_rate = like.avg_frame_rate;
        track->sample_aspect_ratio = like.sample_aspect_ratio;
        setMatrix(like, degrees, *track);
        check(avio_open(&format->pb, ("file:" + path).c_str(), AVIO_FLAG_WRITE));
        check(avformat_write_header(format, nullptr));
    }

    AVRational timeBase() const { return format_->streams[0]->time_base; }
    void write(AVPacket& packet) { check(av_write_frame(format_.get(), &packet)); }

    void finish() {
        check(av_write_trailer(format_.get()));
        check(avio_closep(&format_->pb));
    }

  private:
    struct Free {
        void operator()(AVFormatContext* format) const {
            avio_closep(&format->pb);
            avformat_free_context(format);
        }
    };

    static void setExtradata(AVCodecParameters& parameters, Bytes extradata) {
        av_freep(&parameters.extradata);
        parameters.extradata_size = 0;
        parameters.extradata =
            static_cast<std::uint8_t*>(av_mallocz(extradata.size() + AV_INPUT_BUFFER_PADDING_SIZE));
        check(parameters.extradata != nullptr ? 0 : AVERROR(ENOMEM));
        std::ranges::copy(extradata, parameters.extradata);
        parameters.extradata_size = static_cast<int>(extradata.size());
    }

    static void setMatrix(const AVStream& like, int degrees, AVStream& track) {
        const DisplayMatrix own = displayMatrixOf(like);
        DisplayMatrix turn{};
        av_display_rotation_set(turn.data(), -degrees);
        const DisplayMatrix both = degrees == 0 ? own : product(own, turn);
        if (both == identity) {
            return;
        }
        std::uint8_t* const data =
            av_stream_new_side_data(&track, AV_PKT_DATA_DISPLAYMATRIX, sizeof(DisplayMatrix));
        check(data != nullptr ? 0 : AVERROR(ENOMEM));
        std::memcpy(data, both.data(), sizeof(DisplayMatrix));
    }

    std::unique_ptr<AVFormatContext, Free> format_;
};

// A key picture that earlier ones may cross (CRA) becomes one behind a broken link (BLA_N_LP; ITU-T H.265,
// table 7-1): otherwise its place in the order of showing would be counted from what happens to stand before
// it now.
void markSplice(AVPacket& packet) {
    check(av_packet_make_writable(&packet));
    const Bytes data(packet.data, static_cast<std::size_t>(packet.size));
    for (const Bytes unit : nalUnits(data, 0)) {
        constexpr unsigned cra = 21;
        constexpr unsigned bla = 18;
        if ((unit[0] >> 1U & 0x3FU) == cra) {
            packet.data[unit.data() - data.data()] = static_cast<std::uint8_t>((unit[0] & 0x81U) | bla << 1U);
        }
    }
}

// Gives the pictures of all runs times that rise.
class Joiner {
  public:
    Joiner(TrackWriter& writer, AVRational timeBase, std::int64_t delay)
        : writer_(writer), timeBase_(timeBase), delay_(delay) {}

    void add(const PictureRun& run, RunReader& reader) {
        CodedPictures& pictures = reader.pictures();
        const AVRational ownBase = pictures.track().time_base;
        if (run.entry) {
            pictures.seek(*run.entry);
        }
        bool begun = !run.entry;
        bool isFirst = true;
        std::vector<std::int64_t> shown;
        while (const auto picture = pictures.next()) {
            const std::int64_t pts = av_rescale_q(picture->pts, ownBase, timeBase_);
            const std::int64_t dts = av_rescale_q(picture->dts, ownBase, timeBase_);
            begun = begun || pts == run.entry;
            if (pts == run.stop) {
                break;
            }
            if (!begun || pts < run.entry) {
                continue;
            }
            check(picture->shown ? 0 : AVERROR_INVALIDDATA);
            shown.push_back(pts);
            PacketPointer packet = reader.take();
            packet->pts = isFirst && run.firstShown ? *run.firstShown : pts + run.shift;
            packet->dts = std::max(lastDts_ + 1,
                                   std::min(packet->pts, dts + run.shift - (run.isOriginal ? 0 : delay_)));
            check(packet->dts <= packet->pts ? 0 : AVERROR_INVALIDDATA);
            packet->duration = av_rescale_q(picture->duration, ownBase, timeBase_);
            packet->stream_index = 0;
            packet->pos = -1;
            lastDts_ = packet->dts;
            if (isFirst && run.isOriginal && reader.parameters().codec_id == AV_CODEC_ID_HEVC) {
                markSplice(*packet);
            }
            isFirst = false;
            av_packet_rescale_ts(packet.get(), timeBase_, writer_.timeBase());
            writer_.write(*packet);
        }
        std::ranges::sort(shown);
        check(!shown.empty() && (run.shown.empty() || shown == run.shown) ? 0 : AVERROR_INVALIDDATA);
    }

  private:
    TrackWriter& writer_;
    AVRational timeBase_;
    std::int64_t delay_;
    std::int64_t lastDts_ = std::numeric_limits<std::int64_t>::min() / 2;
};

} // namespace

void joinPictures(const std::string& like, const std::vector<PictureRun>& runs, const std::string& output,
                  int degrees, const OpenMedia::Options& options) {
    const CodedPictures source(like, options);
    std::vector<std::unique_ptr<RunReader>> readers;
    std::vector<std::uint8_t> parameterSets;
    std::int64_t delay = 0;
    for (const PictureRun& run : runs) {
        readers.push_back(std::make_unique<RunReader>(run, options));
        const Bytes sets = readers.back()->extradata();
        if (std::ranges::search(parameterSets, sets).empty()) {
            parameterSets.insert(parameterSets.end(), sets.begin(), sets.end());
        }
        delay = std::max(delay, run.delay);
    }
    // What is told of the whole track is what the original pictures need.
    const auto original = std::ranges::find_if(runs, &PictureRun::isOriginal);
    check(runs.empty() ? AVERROR_INVALIDDATA : 0);
    const RunReader& chief =
        *readers[original == runs.end() ? 0 : static_cast<std::size_t>(original - runs.begin())];
    const AVCodecParameters& parameters = chief.parameters();
    // Of HEVC's the ids would collide: its key pictures carry their own.
    const Bytes sets = parameters.codec_id == AV_CODEC_ID_HEVC ? chief.extradata() : parameterSets;
    TrackWriter writer(output, source.track(), degrees, parameters, sets);
    Joiner joiner(writer, source.track().time_base, delay);
    for (std::size_t index = 0; index < runs.size(); ++index) {
        joiner.add(runs[index], *readers[index]);
    }
    writer.finish();
}

} // namespace corvanta
