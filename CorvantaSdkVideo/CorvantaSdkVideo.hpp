#pragma once

/// The module's public entry: the one header that a host includes.

#include <CorvantaSdkVideo/CI.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoInterface.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <platform/ConsoleSink.hpp>
#include <platform/FFmpegKit.hpp>
#include <platform/SharedCorvantaSdkCommon.hpp>
#include <platform/Task.hpp>

namespace corvanta {

/// Builds the module at its first use, once, safely from any thread. It lives until the process ends: nothing
/// of it is torn down before. A `process()` that another thread runs while `main` returns goes on until the
/// process is gone; then its ffmpeg is killed, and its request, still `processing`, reads as `cancelled` at
/// the next start.
class CorvantaSdkVideoEntry {
  public:
    CorvantaSdkVideoInterface* operator->() const;
    CorvantaSdkVideoInterface& operator*() const { return *operator->(); }
};

/// The module: `CorvantaSdkVideo->getVideosInformation(files)`.
inline constexpr CorvantaSdkVideoEntry CorvantaSdkVideo;

} // namespace corvanta
