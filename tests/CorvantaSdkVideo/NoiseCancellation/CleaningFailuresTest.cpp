#include "CorvantaSdkVideo/NoiseCancellation/CleaningRun.hpp"
#include "support/Failure.hpp"
#include "support/Processes.hpp"

#include <CorvantaSdkVideo/NoiseCancellation/CorvantaNoiseCancellationEngine.hpp>
#include <CorvantaSdkVideo/NoiseCancellation/CorvantaNoiseProcessor.hpp>
#include <CorvantaSdkVideo/Shared/FreeSpace.hpp>
#include <platform/Bundle.hpp>

#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/use_future.hpp>
#include <gmock/gmock.h>

#include <cmath>

namespace corvanta::test {
namespace {

using testing::IsEmpty;
using Engine = CorvantaNoiseCancellationEngine;

std::shared_ptr<Engine> engineWith(std::shared_ptr<FFMPEGCommandExecutor> executor) {
    return std::make_shared<Engine>(CorvantaFileProcessor(executor),
                                    std::make_shared<CorvantaCredentialsManagerImp>(),
                                    FFMPEGCommandGenerator(), executor);
}

std::string nameOf(CorvantaSdkVideoError::Case error) { return CorvantaSdkVideoError(error).what(); }

/// Runs ffmpeg, and does something more when the first run is over.
class InterposedExecutor : public FFMPEGCommandExecutorImplementation {
  public:
    std::function<void()> afterExtraction = [] {};

    Task<> executeFFMPEGCommand(std::string command, OnUpdateSessionId onUpdateSessionId) override {
        const bool extracts = command.find(" -vn ") != std::string::npos;
        co_await FFMPEGCommandExecutorImplementation::executeFFMPEGCommand(std::move(command),
                                                                           std::move(onUpdateSessionId));
        if (extracts) {
            afterExtraction();
        }
    }
};

TEST(CleaningFailuresTest, EachHasItsErrorAndLeavesNothing) {
    CleaningRun run;
    CorvantaSdkVideo->engine();
    const std::string good = makeClip({});
    const std::string model = "c6.f.s.ced125.tw";
    const std::string weights = readFile(*Bundle::pathForResource("c6.f.s.ced125", "tw"));
    const auto resources = [&](const std::string& name, const std::optional<std::string>& contents) {
        std::filesystem::create_directory(run.file(name));
        if (contents) {
            writeFile(run.file(name + "/" + model), *contents);
        }
        return run.file(name);
    };
    const auto named = [&](const std::string& name, const std::string& contents) {
        writeFile(run.file(name), contents);
        return run.file(name);
    };
    const std::string cover = run.file("song.m4a");
    runTool("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "sine=d=1", "-f", "lavfi", "-i",
                       "color=s=64x64:d=0.04", "-c:v", "mjpeg", "-disposition:v:0", "attached_pic", cover});
    struct Case {
        std::string input;
        CorvantaSdkVideoError::Case error;
        std::optional<std::string> resources = {};
        bool loggedIn = true;
    };
    using enum CorvantaSdkVideoError::Case;
    for (const Case& now : std::vector<Case>{
             {run.file("absent.mp4"), notFoundVideo},
             {named("text.txt", "words"), invalidFile},
             {named("broken.mp4", "no video"), unableToProcessInput},
             {makeClip({.sounds = {}}), unableToProcessInput},
             {run.file("quote\".mp4"), notFoundVideo},
             {makeClip({.pictures = {}, .container = "m4a", .codecs = "-c:a aac"}), unableToProcessOutput},
             {cover, unableToProcessOutput},
             {good, userNotAuthenticated, std::nullopt, false},
             {good, configurationError, resources("without", std::nullopt)},
             {good, configurationError, resources("empty", "")},
             {good, configurationError, resources("garbage", std::string(weights.size(), 'x'))},
             {good, configurationError, resources("cut off", weights.substr(0, weights.size() / 2))},
         }) {
        SCOPED_TRACE(now.input + " " + now.resources.value_or(""));
        const std::string extension = std::filesystem::path(now.input).extension();
        const std::string output = run.file("out" + extension);
        writeFile(output, "of value");
        SharedCorvantaSdkCommonKt::sdk_common().setAuth(
            std::make_shared<SharedCorvantaSdkFixedAuth>(now.loggedIn));
        run.log().take();
        {
            const ScopedVariable folder("CORVANTA_RESOURCES", now.resources);
            EXPECT_EQ(failureOf([&] { run.clean(now.input, run.file("out")); }), nameOf(now.error));
        }
        const URL input = URL::fromFilePath(now.input);
        const std::vector<std::string> log = run.log().take();
        EXPECT_EQ(log.front(), "info event_video_clear_noise: Clear noise called with videoPath: " +
                                   input.absoluteString() + ", resultPath: " + output);
        EXPECT_EQ(log.back(), "error event_video_clear_noise: Error clearing noise. " +
                                  input.absoluteString() + ". " +
                                  localizedDescription(CorvantaSdkVideoError(now.error)));
        EXPECT_EQ(readFile(output), "of value");
        EXPECT_THAT(run.leftOver(), IsEmpty());
        EXPECT_EQ(Engine().state(), Engine::State::initialized);
    }
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    EXPECT_EQ(failureOf([&] { run.clean(good, "file://["); }), nameOf(unableToProcessOutput));

    for (const double strength : {-0.1, 1.1, std::nan("")}) {
        EXPECT_EQ(failureOf([&] { run.clean(good, run.file("out"), {strength}); }),
                  nameOf(configurationError));
    }
    try {
        requireFreeSpace("/proc/none", 1, unableToProcessFile);
        ADD_FAILURE();
    } catch (const CorvantaSdkVideoError& error) {
        EXPECT_EQ(error.details(), "/proc: no space: needs 1 MB, and 0 MB are free");
    }

    // Cleaning a video into itself.
    std::filesystem::copy_file(good, run.file("self.mp4"));
    EXPECT_EQ(failureOf([&] { run.clean(run.file("self.mp4"), run.file("self")); }),
              nameOf(unableToProcessOutput));
    EXPECT_EQ(readFile(run.file("self.mp4")), readFile(good));
    EXPECT_THAT(run.log().take(),
                testing::Contains(testing::StartsWith(
                    "error event_video_merge_video_and_audio: Merge video and audio failed. ")));
    try {
        run.clean(run.file("self.mp4"), run.file("self"));
    } catch (const CorvantaSdkVideoError& error) {
        EXPECT_THAT(error.details(), testing::StartsWith("the output is the input "));
    }
    EXPECT_EQ(run.clean(good, run.file("at last")), run.file("at last.mp4"));
}

TEST(CleaningFailuresTest, OneEngineAtATimeAndOneRunOfEach) {
    const CleaningRun run;
    const std::string good = makeClip({});
    const auto attempt = [&](const std::shared_ptr<Engine>& engine) {
        return failureOf([&] { run.clean(engine, good, run.file("out")); });
    };
    auto first = std::make_shared<Engine>();
    const auto second = std::make_shared<Engine>();
    EXPECT_EQ(second->state(), Engine::State::unknown);
    EXPECT_EQ(attempt(second), nameOf(CorvantaSdkVideoError::configurationError));
    EXPECT_EQ(second->state(), Engine::State::unknown);
    first.reset();

    // Dropped without a run, the first has given the library back.
    const auto third = std::make_shared<Engine>();
    EXPECT_EQ(attempt(third), "");
    EXPECT_EQ(third->state(), Engine::State::finished);
    const auto fourth = std::make_shared<Engine>();
    EXPECT_EQ(attempt(third), nameOf(CorvantaSdkVideoError::configurationError));
    EXPECT_EQ(third->state(), Engine::State::finished);
    // Which has taken nothing from the one that followed it.
    EXPECT_EQ(attempt(fourth), "");
    EXPECT_THAT(run.leftOver(), IsEmpty());

    // A second run beside the first.
    const auto executor = std::make_shared<InterposedExecutor>();
    const auto busy = engineWith(executor);
    std::string beside;
    executor->afterExtraction = [&] {
        EXPECT_EQ(busy->state(), Engine::State::processing);
        beside = attempt(busy);
    };
    EXPECT_EQ(attempt(busy), "");
    EXPECT_EQ(beside, nameOf(CorvantaSdkVideoError::processingInProgress));
    EXPECT_THAT(run.leftOver(), IsEmpty());
}

TEST(CleaningFailuresTest, ARunCanBeStoppedAndDropped) {
    const CleaningRun run;
    const std::string input = makeClip({.seconds = 5});
    const ScopedVariable temporary("TMPDIR", run.scratch());
    const auto executor = std::make_shared<InterposedExecutor>();
    boost::asio::cancellation_signal stop;
    executor->afterExtraction = [&stop] { stop.emit(boost::asio::cancellation_type::terminal); };
    const auto start = [&](boost::asio::io_context& context, const char* name) {
        return boost::asio::co_spawn(
            context,
            engineWith(executor)->clearNoiseForFile(CorvantaSdkVideoFile(URL::fromFilePath(input)),
                                                    CorvantaSdkVideoFileDescriptor::custom(run.file(name))),
            boost::asio::bind_cancellation_slot(stop.slot(), boost::asio::use_future));
    };
    {
        boost::asio::io_context context(1);
        auto ended = start(context, "stopped");
        context.run();
        EXPECT_THROW(ended.get(), boost::system::system_error);
    }
    EXPECT_THAT(run.leftOver(), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(run.file("stopped.mp4")));
    {
        boost::asio::io_context context(1);
        const auto never = start(context, "dropped");
        executor->afterExtraction = [&context] { context.stop(); };
        context.run();
    }
    EXPECT_THAT(run.leftOver(), IsEmpty());
    EXPECT_EQ(Engine().state(), Engine::State::initialized);
}

TEST(NoiseProcessorTest, PassesOnWhatTheLibraryTakes) {
    for (const unsigned taken : {8000, 12000, 16000, 24000, 32000, 44100, 48000, 88200, 96000}) {
        EXPECT_EQ(static_cast<unsigned>(talvoRate(taken)), taken);
    }
    for (const unsigned taken : {10, 15, 20, 30, 32, 40}) {
        EXPECT_EQ(static_cast<unsigned>(talvoFrameDuration(taken)), taken);
    }
    for (const unsigned other : {0, 11, 22050}) {
        EXPECT_EQ(static_cast<unsigned>(talvoRate(other)), 16000U);
        EXPECT_EQ(static_cast<unsigned>(talvoFrameDuration(other)), 10U);
    }
    withWideChars("aß€😀", [](const wchar_t* text) { EXPECT_STREQ(text, L"aß€😀"); });

    using Floats = std::vector<float>;
    using Shorts = std::vector<std::int16_t>;
    const std::string unknown =
        "Only PCM float32 & int16 are supported, please contact to ZEL team for support\n";
    struct Case {
        unsigned sampleRate;
        PCMBuffer in, out;
        bool changes;
        std::string told = {};
    };
    for (const Case& now : std::vector<Case>{
             {16000, {Floats(160)}, {Floats(160, 0.25F)}, true},
             {16000, {Shorts(160)}, {Shorts(160, 99)}, true},
             {48000, {Floats(480)}, {Floats(480, 0.25F)}, true},
             {22050, {Floats(220)}, {Floats(220, 0.25F)}, false},
             {16000, {Floats(159)}, {Floats(160, 0.25F)}, false},
             {16000, {Shorts(160)}, {Shorts(9, 99)}, false},
             {16000, {std::vector<std::int32_t>(160)}, {std::vector<std::int32_t>(160, 9)}, false, unknown},
         }) {
        SCOPED_TRACE(std::to_string(now.sampleRate) + " " + std::to_string(now.in.samples.index()));
        ASSERT_EQ(talvoAudioGlobalInit(L""), 0);
        CorvantaNoiseProcessor processor("c6.f.s.ced125.tw", now.sampleRate, 10);
        EXPECT_EQ(processor.bufferSize(), now.sampleRate / 100);
        processor.startSession();
        PCMBuffer out = now.out;
        testing::internal::CaptureStdout();
        processor.process(now.in, out);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), now.told);
        EXPECT_EQ(out.samples != now.out.samples, now.changes);
        processor.endSession();
        EXPECT_EQ(failureOf([&] { processor.endSession(); }),
                  nameOf(CorvantaSdkVideoError::configurationError));
    }
    EXPECT_DEATH(CorvantaNoiseProcessor("", 1U << 31U, 10), "overflow");
}

} // namespace
} // namespace corvanta::test
