#include <CorvantaSdkVideo/Commands/Join/JoinCommands.hpp>

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>
#include <platform/AssetReader.hpp>
#include <platform/Errors.hpp>
#include <platform/FileManager.hpp>

#include <algorithm>
#include <array>
#include <string_view>

namespace corvanta {

namespace {

bool isMP4(const std::string& output) {
    return std::ranges::any_of(std::to_array<std::string_view>({".mp4", ".m4v", ".mov", ".m4a"}),
                               [&](std::string_view extension) { return output.ends_with(extension); });
}

bool hasApplicationTags(const URL& file) {
    try {
        return AssetReader(file).hasApplicationTags();
    } catch (const PlatformError&) {
        return false;
    }
}

} // namespace

FFMPEGCommand joinByCopyCommand(const JoinFile& file, const std::vector<std::string>& listed,
                                const URL& first, const URL& list, const std::string& tagOptions,
                                const std::string& output) {
    std::string text;
    for (const std::string& path : listed) {
        text += "file " + path + '\n';
    }
    FileManager::createFile(list.path(), text);
    std::string script = "-y -f concat -safe 0 -i " + list.path() + " -i " + ffmpegFormatted(first.path());
    std::string tags;
    for (std::size_t number = 0; number < file.tracks.size(); ++number) {
        const CodedTrack& track = file.tracks[number];
        const std::string source = std::to_string(track.number);
        script += " -map 0:" + source;
        tags += " -map_metadata:s:" + std::to_string(number) + " 1:s:" + source;
        if (track.codec == "hevc" && isMP4(output)) {
            // Apple's players know HEVC by this tag alone.
            tags += " -tag:" + std::to_string(number) + " hvc1";
        }
    }
    script += " -c copy" + tagOptions + tags + " " + ffmpegFormatted(output);
    return {std::move(script), {list.path()}};
}

std::string keptTags(const URL& first, int input, const std::string& output) {
    std::string options = " -map_metadata " + std::to_string(input);
    if (isMP4(output) && hasApplicationTags(first)) {
        // The container's own words are written as tags too then, and would contradict it.
        options += " -movflags +use_metadata_tags -metadata major_brand= -metadata minor_version= -metadata "
                   "compatible_brands=";
    }
    return options;
}

} // namespace corvanta
