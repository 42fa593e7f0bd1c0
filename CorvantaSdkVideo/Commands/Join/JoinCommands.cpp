#include <CorvantaSdkVideo/Commands/Join/JoinCommands.hpp>

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/KeptTags.hpp>
#include <platform/FileManager.hpp>

namespace corvanta {

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
        if (track.codec == "hevc" && isMP4Family(output)) {
            // Apple's players know HEVC by this tag alone.
            tags += " -tag:" + std::to_string(number) + " hvc1";
        }
    }
    script += " -c copy" + tagOptions + tags + " " + ffmpegFormatted(output);
    return {std::move(script), {list.path()}};
}

} // namespace corvanta
