#include "support/Failure.hpp"
#include "support/MediaFixtures.hpp"
#include "support/RecordedLog.hpp"
#include "support/UserFolders.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditor.hpp>
#include <CorvantaSdkVideo/Shared/Progress/ProgressMeter.hpp>

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <mutex>
#include <thread>

namespace corvanta::test {
namespace {

using Progress = CorvantaSdkVideoProgress;
using Phase = Progress::Phase;

// All that was told, and whether the result was there whenever the end was told.
struct Told {
    std::string result;
    std::mutex mutex;
    std::vector<Progress> values;
    bool isEndTrue = true;

    void hear(const Progress& progress) {
        const std::lock_guard lock(mutex);
        values.push_back(progress);
        isEndTrue = isEndTrue && (progress.fraction < 1 || std::filesystem::exists(result));
    }

    void expectWhole(double seconds) {
        ASSERT_FALSE(values.empty());
        EXPECT_TRUE(std::ranges::is_sorted(values, {}, &Progress::fraction));
        EXPECT_EQ(std::ranges::count(values, 1, &Progress::fraction), 1);
        EXPECT_EQ(values.front().phase, Phase::probing);
        EXPECT_EQ(std::ranges::count(values, Phase::running, &Progress::phase) > 0, true);
        EXPECT_EQ(values.back().fraction, 1);
        EXPECT_NEAR(values.back().secondsDone, seconds, 0.1);
        EXPECT_TRUE(isEndTrue);
    }
};

TEST(Progress, RisesToOneExactlyWhenTheResultIsThere) {
    const RecordedLog log;
    static const UserFolders folders;
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    const CorvantaSdkVideoFile clip(URL::fromFilePath(makeClip({.seconds = 3})));
    const auto place = [](const char* name) {
        return CorvantaSdkVideoFileDescriptor::custom(folders.file(name));
    };
    const std::vector requests{CorvantaSdkVideo->MergeBuilder({clip, clip}, place("merged")).build(),
                               CorvantaSdkVideo->EncodingBuilder(clip, place("encoded")).build()};
    std::vector<Told> told(requests.size());
    std::vector<Subscription> subscriptions;
    std::vector<std::jthread> runs;
    for (std::size_t index = 0; index < requests.size(); ++index) {
        told[index].result = folders.file(index == 0 ? "merged.mp4" : "encoded.mp4");
        subscriptions.push_back(
            CorvantaSdkVideo->streamProgress(requests[index]->id).subscribe([&, index](const Progress& now) {
                told[index].hear(now);
            }));
    }
    for (const auto& request : requests) {
        runs.emplace_back([&request] { runBlocking(request->process()); });
    }
    runs.clear();
    told[0].expectWhole(6);
    told[1].expectWhole(3);
    std::vector<double> late;
    const auto stream = CorvantaSdkVideo->streamProgress(requests[0]->id);
    const Subscription subscription =
        stream.subscribe([&](const Progress& now) { late.push_back(now.fraction); });
    EXPECT_THAT(late, testing::ElementsAre(1));
    EXPECT_NE(failureOf([] { CorvantaSdkVideo->streamProgress(makeUUID()); }), "");

    // Several runs of ffmpeg, one course.
    Told cut;
    cut.result = folders.file("cut.mp4");
    CorvantaSdkVideoEditorInput input{.videoURL = clip.url(),
                                      .outputURL = URL::fromFilePath(cut.result),
                                      .cut = CorvantaSdkVideoCut::exact,
                                      .ranges = {{0.3, 1.4}, {1.7, 2.9}}};
    input.onProgress = [&cut](const Progress& now) { cut.hear(now); };
    runBlocking(makeCorvantaSdkVideoEditor()->edit(input));
    cut.expectWhole(2.3);
    input.outputURL = URL::fromFilePath(folders.file("no folder/cut.mp4"));
    cut.values.clear();
    EXPECT_NE(failureOf([&] { runBlocking(makeCorvantaSdkVideoEditor()->edit(input)); }), "");
    EXPECT_LT(cut.values.back().fraction, 1);
}

TEST(Progress, OfACleaningIsOneCourse) {
    const RecordedLog log;
    static const UserFolders folders;
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    for (const Clip& clip : {Clip{.seconds = 6}, Clip{.seconds = 3, .pictures = {{.rate = "25"}}},
                             Clip{.seconds = 3, .container = "mkv"}}) {
        const CorvantaSdkVideoFile file(URL::fromFilePath(makeClip(clip)));
        SCOPED_TRACE(file.url().path());
        for (const std::string place : {"cleaned", "no folder/cleaned"}) {
            Told told;
            told.result = folders.file(place + '.' + clip.container);
            CorvantaSdkVideoNoiseCancellationOptions options;
            options.onProgress = [&told](const Progress& now) { told.hear(now); };
            runBlocking(CorvantaSdkVideo->engine()->clearNoiseForFile(
                file, CorvantaSdkVideoFileDescriptor::custom(folders.file(place)), options));
            if (place == "cleaned") {
                told.expectWhole(clip.seconds);
                // The cleaning tells by itself.
                EXPECT_GE(told.values.size(), static_cast<std::size_t>(clip.seconds));
            } else {
                ASSERT_FALSE(told.values.empty());
                EXPECT_LT(told.values.back().fraction, 1) << "A video that can't be written is no error.";
            }
        }
    }
}

TEST(Progress, OfPartsThatEndEarlyOrRunAgainNeverFalls) {
    std::vector<double> fractions;
    ProgressMeter meter([&](const Progress& now) { fractions.push_back(now.fraction); });
    meter.beginPart(0.5, 10);
    meter.advance(5, 1);
    meter.advance(-3, 1);
    meter.beginPart(0.5, 10); // The first one has failed.
    meter.advance(20, 1);
    meter.endPart();
    meter.beginPart(1, 0);
    meter.advance(1, 1);
    meter.finish();
    meter.complete();
    EXPECT_TRUE(std::ranges::is_sorted(fractions));
    EXPECT_NEAR(fractions.at(1), 0.2475, 1e-9);
    EXPECT_NEAR(fractions.at(4), 0.2475 + 0.37125, 1e-9);
    EXPECT_LT(fractions.at(fractions.size() - 2), 1);
    EXPECT_EQ(fractions.back(), 1);
}

} // namespace
} // namespace corvanta::test
