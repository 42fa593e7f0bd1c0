#include <CorvantaSdkVideo/Editor/Cut/CutCommands.hpp>

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/KeptTags.hpp>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace corvanta {

namespace {

constexpr std::string_view h264 = "h264";
constexpr std::string_view hevc = "hevc";

// libav's numbers of H.264's profiles, and x264's names.
constexpr std::array<std::pair<int, std::string_view>, 7> h264Profiles{{{66, "baseline"},
                                                                        {578, "baseline"},
                                                                        {77, "main"},
                                                                        {100, "high"},
                                                                        {110, "high10"},
                                                                        {122, "high422"},
                                                                        {244, "high444"}}};

std::string_view h264Profile(int profile) {
    const auto found = std::ranges::find(h264Profiles, profile, &std::pair<int, std::string_view>::first);
    return found == h264Profiles.end() ? "" : found->second;
}

bool isPlanar(const PictureFormat& format) {
    constexpr auto both = std::to_array<std::string_view>(
        {"yuv420p", "yuv422p", "yuv444p", "yuv420p10le", "yuv422p10le", "yuv444p10le"});
    constexpr auto ofH264 = std::to_array<std::string_view>({"yuvj420p", "yuvj422p", "yuvj444p"});
    constexpr auto ofHEVC = std::to_array<std::string_view>({"yuv420p12le", "yuv422p12le", "yuv444p12le"});
    const auto contains = [&](const auto& names) {
        return std::ranges::find(names, format.pixelFormat) != names.end();
    };
    return contains(both) || contains(ofH264) || (format.codec == hevc && contains(ofHEVC));
}

bool isHighRange(const PictureFormat& format) {
    return format.colorTransfer == "smpte2084" || format.colorTransfer == "arib-std-b67";
}

std::string colorOptions(const PictureFormat& format) {
    std::string options;
    for (const auto& [option, value] :
         {std::pair<std::string_view, const std::string&>{" -color_range ", format.colorRange},
          {" -color_primaries ", format.colorPrimaries},
          {" -color_trc ", format.colorTransfer},
          {" -colorspace ", format.colorMatrix}}) {
        if (!value.empty()) {
            options.append(option).append(value);
        }
    }
    return options;
}

// A constant rate factor that leaves at least 45 dB of pictures with noise in them, and more of others.
std::string encoderOptions(const PictureFormat& format, bool likeSource) {
    const std::string quality = " -preset veryfast -crf 7";
    std::string options;
    if (format.codec == hevc || (!likeSource && isHighRange(format))) {
        options = " -c:v libx265" + quality + " -x265-params log-level=error:repeat-headers=1";
        options += likeSource ? ":bframes=0" : "";
    } else {
        options = " -c:v libx264" + quality;
        if (likeSource) {
            options += " -bf 0 -profile:v ";
            options += h264Profile(format.profile);
            options += " -x264-params sps-id=" + std::to_string(format.freeParameterSetId);
        }
        if (format.isInterlaced) {
            options += " -flags +ildct+ilme";
        }
    }
    return options + " -pix_fmt " + (isPlanar(format) ? format.pixelFormat : "yuv420p") +
           colorOptions(format);
}

} // namespace

bool canEncodeAlike(const PictureFormat& format) {
    if (!isPlanar(format) || format.isInterlaced) {
        return false;
    }
    return format.codec == hevc ||
           (format.codec == h264 && !h264Profile(format.profile).empty() && format.freeParameterSetId > 0);
}

std::string encodePieceCommand(const std::string& input, int track, const PictureFormat& format,
                               bool likeSource, const CutPiece& piece, double decodeFromSeconds,
                               const std::string& output) {
    // Half a second before the key picture, since some containers are searched by decoding times.
    const double seek = decodeFromSeconds - 0.5;
    return "-y -noautorotate -copyts " +
           (seek > 0 ? "-noaccurate_seek -ss " + formattedTime(seek) + " " : "") + "-i " +
           ffmpegFormatted(input) + " -map 0:" + std::to_string(track) +
           " -vf \"trim=start_pts=" + std::to_string(piece.from) + ":end_pts=" + std::to_string(piece.to) +
           "\" -fps_mode passthrough -enc_time_base -1" + encoderOptions(format, likeSource) + " -f nut " +
           ffmpegFormatted(output);
}

std::string finishCutCommand(const CutParts& parts) {
    const std::string source = ffmpegFormatted(parts.source);
    std::string command = "-y -i " + ffmpegFormatted(parts.pictures);
    std::string graph;
    std::string joined;
    const std::size_t count = parts.ranges.size();
    for (std::size_t index = 0; index < count; ++index) {
        const auto& [start, end] = parts.ranges[index];
        const std::string length = formattedTime(end - start);
        const std::string label = "[s" + std::to_string(index) + "]";
        command += " -ss " + formattedTime(start) + " -t " + length + " -i " + source;
        if (parts.soundTrack) {
            // As long as the range whatever the sound is like, so that the next one begins with its picture.
            graph += "[" + std::to_string(index + 1) + ":" + std::to_string(*parts.soundTrack) +
                     "]aresample=async=1:first_pts=0,apad=whole_dur=" + length + ",atrim=end=" + length +
                     label + ";";
            joined += label;
        }
    }
    const bool isMP4 = isMP4Family(parts.output);
    // ffmpeg's mp4 holds either.
    const bool hasCovers = isMP4 && !parts.coverTracks.empty() && !parts.hasApplicationTags;
    if (hasCovers) {
        command += " -i " + source;
    }
    command += " -map 0:v:0 -map_metadata 1 -map_chapters -1 -c:v copy -map_metadata:s:v:0 1:s:" +
               std::to_string(parts.pictureTrack);
    for (std::size_t index = 0; hasCovers && index < parts.coverTracks.size(); ++index) {
        command += " -map " + std::to_string(count + 1) + ":" + std::to_string(parts.coverTracks[index]) +
                   " -disposition:v:" + std::to_string(index + 1) + " attached_pic";
    }
    if (parts.soundTrack) {
        command += " -filter_complex \"" + graph + joined + "concat=n=" + std::to_string(count) +
                   ":v=0:a=1,volume=" + shortestDecimal(parts.volume) +
                   R"([sound]" -map "[sound]" -c:a aac -map_metadata:s:a:0 1:s:)" +
                   std::to_string(*parts.soundTrack);
    }
    if (isMP4 && parts.hasApplicationTags) {
        command += applicationTagOptions();
    }
    return command + " " + ffmpegFormatted(parts.output);
}

} // namespace corvanta
