#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandGenerator.hpp>

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>
#include <platform/FileManager.hpp>

#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/replace.hpp>

#include <algorithm>
#include <system_error>

namespace corvanta {

namespace {

std::string scaleFilter(std::optional<std::int64_t> width, std::optional<std::int64_t> height) {
    return "scale=" + std::to_string(width.value_or(-1)) + ":" + std::to_string(height.value_or(-1));
}

std::string joined(const std::vector<std::string>& words) { return boost::algorithm::join(words, " "); }

std::string createConcatCommandInputFile(const std::vector<CorvantaSdkVideoInformation>& assetsMetadata,
                                         const URL& inputFileURL) {
    std::string list;
    for (const CorvantaSdkVideoInformation& asset : assetsMetadata) {
        list += "file " + asset.url.path() + '\n';
    }
    std::string path = inputFileURL.path();
    FileManager::createFile(path, list);
    return path;
}

// Joined files have lost their marks of covers, and ffmpeg would copy the largest picture of all. Then what
// it takes of the tracks by itself is named: the largest picture, the sound with the most channels and the
// first subtitles.
std::string mapsBesideCovers(const std::vector<CorvantaSdkVideoInformation>& videosInfo) {
    if (videosInfo.empty() || videosInfo.front().covers.empty()) {
        return "";
    }
    const CorvantaSdkVideoInformation& first = videosInfo.front();
    std::string maps;
    if (const auto largest = std::ranges::max_element(
            first.videos, {}, [](const auto& track) { return track.width * track.height; });
        largest != first.videos.end()) {
        maps += "-map 0:" + std::to_string(largest->index) + " ";
    }
    if (const auto fullest =
            std::ranges::max_element(first.audios, {}, &CorvantaSdkVideoAudioTrackInformation::channels);
        fullest != first.audios.end()) {
        maps += "-map 0:" + std::to_string(fullest->index) + " ";
    }
    return maps + "-map 0:s:0? ";
}

} // namespace

FFMPEGCommand FFMPEGCommandGenerator::generateEditCommand(const URL& inputFile, double trimStart,
                                                          double trimEnd, std::int64_t rotationAngle,
                                                          float volumenLevel, const URL& outputFile) const {
    std::string script =
        "-y -i {inputFile} -ss {trimStart} -to {trimEnd} -c:v copy -c:a aac {rotationMetadata} "
        "{volumeCommand} -preset superfast {outputFile}";
    boost::replace_all(script, "{inputFile}", ffmpegFormatted(inputFile.path()));
    boost::replace_all(script, "{trimStart}", formattedTime(trimStart));
    boost::replace_all(script, "{trimEnd}", formattedTime(trimEnd));
    boost::replace_all(script, "{rotationMetadata}",
                       "-metadata:s:v:0 rotate=" + ffmpegFormatted(rotationAngle));
    boost::replace_all(script, "{volumeCommand}", "-af \"volume=" + shortestDecimal(volumenLevel) + '"');
    boost::replace_all(script, "{outputFile}", ffmpegFormatted(outputFile.path()));
    return {std::move(script), {}};
}

FFMPEGCommand
FFMPEGCommandGenerator::generateConcatCommandFor(const std::vector<CorvantaSdkVideoInformation>& videosInfo,
                                                 const URL& inputPath, const std::string& outputPath) const {
    const std::string listPath = createConcatCommandInputFile(videosInfo, inputPath);
    std::string script = "-y -f concat -safe 0 -i {inputFilesListsPath} {maps}-c copy {output}";
    boost::replace_all(script, "{maps}", mapsBesideCovers(videosInfo));
    boost::replace_all(script, "{inputFilesListsPath}", listPath);
    boost::replace_all(script, "{output}", ffmpegFormatted(outputPath));
    return {std::move(script), {listPath}};
}

void FFMPEGCommandGenerator::deleteInputFilesListFile(const std::string& path) const {
    try {
        FileManager::removeItem(path);
    } catch (const std::system_error&) {
        // A list file that stays is harmless; the result of the run must not depend on it.
    }
}

std::string FFMPEGCommandGenerator::generateThumbnailGenerationCommandFor(
    const CorvantaSdkVideoThumbnailInputVideo& video, const URL& outputPath) const {
    return joined({"-i", video.input().url().absoluteString(), "-ss", shortestDecimal(video.position()),
                   "-vframes", "1", "-vf", scaleFilter(video.width(), video.height()),
                   ffmpegFormatted(outputPath.path())});
}

FFMPEGCommand FFMPEGCommandGenerator::generateThumbnailForTrim(const URL& video, double interval,
                                                               std::optional<std::int64_t> width,
                                                               std::optional<std::int64_t> height,
                                                               const std::string& outputPath) const {
    const std::string words =
        joined({"-sseof", "-" + shortestDecimal(interval), "-i", ffmpegFormatted(video.path()), "-vframes",
                "1", "-vf", scaleFilter(width, height), ffmpegFormatted(outputPath)});
    return {" " + words, {}};
}

std::string FFMPEGCommandGenerator::generateExtractAudioCommandFor(const URL& videoURL, const URL& outputPath,
                                                                   std::int64_t audioChannels,
                                                                   std::int64_t samplingRate,
                                                                   std::int64_t bitRate,
                                                                   const std::string& format) const {
    return joined({"-i", ffmpegFormatted(videoURL.path()), "-vn", "-ac", std::to_string(audioChannels), "-ar",
                   std::to_string(samplingRate), "-ab", std::to_string(bitRate) + "k", "-f", format,
                   ffmpegFormatted(outputPath.path())});
}

} // namespace corvanta
