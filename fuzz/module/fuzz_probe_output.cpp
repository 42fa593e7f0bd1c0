// The input is what ffprobe prints.

#include "module/fatal_error.hpp"

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/ProbeOutput.hpp>

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    try {
        corvanta::parseProbeOutput({data, size});
    } catch (const module_fuzz::Stopped&) {
        // a duration beyond all numbers
    }
    return 0;
}
