#include <CorvantaSdkVideo/Thumbnail/ContactSheet.hpp>

#include <CorvantaSdkVideo/CredentialsManager/LoginCheck.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <CorvantaSdkVideo/Shared/MeasuredLengths.hpp>
#include <CorvantaSdkVideo/Shared/Progress/ProgressMeter.hpp>
#include <platform/Cancellation.hpp>
#include <platform/Directories.hpp>
#include <platform/FileManager.hpp>

#include <string>
#include <utility>
#include <vector>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;

constexpr const char* gap = "4";
constexpr const char* background = "0x202020";

// The small pictures, as long as they are needed.
struct Frames {
    std::vector<URL> files = {};
    ~Frames() {
        for (const URL& file : files) {
            CorvantaSdkVideoUtils::deleteFileIfExists(file);
        }
    }
};

void requireForm(const ContactSheetForm& form) {
    if (form.columns < 1 || form.width < 1 || form.columns > ContactSheet::mostPixels ||
        form.width > ContactSheet::mostPixels || form.columns * form.width > ContactSheet::mostPixels) {
        throw Error(Error::invalidThumbnailWidth,
                    std::to_string(form.columns) + " columns of " + std::to_string(form.width) + " pixels");
    }
    if (form.rows < 1 || form.rows > ContactSheet::mostFrames ||
        form.columns * form.rows > ContactSheet::mostFrames) {
        throw Error(Error::invalidThumbnailHeight, std::to_string(form.columns) + " by " +
                                                       std::to_string(form.rows) + " frames: there may be " +
                                                       std::to_string(ContactSheet::mostFrames));
    }
}

// Where ffmpeg counts the first picture that is no cover.
std::size_t picturePosition(const CorvantaSdkVideoInformation& file) {
    std::size_t position = 0;
    for (const std::int64_t cover : file.covers) {
        position += cover < file.videos.front().index ? 1 : 0;
    }
    return position;
}

std::string frameCommand(const URL& input, std::size_t position, double seconds, std::int64_t width,
                         const URL& output) {
    return "-y -ss " + formattedTime(seconds) + " -i " + ffmpegFormatted(input.path()) +
           " -map 0:v:" + std::to_string(position) +
           " -frames:v 1 -vf scale=iw*sar:ih,scale=" + std::to_string(width) +
           ":-2,setsar=1 -f image2 -c:v png " + ffmpegFormatted(output.path());
}

std::string sheetCommand(const std::vector<URL>& frames, const ContactSheetForm& form, const URL& output) {
    std::string inputs;
    std::string graph;
    for (std::size_t index = 0; index < frames.size(); ++index) {
        inputs += "-i " + ffmpegFormatted(frames[index].path()) + " ";
        graph += "[" + std::to_string(index) + ":v]";
    }
    return "-y " + inputs + "-filter_complex \"" + graph + "concat=n=" + std::to_string(frames.size()) +
           ",tile=" + std::to_string(form.columns) + "x" + std::to_string(form.rows) + ":padding=" + gap +
           ":margin=" + gap + ":color=" + background + "\" -frames:v 1 -q:v 3 " +
           ffmpegFormatted(output.path());
}

} // namespace

ContactSheet::ContactSheet(std::shared_ptr<FFMPEGCommandExecutor> commandExecutor,
                           std::shared_ptr<CorvantaCredentialsManager> credentialsManager)
    : commandExecutor_(std::move(commandExecutor)), credentialsManager_(std::move(credentialsManager)) {}

Task<CorvantaSdkVideoThumbnailResult> ContactSheet::write(CorvantaSdkVideoFile input,
                                                          CorvantaSdkVideoFileDescriptor output,
                                                          ContactSheetForm form,
                                                          std::shared_ptr<ProgressMeter> meter) {
    const URL& video = input.url();
    Logger::addLog(Event::createThumbnail, EventMessage::createThumbnail(video));
    requireLogin(*credentialsManager_);
    if (!FileManager::fileExists(video.path())) {
        throw Error(Error::notFoundVideo, "there is no " + video.path());
    }
    requireForm(form);
    const auto picture = output.url(FileExtension(FileExtension::jpg).rawValue());
    if (!picture) {
        throw Error(Error::notFoundVideo, "the output location is no URL");
    }
    try {
        co_await writeSheet(video, *picture, form, meter);
    } catch (const std::exception& error) {
        Logger::logError(Event::createThumbnail, EventMessage::createThumbnailFailed(video, error));
        if (isCancellation(error)) {
            throw;
        }
        throw Error(Error::thumbnailGenerationFailed, detailsOf(error));
    }
    if (meter) {
        meter->complete();
    }
    co_return CorvantaSdkVideoThumbnailResult{*picture};
}

Task<> ContactSheet::writeSheet(URL input, URL output, ContactSheetForm form,
                                std::shared_ptr<ProgressMeter> meter) {
    std::vector<CorvantaSdkVideoInformation> probed;
    probed.push_back(co_await commandExecutor_->getMediaInformation(input));
    probed = co_await withMeasuredLengths(std::move(probed));
    const CorvantaSdkVideoInformation& file = probed.front();
    if (file.videos.empty()) {
        throw PlatformError("ContactSheet", 1, input.path() + ": no picture");
    }
    const std::int64_t millis =
        file.videos.front().durationMillis > 0 ? file.videos.front().durationMillis : file.durationMillis;
    const std::int64_t count = form.columns * form.rows;
    CommandPaths paths;
    const URL source = paths.input(input, PathForm::quoted);
    const URL target = paths.output(output, PathForm::quotedImage);
    Frames frames;
    std::vector<URL> written;
    for (std::int64_t index = 0; index < count; ++index) {
        const URL frame = Directories::temporaryFile("png");
        frames.files.push_back(frame);
        // The middle of each of the equal parts.
        const double seconds = static_cast<double>(millis) / 1000 * (static_cast<double>(index) + 0.5) /
                               static_cast<double>(count);
        if (meter) {
            meter->beginPart(1 / static_cast<double>(count - index + 1), 1);
        }
        const URL named = paths.temporary(frame, PathForm::quotedImage);
        std::string command = frameCommand(source, picturePosition(file), seconds, form.width, named);
        co_await commandExecutor_->executeMeasured(std::move(command), nullptr, meter);
        // Nothing is there behind a picture that ends before its track.
        if (FileManager::fileExists(frame.path())) {
            written.push_back(named);
        }
    }
    if (written.empty()) {
        throw PlatformError("ContactSheet", 1, input.path() + ": there are no pictures");
    }
    std::string command = sheetCommand(written, form, target);
    co_await commandExecutor_->executeFFMPEGCommand(std::move(command));
    paths.finish();
}

} // namespace corvanta
