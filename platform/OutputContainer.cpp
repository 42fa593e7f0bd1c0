#include <platform/OutputContainer.hpp>

#include <algorithm>
#include <array>
#include <string_view>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace corvanta {

bool isSingleFileOutput(const std::string& path) {
    const AVOutputFormat* const container = av_guess_format(nullptr, path.c_str(), nullptr);
    // A container that opens its files itself; a single picture is one too.
    return container == nullptr || (container->flags & AVFMT_NOFILE) == 0 ||
           std::string_view(container->name) == "image2";
}

namespace {

// What QuickTime's table names and ffmpeg writes into "mp4" alone, if at all.
bool isRefusedByMov(int codec) {
    constexpr auto refused = std::to_array<int>({AV_CODEC_ID_VP8, AV_CODEC_ID_VP9, AV_CODEC_ID_AV1,
                                                 AV_CODEC_ID_OPUS, AV_CODEC_ID_FLAC, AV_CODEC_ID_TRUEHD});
    return std::ranges::find(refused, codec) != refused.end();
}

} // namespace

bool takesCodecs(const std::string& extension, const std::vector<int>& codecs) {
    const std::string name = "output." + extension;
    const AVOutputFormat* const container = av_guess_format(nullptr, name.c_str(), nullptr);
    return container != nullptr && isSingleFileOutput(name) && std::ranges::all_of(codecs, [&](int codec) {
               if (extension == "mov" && isRefusedByMov(codec)) {
                   return false;
               }
               return avformat_query_codec(container, static_cast<AVCodecID>(codec), FF_COMPLIANCE_NORMAL) ==
                      1;
           });
}

} // namespace corvanta
