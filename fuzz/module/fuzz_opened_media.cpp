// The input is a whole media file, opened as the module opens it in process.

#include <platform/AssetReader.hpp>
#include <platform/Errors.hpp>
#include <platform/InProcessProbe.hpp>
#include <platform/SoundTimes.hpp>

#include <cstdlib>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    static const int file = memfd_create("media", MFD_CLOEXEC);
    static const auto url = corvanta::URL::fromFilePath("/proc/self/fd/" + std::to_string(file));
    if (ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) != static_cast<ssize_t>(size)) {
        std::abort();
    }
    try {
        corvanta::AssetReader reader(url);
        reader.firstVideoTrackTransform();
        reader.firstVideoTrackFormat();
        reader.hasAudioTrack();
        corvanta::soundTimes(url.path());
        if (const double seconds = reader.duration(); !(seconds >= -1e10 && seconds <= 1e10)) {
            std::abort();
        }
    } catch (const corvanta::PlatformError&) {
        // no media of ours
    }
    corvanta::probeInProcess(url.path(), {});
    return 0;
}
