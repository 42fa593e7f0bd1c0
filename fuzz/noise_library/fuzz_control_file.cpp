// The input is a control file beside a small model, on which a session is opened.

#include "noise_library/scratch_file.hpp"
#include "talvo_audio_sdk.h"

#include <fstream>
#include <iterator>
#include <string>

namespace {

/// The model lies beside the corpus; the fuzzer may be started from anywhere.
std::string readModel() {
    std::ifstream file(MODEL_FILE, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    noise_fuzz::silence();
    static std::string const model = readModel();
    if (model.empty())
        return -1;
    static std::wstring const modelPath =
        noise_fuzz::writeScratchFile("model.nmw", model.data(), model.size());
    std::wstring const path = noise_fuzz::writeScratchFile("input.cfg", data, size);
    talvoAudioGlobalInit(noise_fuzz::scratchFolder().c_str());
    if (talvoAudioSetModel(path.c_str(), "model") == 0) {
        talvoAudioNcCreateSession(TALVO_AUDIO_RATE_16000, TALVO_AUDIO_RATE_16000, TALVO_AUDIO_DURATION_10,
                                  "model");
        talvoAudioNoiseDbCreateSession(TALVO_AUDIO_RATE_16000, TALVO_AUDIO_DURATION_10, "model");
    }
    talvoAudioGlobalDestroy();
    return 0;
}
