#include "support/Failure.hpp"
#include "support/MediaFixtures.hpp"
#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"
#include "support/ScopedVariable.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

#include <sys/stat.h>

namespace corvanta::test {
namespace {

using Descriptor = CorvantaSdkVideoFileDescriptor;
using Error = CorvantaSdkVideoError;
using Reason = Error::InvalidInputFilesReason;

TEST(ErrorTest, NumbersNamesAndTexts) {
    const std::vector<std::string> reasons =
        wordsOf("differentResolutions differentAudioLayers differentCodecs inputContainsNonExistingFiles "
                "noMetadataGenerated notEnoughVideos differentFrameRates differentVideoTracks "
                "differentAudioTracks differentFormats");
    const std::vector<std::string> plain =
        wordsOf("configurationError unableToProcessInput unableToProcessOutput processingInProgress "
                "userNotAuthenticated invalidFile unableToProcessFile missingVideoTrackToMerge "
                "unknownVideoCodec unknownAudioCodec mergeFailed concatFailed encodingFailed "
                "getInformationFailed notFoundVideo unableToDeleteExistingThumbnail invalidThumbnailWidth "
                "invalidThumbnailHeight invalidResolution invalidPositionInVideo thumbnailGenerationFailed "
                "invalidTrimRange trimFailed operationStillsInProgress operationAlreadyCompleted "
                "operationNotFound operationMustBeProcessingToBeCancelled");
    ASSERT_EQ(plain.size(), static_cast<std::size_t>(Error::operationMustBeProcessingToBeCancelled));
    const auto check = [](const Error& error, int code, const std::string& name) {
        EXPECT_EQ(error.code(), code);
        EXPECT_EQ(error.what(), name);
        EXPECT_EQ(error.description(), name == "trimFailed"
                                           ? "An error occurred while editing the video. Please try again."
                                           : "An error occurred. Please try again.");
        EXPECT_EQ(localizedDescription(error),
                  "The operation couldn’t be completed. (CorvantaSdkVideoError error " +
                      std::to_string(code) + ".)");
    };
    int code = 0;
    for (const std::string& reason : reasons) {
        check(Error(static_cast<Reason>(code)), code, "invalidInputFiles(" + reason + ")");
        ++code;
    }
    for (const std::string& name : plain) {
        check(Error(static_cast<Error::Case>(code - 9)), code, name);
        ++code;
    }
    const Error few(Reason::notEnoughVideos);
    EXPECT_EQ(few.reason(), Reason::notEnoughVideos);
    EXPECT_EQ(few, Error(Reason::notEnoughVideos, "1 given"));
    EXPECT_NE(few, Error(Reason::differentFormats));
    EXPECT_NE(few, Error(Error::configurationError));
    EXPECT_FALSE(Error(Error::configurationError).reason());
    EXPECT_EQ(localizedDescription(PlatformError("FAILED", 127)),
              "The operation couldn’t be completed. (FAILED error 127.)");
    EXPECT_EQ(localizedDescription(std::system_error(ENOENT, std::generic_category(), "x")),
              "The operation couldn’t be completed. (generic error 2.)");
    EXPECT_EQ(localizedDescription(std::runtime_error("speaks for itself")), "speaks for itself");
}

// Some of what these threads use would be gone if anything of it were torn down.
TEST(ExitTest, MayComeWhileOtherThreadsWork) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const FakeProgram ffprobe("CORVANTA_FFPROBE", "exit 0");
    const CorvantaSdkVideoFile input(URL::fromFilePath(ffprobe.file("program")));
    const auto leaveInTheMiddle = [&input] {
        std::atomic<int> probes = 0;
        for (int thread = 0; thread < 4; ++thread) {
            std::thread([&] {
                for (;;) {
                    failureOf([&] { runBlocking(CorvantaSdkVideo->getVideosInformation({input})); });
                    ++probes;
                    probes.notify_one();
                }
            }).detach();
        }
        for (int seen = 0; seen < 4; seen = probes) {
            probes.wait(seen);
        }
        std::exit(0);
    };
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    for (int round = 0; round < 8; ++round) {
        EXPECT_EXIT(leaveInTheMiddle(), testing::ExitedWithCode(0), "");
    }
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(nullptr);
}

TEST(FrameRateTest, ProbeTextsAndRawValues) {
    using Rate = CorvantaSdkVideoFrameRate;
    for (const auto& [raw, rate] : std::map<std::string, Rate::Value>{{"24", Rate::twentyFourFps},
                                                                      {"25", Rate::twentyFiveFps},
                                                                      {"30", Rate::thirtyFps},
                                                                      {"50", Rate::fiftyFps},
                                                                      {"60", Rate::sixtyFps}}) {
        EXPECT_EQ(Rate::fromRawValue(raw), Rate(rate));
        EXPECT_EQ(Rate(rate).rawValue(), raw);
        EXPECT_EQ(Rate::getValue(raw + "/1"), rate);
        EXPECT_EQ(Rate::getValue(raw + "000/1001"), rate);
        for (const std::string& other :
             {raw, raw + "/2", raw + "000/1000", " " + raw + "/1", raw + "/1 ", raw + ".0"}) {
            EXPECT_EQ(Rate::getValue(other), Rate::unknown) << other;
        }
    }
    EXPECT_EQ(Rate::fromRawValue("0"), Rate(Rate::unknown));
    EXPECT_EQ(Rate(Rate::unknown).rawValue(), "0");
    for (const char* refused : {"", "29.97", "48", "024", "30 ", "30/1"}) {
        EXPECT_FALSE(Rate::fromRawValue(refused)) << refused;
    }
    EXPECT_EQ(Rate::getValue("0/0"), Rate::unknown);
}

TEST(FileTest, PathsAreReadAsURLs) {
    EXPECT_EQ(CorvantaSdkVideoFile("/a b/x.MOV").fileExtension(), "MOV");
    EXPECT_EQ(CorvantaSdkVideoFile("/a b/x.MOV").url().path(), "/a b/x.MOV");
    EXPECT_EQ(CorvantaSdkVideoFile(URL::fromFilePath("/a%20b")).url().path(), "/a%20b");
    EXPECT_EQ(CorvantaSdkVideoFile("/noextension").fileExtension(), "");
    for (const char* refused : {"", "1:x", "http://["}) {
        EXPECT_EQ(failureOf([&] { CorvantaSdkVideoFile file(refused); }), "invalidFile") << refused;
    }
}

TEST(FileDescriptorTest, Locations) {
    const TemporaryDirectory root;
    const ScopedVariable data("XDG_DATA_HOME", root.file("data dir"));
    const ScopedVariable cache("XDG_CACHE_HOME", root.file("cache"));
    const std::string documents = root.file("data dir/corvanta-sdk-video/documents/");
    const std::string caches = root.file("cache/corvanta-sdk-video/");
    struct Case {
        Descriptor descriptor;
        const char* extension;
        std::optional<std::string> path;
    };
    for (const Case& expected : {
             Case{Descriptor::files("x"), "mp4", documents + "x.mp4"},
             {Descriptor::cache("x"), "mp4", caches + "x.mp4"},
             {Descriptor::files("100% a?b#c"), "jpg", documents + "100% a?b#c.jpg"},
             {Descriptor::custom("/a b/x"), "jpg", "/a b/x.jpg"},
             {Descriptor::custom("/x"), "", "/x."},
             {Descriptor::custom(""), "jpg", ".jpg"},
             {Descriptor::custom("/a?b"), "jpg", "/a"},
             {Descriptor::custom("1:"), "jpg", std::nullopt},
         }) {
        const auto url = expected.descriptor.url(expected.extension);
        EXPECT_EQ(url ? std::optional(url->path()) : std::nullopt, expected.path);
    }
    EXPECT_FALSE(Descriptor::custom("/x").url("jpg")->isFileURL());
    EXPECT_TRUE(Descriptor::files("x").url("jpg")->isFileURL());
    EXPECT_EQ(Descriptor::custom("x").directory(), SearchPathDirectory::documents);
    EXPECT_EQ(Descriptor::cache("x").directory(), SearchPathDirectory::caches);
    EXPECT_EQ(defaultFileLocation().path(), documents + "tmp.mp4");
    EXPECT_EQ(CorvantaSdkVideoUtils::outputURL("name", "txt").path(), documents + "name.txt");

    const std::unordered_set<Descriptor> all = {Descriptor::cache("x"), Descriptor::files("x"),
                                                Descriptor::custom("x"), Descriptor::files("y"),
                                                Descriptor::files("x")};
    EXPECT_EQ(all.size(), 4U);

    EXPECT_EQ(FileExtension::fromRawValue("jpg")->rawValue(), "jpg");
    EXPECT_EQ(FileExtension::fromRawValue("mp4"), FileExtension(FileExtension::mp4));
    EXPECT_FALSE(FileExtension::fromRawValue("JPG"));

    const URL made = CorvantaSdkVideoUtils::outputURL("made", "x");
    CorvantaSdkVideoUtils::createEmptyFile(made);
    EXPECT_TRUE(std::filesystem::is_empty(made.path()));
    CorvantaSdkVideoUtils::deleteFileIfExists(made);
    EXPECT_FALSE(std::filesystem::exists(made.path()));
    CorvantaSdkVideoUtils::deleteFileIfExists(made);
    CorvantaSdkVideoUtils::createEmptyFile(URL::fromFilePath("/no/such/directory/x"));
    // A pipe without a reader must not be waited for.
    ASSERT_EQ(mkfifo(made.path().c_str(), 0600), 0);
    CorvantaSdkVideoUtils::createEmptyFile(made);
}

TEST(EntryTest, BuildsTheModuleOnceAndSaysSo) {
    RecordedLog log(false);
    std::vector<CorvantaSdkVideoFile> none;
    for (int call = 0; call < 2; ++call) {
        EXPECT_THROW(runBlocking(CorvantaSdkVideo->getVideosInformation(none)), Error);
    }
    const auto lines = log.take();
    EXPECT_EQ(lines.front(), "info event_video_init: Init video module");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), lines.front()), 1);
    for (const auto& [name, is] :
         {std::pair("BETA", &CI::isBeta), {"RC", &CI::isRC}, {"PROD", &CI::isProd}}) {
        CI::environment = name;
        EXPECT_TRUE(is() && CI::isBeta() + CI::isRC() + CI::isProd() == 1);
    }
}

} // namespace
} // namespace corvanta::test
