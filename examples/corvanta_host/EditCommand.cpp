#include "Commands.hpp"
#include "Failures.hpp"
#include "FileArguments.hpp"
#include "Inputs.hpp"
#include "Output.hpp"
#include "Progress.hpp"
#include "Run.hpp"
#include "SeveralJobs.hpp"
#include "Values.hpp"
#include "Words.hpp"

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditor.hpp>

#include <nlohmann/json.hpp>

#include <array>
#include <cmath>
#include <map>
#include <memory>
#include <string>
#include <vector>

using namespace corvanta;

namespace {

struct EditOptions {
    explicit EditOptions(CLI::App& command) : arguments(command, false) {}

    FileArguments arguments;
    std::string start;
    std::string end;
    std::vector<std::string> ranges;
    std::int64_t rotationDegrees = 0;
    float volume = 1;
    /// Absent: copied, and exact with several ranges.
    std::string cut;
};

const std::map<std::string, CorvantaSdkVideoCut> cuts{{"copied", CorvantaSdkVideoCut::copied},
                                                      {"exact", CorvantaSdkVideoCut::exact},
                                                      {"automatic", CorvantaSdkVideoCut::automatic}};

constexpr std::array wayNames{"copied", "joined", "encoded"};

std::string nameOf(CorvantaSdkVideoCutWay way) { return wayNames.at(static_cast<std::size_t>(way)); }

// "START-END", each a time.
CorvantaSdkVideoTimeRange rangeFrom(const std::string& text) {
    const std::size_t dash = text.find('-', 1);
    if (dash == std::string::npos) {
        throw UsageError("--range takes START-END, such as 1.5-0:04, not \"" + text + '"');
    }
    return {secondsFrom("--range", text.substr(0, dash), 1),
            secondsFrom("--range", text.substr(dash + 1), 1)};
}

std::vector<CorvantaSdkVideoTimeRange> rangesFrom(const EditOptions& options) {
    if (options.ranges.empty() && (options.start.empty() || options.end.empty())) {
        throw UsageError("edit takes --start and --end, or --range START-END");
    }
    std::vector<CorvantaSdkVideoTimeRange> ranges;
    for (const std::string& range : options.ranges) {
        ranges.push_back(rangeFrom(range));
    }
    if (ranges.empty()) {
        ranges.push_back({secondsFrom("--start", options.start, 1), secondsFrom("--end", options.end, 1)});
    }
    return ranges;
}

CorvantaSdkVideoCut cutFrom(const EditOptions& options) {
    const bool isOne = options.ranges.size() < 2;
    const auto usual = isOne ? CorvantaSdkVideoCut::copied : CorvantaSdkVideoCut::exact;
    const auto cut = options.cut.empty() ? usual : cuts.at(options.cut);
    if (!isOne && cut == CorvantaSdkVideoCut::copied) {
        throw UsageError("several ranges can't be cut by copying alone: leave out --cut copied");
    }
    return cut;
}

// What copying would lose or change without a word. What can't be found out, the edit itself stumbles over.
void warn(Console& console, const CorvantaSdkVideoFile& file, CorvantaSdkVideoTimeRange range,
          std::int64_t rotationDegrees) {
    if (console.json()) {
        return;
    }
    try {
        const auto cut = runInterruptible(CorvantaSdkVideo->cutInspection(file, range.start, range.end));
        if (cut.copyingLoses && !cut.copiedStart) {
            console.note("copying keeps no picture of this range: --cut exact keeps all of it");
        } else if (cut.copyingLoses) {
            const double late = *cut.copiedStart - range.start;
            console.note(
                fmt::format("copying {} {:.2f} s{}: --cut exact keeps all of it, and encodes {:.2f} s",
                            range.start > 0 ? "starts the picture" : "loses the first", late,
                            range.start > 0 ? " late" : " of the picture", cut.encodedSeconds));
        }
        std::vector<CorvantaSdkVideoFile> files(1, file);
        const auto information = runInterruptible(CorvantaSdkVideo->getVideosInformation(std::move(files)));
        // A turn is recorded in the opposite sense to how a probe states it.
        const std::int64_t own = information.front().rotation();
        if (own % 360 != 0 && (own + rotationDegrees) % 360 != 0) {
            console.note(
                fmt::format("the clip's own turn isn't kept: --rotate {} keeps it, and so does --cut exact",
                            (720 - own) % 360));
        }
    } catch (const Cancelled&) {
        throw;
    } catch (const std::exception&) {
    }
}

// How each range was made; where nothing but copying was asked for there is nothing to tell.
void tell(Console& console, const std::string& path, const std::vector<CorvantaSdkVideoTimeRange>& ranges,
          const CorvantaSdkVideoEditorResult& result, bool isAsked) {
    nlohmann::ordered_json about;
    if (isAsked) {
        about["cut"] = nameOf(result.cutWay);
        about["ranges"] = nlohmann::ordered_json::array();
        for (std::size_t index = 0; index < ranges.size(); ++index) {
            const auto& [start, end] = ranges[index];
            const std::string way = nameOf(result.rangeWays.at(index));
            about["ranges"].push_back({{"start", start}, {"end", end}, {"cut", way}});
            console.note(fmt::format("{:g} s to {:g} s: {}", start, end, way));
        }
    }
    console.resultAt(path, about);
}

void editFile(Console& console, const EditOptions& options,
              const std::vector<CorvantaSdkVideoTimeRange>& ranges, CorvantaSdkVideoCut cut,
              const Files& files) {
    const auto inputs = inputFiles(files.inputs);
    const Output output = outputFor(files, "mp4");
    if (cut == CorvantaSdkVideoCut::copied) {
        warn(console, inputs.front(), ranges.front(), options.rotationDegrees);
    }
    UnfinishedOutput unfinished(output.path);
    CorvantaSdkVideoEditorResult result;
    {
        const Progress progress(console, "edit");
        const auto editor = makeCorvantaSdkVideoEditor();
        result = runInterruptible(editor->edit({.videoURL = inputs.front().url(),
                                                .outputURL = URL::fromFilePath(output.path),
                                                .rotationAngle = options.rotationDegrees,
                                                .volumen = options.volume,
                                                .cut = cut,
                                                .ranges = ranges,
                                                .onProgress = progress.listener()}));
    }
    unfinished.keep();
    tell(console, output.path, ranges, result, cut != CorvantaSdkVideoCut::copied);
}

void edit(Console& console, const EditOptions& options) {
    const auto ranges = rangesFrom(options);
    const CorvantaSdkVideoCut cut = cutFrom(options);
    if (options.rotationDegrees % 90 != 0 || std::abs(options.rotationDegrees) >= 360) {
        throw UsageError(
            fmt::format("--rotate takes quarter turns, 0, 90, 180 or 270, not {}", options.rotationDegrees));
    }
    if (!(options.volume >= 0) || !std::isfinite(options.volume)) {
        throw UsageError(fmt::format("--volume takes a factor from 0 up, not {}", options.volume));
    }
    runEachFile(console, options.arguments,
                [&](const Files& files) { editFile(console, options, ranges, cut, files); });
}

} // namespace

void addEditCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand(
        "edit", "Trim, turn and set the volume, without encoding more of the picture than --cut asks for");
    const auto options = std::make_shared<EditOptions>(*command);
    auto* start =
        command->add_option("--start", options->start, "Start of the kept range: seconds, or 0:01.5");
    auto* end = command->add_option("--end", options->end, "End of the kept range");
    command
        ->add_option(
            "--range", options->ranges,
            "START-END, a range that is kept, in place of --start and --end; several are joined in their "
            "order, by an exact cut")
        ->allow_extra_args(false)
        ->excludes(start)
        ->excludes(end);
    command
        ->add_option("--rotate", options->rotationDegrees,
                     "Turn to record, in quarters: 0, 90, 180 or 270 degrees clockwise")
        ->capture_default_str();
    command->add_option("--volume", options->volume, "Factor for the sound, 0 for silence")
        ->capture_default_str();
    command
        ->add_option(
            "--cut", options->cut,
            "copied: the picture begins at the next key picture; exact: at the very start; automatic: "
            "exact where copying would lose pictures")
        ->check(oneOf({"copied", "exact", "automatic"}))
        ->default_str("copied, and exact with several ranges");
    command->callback(
        [&chosen, options] { chosen = [options](Console& console) { edit(console, *options); }; });
}
