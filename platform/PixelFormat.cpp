#include <platform/PixelFormat.hpp>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace corvanta {

int bitsPerComponent(const std::string& pixelFormat) {
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(av_get_pix_fmt(pixelFormat.c_str()));
    return format != nullptr ? format->comp[0].depth : 0;
}

} // namespace corvanta
