#include "library_use.hpp"

#include "talvo_audio_sdk.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <mutex>
#include <stdexcept>

#include <dlfcn.h>

namespace TALVO::LADSPA {

namespace fs = std::filesystem;

namespace {

constexpr char const* modelFile = "c6.f.s.ced125.tw";
constexpr char const* resources = "share/corvanta-sdk-video";

std::mutex mutex;
int users = 0;
bool startedHere = false;

fs::path modelPath() {
    if (char const* const chosen = std::getenv("CORVANTA_RESOURCES"); chosen != nullptr && *chosen != '\0')
        return fs::absolute(fs::path(chosen) / modelFile);
    Dl_info library{};
    if (dladdr(reinterpret_cast<void const*>(&talvoAudioGlobalInit), &library) == 0 ||
        library.dli_fname == nullptr)
        return {};
    std::error_code ignored;
    fs::path const prefix = fs::canonical(library.dli_fname, ignored).parent_path().parent_path();
    fs::path const path = prefix / resources / modelFile;
    // Debian's libraries lie one level deeper, in lib/<multiarch>.
    return fs::exists(path, ignored) ? path : prefix.parent_path() / resources / modelFile;
}

/// Standard output may be the host's sound: what is printed while a model is read is kept for an error's
/// text, the rest is told on standard error.
void print(char const* line, void* kept) {
    if (kept == nullptr)
        std::cerr << line << std::endl;
    else
        static_cast<std::string*>(kept)->append("\n").append(line);
}

void start() {
    fs::path const path = modelPath();
    if (std::error_code ignored; !fs::is_regular_file(path, ignored))
        throw std::runtime_error("no noise model at " + path.string() +
                                 "; CORVANTA_RESOURCES names the folder of another one");
    startedHere = talvoAudioGlobalInit(L"") == 0;
    std::string printed;
    if (startedHere)
        talvoAudioSetPrint(print, &printed);
    bool const registered = talvoAudioSetModel(path.wstring().c_str(), LibraryUse::model) == 0;
    if (!startedHere)
        return; // the name may be there from an earlier use
    talvoAudioSetPrint(print, nullptr);
    if (registered)
        return;
    talvoAudioSetPrint(nullptr, nullptr);
    talvoAudioGlobalDestroy();
    throw std::runtime_error("the noise model " + path.string() + " can't be used:" + printed);
}

} // namespace

LibraryUse::LibraryUse() {
    std::scoped_lock const lock(mutex);
    if (users == 0)
        start();
    ++users;
}

LibraryUse::~LibraryUse() {
    std::scoped_lock const lock(mutex);
    if (--users > 0 || !startedHere)
        return;
    talvoAudioGlobalDestroy();
    // The plugin may be unloaded next.
    talvoAudioSetPrint(nullptr, nullptr);
}

} // namespace TALVO::LADSPA
