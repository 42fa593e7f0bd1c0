// The input is a plain weight file.

#include "noise_library/scratch_file.hpp"
#include "weights/weight.hpp"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    noise_fuzz::silence();
    TALVO::UTILS::Path const path(noise_fuzz::writeScratchFile("input.nmw", data, size));
    TALVO::WEIGHTS::Weight weight;
    if (weight.read(path)) {
        try {
            weight.getWeightVersion();
            weight.getWeightInfo();
        } catch (TALVO::UTILS::TalvoException const&) {
            // what most inputs lack
        }
    }
    return 0;
}
