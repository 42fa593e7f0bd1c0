#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditor.hpp>

namespace corvanta {

Task<CorvantaSdkVideoCutInspection> CorvantaSdkVideoEditor::inspectCut(URL /*video*/,
                                                                       CorvantaSdkVideoTimeRange range) {
    CorvantaSdkVideoCutInspection nothingLost;
    nothingLost.copiedStart = range.start;
    co_return nothingLost;
}

Task<std::optional<URL>> CorvantaSdkVideoEditor::getWaveformForVideo(URL /*at*/, std::int64_t /*width*/,
                                                                     std::int64_t /*height*/) {
    co_return std::nullopt;
}

} // namespace corvanta
