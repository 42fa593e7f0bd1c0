#include <CorvantaSdkVideo/Editor/Cut/ExactCut.hpp>

#include <CorvantaSdkVideo/Editor/Cut/CutCommands.hpp>
#include <CorvantaSdkVideo/Editor/Cut/CutPlan.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>
#include <CorvantaSdkVideo/Shared/FreeSpace.hpp>
#include <CorvantaSdkVideo/Shared/Progress/ProgressMeter.hpp>
#include <platform/Aside.hpp>
#include <platform/AssetReader.hpp>
#include <platform/Errors.hpp>
#include <platform/FFmpegKit.hpp>
#include <platform/PictureJoin.hpp>
#include <platform/UUID.hpp>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <system_error>
#include <utility>

namespace corvanta {

namespace {

using Ranges = std::vector<CorvantaSdkVideoTimeRange>;

// A piece of the cut in its place, and what it takes to make it.
struct PlannedRun {
    PictureRun run = {};
    CutPiece piece = {};
    double decodeFromSeconds = 0;
    double seconds = 0;
    std::size_t range = 0;
};

struct Plan {
    PictureFormat format;
    int track = 0;
    bool likeSource = false;
    std::vector<PlannedRun> runs = {};

    CorvantaSdkVideoCutWay way(std::size_t range) const {
        const auto hasRun = [&](bool copied) {
            return std::ranges::any_of(runs, [&](const PlannedRun& planned) {
                return planned.range == range && planned.run.isOriginal == copied;
            });
        };
        if (!hasRun(false)) {
            return CorvantaSdkVideoCutWay::copied;
        }
        return hasRun(true) ? CorvantaSdkVideoCutWay::joined : CorvantaSdkVideoCutWay::encoded;
    }
};

// Temporary files, removed with this object.
class Workspace {
  public:
    Workspace() = default;
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;
    ~Workspace() {
        for (const std::string& file : files_) {
            std::error_code ignored;
            std::filesystem::remove(file, ignored);
        }
    }

    std::string newFile(const std::string& extension) {
        return files_.emplace_back(
            CorvantaSdkVideoUtils::outputURL(uuidString(makeUUID()), extension).path());
    }

  private:
    std::vector<std::string> files_;
};

// What is tried one after the other, until the pictures are those that the container tells of.
enum class Attempt {
    /// What can be copied is copied, the rest encoded.
    copying,
    /// All is encoded.
    encoding,
    /// All is encoded, read from the file's beginning on, and taken as it comes: not every container can be
    /// searched, or tells when its pictures are shown.
    reading,
};

std::vector<CutPiece> piecesOf(CodedPictures& pictures, bool likeSource, std::int64_t start,
                               std::int64_t end) {
    if (likeSource) {
        try {
            return planCut(pictures, start, end);
        } catch (const PlatformError&) {
            // What the container doesn't tell clearly is decoded.
        }
    }
    return {planEncoding(pictures, start, end)};
}

std::vector<CutPiece> piecesOf(CodedPictures& pictures, Attempt attempt, std::int64_t start,
                               std::int64_t end) {
    if (attempt == Attempt::copying) {
        return planCut(pictures, start, end);
    }
    if (attempt == Attempt::reading) {
        return {{.from = start, .to = end, .decodeFrom = pictures.ticks(0)}};
    }
    CutPiece piece = planEncoding(pictures, start, end);
    piece.shown = shownTimes(pictures, start, end);
    return {std::move(piece)};
}

// Throws PlatformError if the attempt can't succeed.
Plan planFor(const std::string& source, const Ranges& ranges, Attempt attempt) {
    CodedPictures pictures(source);
    Plan plan{.format = pictures.format(), .track = pictures.trackIndex()};
    plan.likeSource = attempt == Attempt::copying;
    if (plan.likeSource && !canEncodeAlike(plan.format)) {
        throw PlatformError("ExactCut", 1, plan.format.codec + " can't be joined");
    }
    double placed = 0;
    for (std::size_t index = 0; index < ranges.size(); ++index) {
        const auto& [start, end] = ranges[index];
        const std::int64_t from = pictures.ticks(start);
        const std::int64_t place = pictures.ticks(placed) - pictures.ticks(0);
        bool isFirst = true;
        for (CutPiece& piece : piecesOf(pictures, attempt, from, pictures.ticks(end))) {
            PlannedRun planned{.decodeFromSeconds = pictures.seconds(piece.decodeFrom), .range = index};
            planned.seconds = pictures.seconds(piece.to) - pictures.seconds(piece.from);
            PictureRun& run = planned.run;
            run.isOriginal = piece.way == CutPiece::Way::copied;
            run.shift = place - from;
            if (std::exchange(isFirst, false)) {
                run.firstShown = place;
            }
            if (run.isOriginal) {
                run.file = source;
                run.entry = piece.from;
                run.delay = piece.delay;
                run.stop = piece.stop;
            }
            run.shown = piece.shown;
            planned.piece = std::move(piece);
            plan.runs.push_back(std::move(planned));
        }
        placed += end - start;
    }
    return plan;
}

// What a second costs when its pictures are encoded, beside one of the last run.
constexpr double encodingWork = 5;

double secondsOf(const Ranges& ranges) {
    double seconds = 0;
    for (const auto& [start, end] : ranges) {
        seconds += end - start;
    }
    return seconds;
}

double workOf(const Plan& plan) {
    double work = 0;
    for (const PlannedRun& planned : plan.runs) {
        work += planned.run.isOriginal ? 0 : encodingWork * planned.seconds;
    }
    return work;
}

std::string named(const std::string& file, CommandPaths& paths) {
    return paths.temporary(URL::fromFilePath(file), PathForm::quoted).path();
}

std::shared_ptr<CutParts> partsOf(const CorvantaSdkVideoEditorInput& input, const Ranges& ranges,
                                  const std::string& pictures, CommandPaths& paths) {
    auto parts = std::make_shared<CutParts>();
    parts->source = paths.input(input.videoURL, PathForm::quoted).path();
    parts->output = paths.output(input.outputURL, PathForm::quoted).path();
    parts->pictures = named(pictures, paths);
    parts->ranges = ranges;
    parts->volume = input.volumen;
    return parts;
}

struct PieceEncoding {
    std::string command;
    double seconds;
    /// Of what is still to be done with it.
    double share;
};

// Gives each run that isn't copied its file, and tells how to write those. `lastWork` comes after them.
std::vector<PieceEncoding> encodingsOf(Plan& plan, const std::string& source, double lastWork,
                                       Workspace& workspace, CommandPaths& paths) {
    std::vector<PieceEncoding> encodings;
    double workLeft = lastWork + workOf(plan);
    for (PlannedRun& planned : plan.runs) {
        if (!planned.run.isOriginal) {
            planned.run.file = workspace.newFile("nut");
            const double work = encodingWork * planned.seconds;
            encodings.push_back(
                {encodePieceCommand(source, plan.track, plan.format, plan.likeSource, planned.piece,
                                    planned.decodeFromSeconds, named(planned.run.file, paths)),
                 planned.seconds, work / workLeft});
            workLeft -= work;
        }
    }
    return encodings;
}

bool isStopped(const PlatformError& error) {
    return error.code() == ReturnCode::cancelled || error.code() == ReturnCode::stalled;
}

std::vector<CorvantaSdkVideoCutWay> waysOf(const Plan& plan, std::size_t ranges) {
    std::vector<CorvantaSdkVideoCutWay> ways;
    for (std::size_t range = 0; range < ranges; ++range) {
        ways.push_back(plan.way(range));
    }
    return ways;
}

// What there is beside the pictures.
void describe(const std::string& source, CutParts& parts) {
    AssetReader reader(URL::fromFilePath(source));
    parts.soundTrack = reader.soundTrack();
    parts.coverTracks = reader.coverTracks();
    parts.hasApplicationTags = reader.hasApplicationTags();
}

// The number that the copying edit writes as well.
int rotateTag(std::int64_t degrees) { return std::stoi(ffmpegFormatted(degrees)); }

std::vector<PictureRun> runsOf(const Plan& plan) {
    std::vector<PictureRun> runs;
    runs.reserve(plan.runs.size());
    for (const PlannedRun& planned : plan.runs) {
        runs.push_back(planned.run);
    }
    return runs;
}

CorvantaSdkVideoCutInspection inspected(const std::string& path, CorvantaSdkVideoTimeRange range,
                                        std::stop_token stop) {
    CodedPictures pictures(path, {.stop = std::move(stop)});
    const std::int64_t start = pictures.ticks(range.start);
    const std::int64_t end = pictures.ticks(range.end);
    CorvantaSdkVideoCutInspection inspection;
    const bool likeSource = canEncodeAlike(pictures.format());
    for (const CutPiece& piece : piecesOf(pictures, likeSource, start, end)) {
        if (piece.way == CutPiece::Way::copied) {
            inspection.exactCopies = true;
        } else {
            inspection.encodedSeconds += pictures.seconds(piece.to) - pictures.seconds(piece.from);
        }
    }
    const CopiedStart copied = copiedStart(pictures, start, end);
    inspection.copyingLoses = copied.loses;
    if (copied.pts) {
        inspection.copiedStart = pictures.seconds(*copied.pts);
    }
    return inspection;
}

// The pictures are written alone, and then with their sound.
void requireSpace(const Plan& plan, const std::string& source, const Ranges& ranges,
                  const std::vector<std::string>& targets) {
    Ranges copied;
    for (std::size_t range = 0; range < ranges.size(); ++range) {
        if (plan.way(range) != CorvantaSdkVideoCutWay::encoded) {
            copied.push_back(ranges[range]);
        }
    }
    const std::int64_t bytes = leastCopiedBytes(URL::fromFilePath(source), copied);
    std::vector<NeededSpace> needed;
    needed.reserve(targets.size());
    for (const std::string& target : targets) {
        needed.push_back({target, bytes});
    }
    requireFreeSpace(needed, CorvantaSdkVideoError::trimFailed);
}

} // namespace

ExactCut::ExactCut(std::shared_ptr<FFMPEGCommandExecutor> executor) : executor_(std::move(executor)) {}

Task<std::vector<CorvantaSdkVideoCutWay>> ExactCut::write(CorvantaSdkVideoEditorInput input, Ranges ranges,
                                                          std::shared_ptr<ProgressMeter> meter) const {
    if (meter) {
        meter->setTotal(secondsOf(ranges));
    }
    const auto executor = executor_;
    const std::string source = input.videoURL.path();
    CommandPaths paths;
    Workspace workspace;
    const std::string pictures = workspace.newFile("mp4");
    const auto parts = partsOf(input, ranges, pictures, paths);
    auto plan = std::make_shared<Plan>();
    bool isJoined = false;
    for (const Attempt attempt : {Attempt::copying, Attempt::encoding, Attempt::reading}) {
        try {
            std::function<void(std::stop_token)> makePlan =
                [plan, source, ranges, attempt, pictures,
                 output = input.outputURL.path()](const std::stop_token&) {
                    *plan = planFor(source, ranges, attempt);
                    requireSpace(*plan, source, ranges, {pictures, output});
                };
            co_await runAside(std::move(makePlan));
            auto encodings = encodingsOf(*plan, parts->source, secondsOf(ranges), workspace, paths);
            for (PieceEncoding& encoding : encodings) {
                if (meter) {
                    meter->beginPart(encoding.share, encoding.seconds);
                }
                co_await executor->executeMeasured(std::move(encoding.command), nullptr, meter);
            }
            std::function<void(std::stop_token)> join =
                [plan, source, pictures, turn = rotateTag(input.rotationAngle)](std::stop_token stop) {
                    joinPictures(source, runsOf(*plan), pictures, turn, {.stop = std::move(stop)});
                };
            co_await runAside(std::move(join));
            isJoined = true;
        } catch (const PlatformError& error) {
            if (attempt == Attempt::reading || isStopped(error)) {
                throw;
            }
        }
        if (isJoined) {
            break;
        }
    }
    std::function<void(std::stop_token)> look = [parts, source](const std::stop_token&) {
        describe(source, *parts);
    };
    co_await runAside(std::move(look));
    parts->pictureTrack = plan->track;
    std::string command = finishCutCommand(*parts);
    if (meter) {
        meter->beginPart(1, secondsOf(ranges));
    }
    co_await executor->executeMeasured(std::move(command), nullptr, meter);
    if (meter) {
        meter->finish();
    }
    paths.finish();
    co_return waysOf(*plan, ranges.size());
}

Task<CorvantaSdkVideoCutInspection> ExactCut::inspect(URL video, CorvantaSdkVideoTimeRange range) {
    const auto inspection = std::make_shared<CorvantaSdkVideoCutInspection>();
    std::function<void(std::stop_token)> work = [inspection, path = video.path(),
                                                 range](std::stop_token stop) {
        *inspection = inspected(path, range, std::move(stop));
    };
    co_await runAside(std::move(work));
    co_return *inspection;
}

} // namespace corvanta
