#include "Commands.hpp"
#include "Progress.hpp"
#include "Run.hpp"

#include <nlohmann/json.hpp>
#include <platform/FileManager.hpp>

#include <memory>
#include <stdexcept>

using namespace corvanta;

namespace {

struct CleanOptions {
    std::string output;
    std::string input;
};

// What is stopped while ffmpeg writes the video ends as if it were done, with a video that is cut off.
URL cleanInterruptibly(const CorvantaSdkVideoFile& file, const CorvantaSdkVideoFileDescriptor& output) {
    bool interrupted = false;
    boost::asio::cancellation_signal stop;
    const auto onInterrupt = [&] {
        interrupted = true;
        cancelSessions();
        stop.emit(boost::asio::cancellation_type::terminal);
    };
    CorvantaSdkVideoNoiseCancellationResult result;
    try {
        result = runInterruptible(CorvantaSdkVideo->engine()->clearNoiseForFile(file, output), onInterrupt,
                                  stop.slot());
        if (interrupted) {
            FileManager::removeItem(result.fileURL.path());
        }
    } catch (const std::exception&) {
        if (!interrupted) {
            throw;
        }
    }
    if (interrupted) {
        throw std::runtime_error("interrupted");
    }
    return result.fileURL;
}

// The module doesn't report a failure to write the video.
void expectReadable(const URL& cleaned) {
    try {
        runInterruptible(CorvantaSdkVideo->getVideosInformation({CorvantaSdkVideoFile(cleaned)}));
    } catch (const CorvantaSdkVideoError&) {
        if (FileManager::fileExists(cleaned.path())) {
            FileManager::removeItem(cleaned.path());
        }
        throw std::runtime_error("the cleaned video could not be written");
    }
}

void clean(Console& console, const CleanOptions& options) {
    const auto file = inputFiles({options.input}).front();
    const auto information = runInterruptible(CorvantaSdkVideo->getVideosInformation({file}));
    URL cleaned;
    {
        const Progress progress(console, "clean", information.front().durationMillis);
        cleaned = cleanInterruptibly(file, outputLocation(options.output));
    }
    expectReadable(cleaned);
    if (console.json()) {
        console.print(nlohmann::ordered_json{{"fileURL", cleaned.absoluteString()}});
    } else {
        console.print("{}\n", cleaned.path());
    }
}

} // namespace

void addCleanCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("clean", "Remove background noise from a video's sound");
    const auto options = std::make_shared<CleanOptions>();
    command->add_option("OUT", options->output, "Where to write it, without extension")->required();
    command->add_option("FILE", options->input, "Video file")->required();
    command->callback(
        [&chosen, options] { chosen = [options](Console& console) { clean(console, *options); }; });
}
