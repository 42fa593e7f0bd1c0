#include <CorvantaSdkVideo/Editor/Player/GStreamerElements.hpp>

#include <CorvantaSdkVideo/Editor/Error/PlayerUnavailable.hpp>

#include <QLibrary>

#include <array>
#include <string>

namespace corvanta {

namespace {

using InitCheck = int (*)(int*, char***, void**);
using FindFactory = void* (*)(const char*);
using Unref = void (*)(void*);

constexpr std::array elements{"playbin",      "uridecodebin",  "videoconvert", "videoscale",
                              "audioconvert", "audioresample", "volume",       "autoaudiosink"};

template <typename Function>
Function resolved(QLibrary& library, const char* name) {
    return reinterpret_cast<Function>(library.resolve(name));
}

[[noreturn]] void fail(const std::string& missing) {
    throw PlayerUnavailable("Videos can't be played: " + missing +
                            " is missing. Install gstreamer1.0-plugins-base, gstreamer1.0-plugins-good and "
                            "gstreamer1.0-libav.");
}

} // namespace

// The library is loaded by Qt's plugin anyway; asking it needs none of its headers.
void requireGStreamerElements() {
    QLibrary library("gstreamer-1.0", 0);
    const auto initCheck = resolved<InitCheck>(library, "gst_init_check");
    const auto findFactory = resolved<FindFactory>(library, "gst_element_factory_find");
    const auto unref = resolved<Unref>(library, "gst_object_unref");
    if (initCheck == nullptr || findFactory == nullptr || unref == nullptr ||
        initCheck(nullptr, nullptr, nullptr) == 0) {
        fail("GStreamer");
    }
    for (const char* element : elements) {
        void* const factory = findFactory(element);
        if (factory == nullptr) {
            fail(std::string("the GStreamer element \"") + element + '"');
        }
        unref(factory);
    }
}

} // namespace corvanta
