#pragma once

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGVideoTracksCommandGenerator.hpp>
#include <platform/Task.hpp>
#include <platform/URL.hpp>

#include <cstdint>
#include <memory>

namespace corvanta {

/// Changes the set of tracks of one video without encoding what is there. Durations are milliseconds, sizes
/// pixels. An existing output is replaced.
///
/// Inputs aren't validated: what ffmpeg refuses is thrown as the executor's PlatformError. Before anything
/// runs, std::system_error is thrown for an output that is the input itself and for a path that names no
/// file. Keeps no state between calls; two calls with one output race for the file. Must outlive its tasks.
class TracksManager {
  public:
    explicit TracksManager(std::shared_ptr<FFMPEGCommandExecutor> commandExecutor =
                               std::make_shared<FFMPEGCommandExecutorImplementation>(),
                           FFMPEGVideoTracksCommandGenerator commandGenerator = {});

    /// Adds a blank (red) video track behind the others. The input must have pictures and sound. A temporary
    /// file in the documents directory is removed at the end; after a failed run it stays. If only its
    /// removal fails, that error is thrown although the output is complete.
    Task<> addVideoTrack(URL inputPath, URL outputPath, std::int64_t duration, std::int64_t width,
                         std::int64_t height) const;

    /// Adds a silent audio track in the same way.
    Task<> addAudioTrack(URL inputPath, URL outputPath, std::int64_t duration) const;

    /// Leaves one audio track.
    Task<> removeVideoTrack(URL inputPath, URL outputPath) const;

    /// Leaves one video track.
    Task<> removeAudioTrack(URL inputPath, URL outputPath) const;

  private:
    std::shared_ptr<FFMPEGCommandExecutor> commandExecutor_;
    FFMPEGVideoTracksCommandGenerator commandGenerator_;
};

} // namespace corvanta
