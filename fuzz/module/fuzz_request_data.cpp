// The input is the stored parameters of a request, read as each kind. What was read is written and read
// again.

#include <CorvantaSdkVideo/Commands/VideoOperationData.hpp>

#include <cstdlib>

namespace {

using namespace corvanta;

template <typename Serializable>
void readAndWrite(const std::string& text) {
    const auto data = decode<Serializable>(text);
    const auto written = data ? jsonRepresentation(*data) : std::nullopt;
    if (!written) {
        return;
    }
    const auto again = decode<Serializable>(written);
    if (!again || again->width != data->width || again->height != data->height ||
        again->videoTracks != data->videoTracks || again->audioTracks != data->audioTracks ||
        again->framesRate != data->framesRate) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    const std::string text(data, size);
    readAndWrite<VideoMergeData::SerializableMergeData>(text);
    readAndWrite<VideoEncodingData::SerializableEncodingData>(text);
    const auto concat = decode<VideoConcatData::SerializableConcatData>(text);
    if (concat &&
        decode<VideoConcatData::SerializableConcatData>(jsonRepresentation(*concat))->joinExtension !=
            concat->joinExtension) {
        std::abort();
    }
    return 0;
}
