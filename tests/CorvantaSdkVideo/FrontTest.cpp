#include "support/MediaFixtures.hpp"
#include "support/RecordedLog.hpp"
#include "support/ScopedVariable.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFile.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFrameRate.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>

#include <gmock/gmock.h>

#include <set>

#include <sys/stat.h>

namespace corvanta::test {
namespace {

using Descriptor = CorvantaSdkVideoFileDescriptor;
using Error = CorvantaSdkVideoError;
using Reason = Error::InvalidInputFilesReason;

TEST(ErrorTest, NumbersNamesAndTexts) {
    const std::vector<std::string> reasons = {"differentResolutions", "differentAudioLayers",
                                              "differentCodecs",      "inputContainsNonExistingFiles",
                                              "noMetadataGenerated",  "notEnoughVideos",
                                              "differentFrameRates",  "differentVideoTracks",
                                              "differentAudioTracks", "differentFormats"};
    const std::vector<std::string> plain = {"configurationError",
                                            "unableToProcessInput",
                                            "unableToProcessOutput",
                                            "processingInProgress",
                                            "userNotAuthenticated",
                                            "invalidFile",
                                            "unableToProcessFile",
                                            "missingVideoTrackToMerge",
                                            "unknownVideoCodec",
                                            "unknownAudioCodec",
                                            "mergeFailed",
                                            "concatFailed",
                                            "encodingFailed",
                                            "getInformationFailed",
                                            "notFoundVideo",
                                            "unableToDeleteExistingThumbnail",
                                            "invalidThumbnailWidth",
                                            "invalidThumbnailHeight",
                                            "invalidResolution",
                                            "invalidPositionInVideo",
                                            "thumbnailGenerationFailed",
                                            "invalidTrimRange",
                                            "trimFailed",
                                            "operationStillsInProgress",
                                            "operationAlreadyCompleted",
                                            "operationNotFound",
                                            "operationMustBeProcessingToBeCancelled"};
    ASSERT_EQ(plain.size(), static_cast<std::size_t>(Error::operationMustBeProcessingToBeCancelled));
    std::vector<Error> all;
    std::vector<std::string> names;
    for (std::size_t index = 0; index < reasons.size(); ++index) {
        all.emplace_back(static_cast<Reason>(index));
        names.push_back("invalidInputFiles(" + reasons[index] + ")");
        EXPECT_EQ(all.back().code(), static_cast<int>(index));
        EXPECT_EQ(all.back().reason(), static_cast<Reason>(index));
    }
    for (std::size_t index = 0; index < plain.size(); ++index) {
        all.emplace_back(static_cast<Error::Case>(index + 1));
        names.push_back(plain[index]);
        EXPECT_EQ(all.back().code(), static_cast<int>(index) + 10);
        EXPECT_FALSE(all.back().reason());
    }
    for (std::size_t index = 0; index < all.size(); ++index) {
        EXPECT_EQ(all[index].what(), names[index]);
        EXPECT_EQ(all[index].description(),
                  names[index] == "trimFailed"
                      ? "An error occurred while editing the video. Please try again."
                      : "An error occurred. Please try again.");
        EXPECT_EQ(localizedDescription(all[index]),
                  "The operation couldn’t be completed. (CorvantaSdkVideoError error " +
                      std::to_string(all[index].code()) + ".)");
        for (std::size_t other = 0; other < all.size(); ++other) {
            EXPECT_EQ(all[index] == all[other], index == other);
        }
    }
    EXPECT_EQ(localizedDescription(PlatformError("FAILED", 127)),
              "The operation couldn’t be completed. (FAILED error 127.)");
    EXPECT_EQ(localizedDescription(std::system_error(ENOENT, std::generic_category(), "x")),
              "The operation couldn’t be completed. (generic error 2.)");
    EXPECT_EQ(localizedDescription(std::runtime_error("speaks for itself")), "speaks for itself");
}

TEST(FrameRateTest, ProbeTextsAndRawValues) {
    using Rate = CorvantaSdkVideoFrameRate;
    struct Case {
        std::string_view raw;
        Rate::Value rate;
    };
    for (const Case& expected : {Case{"24", Rate::twentyFourFps},
                                 {"25", Rate::twentyFiveFps},
                                 {"30", Rate::thirtyFps},
                                 {"50", Rate::fiftyFps},
                                 {"60", Rate::sixtyFps}}) {
        const std::string raw(expected.raw);
        EXPECT_EQ(Rate::fromRawValue(raw), Rate(expected.rate));
        EXPECT_EQ(Rate(expected.rate).rawValue(), raw);
        EXPECT_EQ(Rate::getValue(raw + "/1"), expected.rate);
        EXPECT_EQ(Rate::getValue(raw + "000/1001"), expected.rate);
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
    for (const char* unknown : {"", "0", "0/0", "29.97", "48/1", "2997/100"}) {
        EXPECT_EQ(Rate::getValue(unknown), Rate::unknown) << unknown;
    }
}

TEST(FileTest, PathsAreReadAsURLs) {
    EXPECT_EQ(CorvantaSdkVideoFile("/a b/x.MOV").fileExtension(), "MOV");
    EXPECT_EQ(CorvantaSdkVideoFile("/a b/x.MOV").url().path(), "/a b/x.MOV");
    EXPECT_EQ(CorvantaSdkVideoFile(URL::fromFilePath("/a%20b")).url().path(), "/a%20b");
    EXPECT_EQ(CorvantaSdkVideoFile("/noextension").fileExtension(), "");
    for (const char* refused : {"", "1:x", "http://["}) {
        EXPECT_THROW(
            {
                try {
                    CorvantaSdkVideoFile file(refused);
                } catch (const Error& error) {
                    EXPECT_EQ(error, Error(Error::invalidFile));
                    throw;
                }
            },
            Error)
            << refused;
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
             {Descriptor::files("x.mov"), "mp4", documents + "x.mov.mp4"},
             {Descriptor::files("100% a?b#c"), "jpg", documents + "100% a?b#c.jpg"},
             {Descriptor::custom("/a b/x"), "jpg", "/a b/x.jpg"},
             {Descriptor::custom("/x"), "", "/x."},
             {Descriptor::custom("x"), "jpg", "x.jpg"},
             {Descriptor::custom(""), "jpg", ".jpg"},
             {Descriptor::custom("/a?b"), "jpg", "/a"},
             {Descriptor::custom("1:"), "jpg", std::nullopt},
         }) {
        const auto url = expected.descriptor.url(expected.extension);
        ASSERT_EQ(url.has_value(), expected.path.has_value());
        if (url) {
            EXPECT_EQ(url->path(), *expected.path);
            EXPECT_EQ(url->isFileURL(),
                      expected.descriptor == Descriptor::files("x") || url->scheme() == "file");
        }
    }
    EXPECT_FALSE(Descriptor::custom("/x").url("jpg")->isFileURL());
    EXPECT_EQ(Descriptor::custom("x").directory(), SearchPathDirectory::documents);
    EXPECT_EQ(Descriptor::cache("x").directory(), SearchPathDirectory::caches);
    EXPECT_EQ(defaultFileLocation().path(), documents + "tmp.mp4");
    EXPECT_EQ(CorvantaSdkVideoUtils::outputURL("name", "txt").path(), documents + "name.txt");

    const std::vector<Descriptor> all = {Descriptor::cache("x"), Descriptor::files("x"),
                                         Descriptor::custom("x"), Descriptor::files("y")};
    std::set<std::size_t> hashes;
    for (const Descriptor& one : all) {
        hashes.insert(std::hash<Descriptor>{}(one));
        EXPECT_EQ(std::count(all.begin(), all.end(), one), 1);
    }
    EXPECT_EQ(hashes.size(), all.size());
    EXPECT_EQ(std::hash<Descriptor>{}(Descriptor::files("x")), std::hash<Descriptor>{}(all[1]));

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
    EXPECT_THROW(runBlocking(CorvantaSdkVideo->getVideosInformation(none)), Error);
    EXPECT_THROW(runBlocking(CorvantaSdkVideo->getVideosInformation(none)), Error);
    const auto lines = log.take();
    EXPECT_EQ(lines.front(), "info event_video_init: Init video module");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), lines.front()), 1);
    EXPECT_TRUE(CI::isProd());
    CI::environment = "BETA";
    EXPECT_TRUE(CI::isBeta() && !CI::isProd() && !CI::isRC());
    CI::environment = "RC";
    EXPECT_TRUE(CI::isRC() && !CI::isBeta());
    CI::environment = "PROD";
}

} // namespace
} // namespace corvanta::test
