#include <platform/OutputContainer.hpp>

#include <string_view>

extern "C" {
#include <libavformat/avformat.h>
}

namespace corvanta {

bool isSingleFileOutput(const std::string& path) {
    const AVOutputFormat* const container = av_guess_format(nullptr, path.c_str(), nullptr);
    // A container that opens its files itself; a single picture is one too.
    return container == nullptr || (container->flags & AVFMT_NOFILE) == 0 ||
           std::string_view(container->name) == "image2";
}

} // namespace corvanta
