#include <CorvantaSdkVideo/Shared/FFMPEGCommands/WrittenOutput.hpp>

#include <platform/AssetReader.hpp>
#include <platform/CommandWords.hpp>
#include <platform/Errors.hpp>
#include <platform/FileManager.hpp>
#include <platform/MimeTypes.hpp>
#include <platform/URL.hpp>

#include <algorithm>
#include <array>

namespace corvanta {

namespace {

// Others lack an index, or are played as far as they go.
bool statesItsLength(const URL& file) {
    constexpr auto kinds = std::to_array<std::string_view>(
        {"video/mp4", "audio/mp4", "video/x-m4v", "video/quicktime", "video/3gpp", "video/3gpp2",
         "video/x-matroska", "audio/x-matroska", "video/webm", "audio/webm"});
    const auto kind = mimeTypeForExtension(file.pathExtension());
    return kind && std::ranges::find(kinds, *kind) != kinds.end();
}

bool opensWhole(const URL& file) {
    try {
        const AssetReader asset(file);
        return asset.trackCount() > 0 && asset.statedDuration().value_or(0) > 0;
    } catch (const PlatformError&) {
        return false;
    }
}

} // namespace

WrittenOutput::WrittenOutput(std::string_view command) {
    if (auto words = splitCommand(command); !words.empty()) {
        path_ = std::move(words.back());
    }
}

void WrittenOutput::hear(std::string_view line) {
    // What ffmpeg tells of the inputs' contents is indented, so that no title can be mistaken for these.
    constexpr auto failures = std::to_array<std::string_view>(
        {"Error writing trailer", "Error closing file", "av_interleaved_write_frame(): "});
    failed_ = failed_ || std::ranges::any_of(failures, [line](std::string_view failure) {
                  return line.starts_with(failure);
              });
}

bool WrittenOutput::isWhole() const {
    if (failed_ || !FileManager::fileExists(path_)) {
        return !failed_;
    }
    const URL file = URL::fromFilePath(path_);
    return FileManager::isEndless(path_) || !statesItsLength(file) || opensWhole(file);
}

} // namespace corvanta
