#include "support/Failure.hpp"
#include "support/MediaFixtures.hpp"
#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"
#include "support/UserFolders.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <gmock/gmock.h>

namespace corvanta::test {
namespace {

// The frames lie in a row behind each other, four pixels apart.
constexpr int space = 4;

struct Sheet {
    std::string path;
    std::vector<double> fractions;
};

Sheet sheetOf(const UserFolders& folders, const std::string& clip, std::int64_t columns, std::int64_t rows,
              std::int64_t width) {
    Sheet sheet;
    const auto result = runBlocking(CorvantaSdkVideo->contactSheet(
        CorvantaSdkVideoFile(URL::fromFilePath(clip)),
        CorvantaSdkVideoFileDescriptor::custom(folders.file("sheet")), columns, rows, width,
        [&sheet](const CorvantaSdkVideoProgress& now) { sheet.fractions.push_back(now.fraction); }));
    sheet.path = result.generatedThumbnailURL.path();
    return sheet;
}

Frame pictureIn(const std::string& path) {
    const std::string image =
        runTool("ffmpeg", {"-v", "error", "-i", path, "-f", "image2pipe", "-c:v", "ppm", "-"});
    std::size_t offset = 0;
    return frameFromPPM(image, offset);
}

TEST(ContactSheetTest, HoldsFramesFromAllThroughTheVideo) {
    const RecordedLog log;
    const UserFolders folders;
    const std::string clip = makeClip({});
    const std::string phone = makeClip({.rotation = -90});
    const std::string sound = makeClip({.pictures = {}, .container = "m4a", .codecs = "-c:a aac"});
    const TemporaryDirectory scratch;
    const ScopedVariable temporary("TMPDIR", scratch.path());
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    // Grey as bright as its time, from black to white.
    const std::string source = folders.file("ramp \"%d.mp4");
    runTool("ffmpeg",
            {"-v", "error", "-f", "lavfi", "-i",
             "nullsrc=s=160x120:r=10:d=6,geq=lum=16+219*T/6:cb=128:cr=128", "-f", "lavfi", "-i", "sine=d=9",
             "-c:v", "libx264", "-pix_fmt", "yuv420p", "-g", "300", "-c:a", "aac", source});
    const std::string webm = folders.file("ramp.webm");
    runTool("ffmpeg", {"-v", "error", "-i", source, "-c:v", "libvpx", "-deadline", "realtime", "-b:v", "1M",
                       "-an", webm});
    for (const std::string& ramp : {source, webm}) {
        SCOPED_TRACE(ramp);
        const Sheet sheet = sheetOf(folders, ramp, 3, 2, 80);
        const Frame picture = pictureIn(sheet.path);
        EXPECT_EQ(picture.width, 3 * 80 + 4 * space);
        EXPECT_EQ(picture.height, 2 * 60 + 3 * space);
        for (int index = 0; index < 6; ++index) {
            const double left = space + index % 3 * (80 + space) + 20;
            const double top = space + index / 3 * (60 + space) + 20;
            const Colour mean = picture.mean({left / picture.width, top / picture.height,
                                              (left + 40) / picture.width, (top + 20) / picture.height});
            EXPECT_NEAR(mean.green, 255 * (index + 0.5) / 6, 14) << index;
        }
        EXPECT_TRUE(std::ranges::is_sorted(sheet.fractions));
        EXPECT_EQ(std::ranges::count(sheet.fractions, 1), 1);
    }
    const Frame upright = pictureIn(sheetOf(folders, phone, 2, 1, 60).path);
    EXPECT_EQ(upright.width, 2 * 60 + 3 * space);
    EXPECT_EQ(upright.height, 80 + 2 * space);
    EXPECT_THAT(namesIn({scratch.path()}), testing::IsEmpty());

    writeFile(folders.file("text.mp4"), "words");
    for (const auto& [input, columns, rows, width, error] :
         std::vector<std::tuple<std::string, std::int64_t, std::int64_t, std::int64_t, std::string>>{
             {"/no/such", 1, 1, 10, "notFoundVideo"},
             {clip, 0, 1, 10, "invalidThumbnailWidth"},
             {clip, 100, 1, 656, "invalidThumbnailWidth"},
             {clip, 1, 1, -1, "invalidThumbnailWidth"},
             {clip, 1, 0, 10, "invalidThumbnailHeight"},
             {clip, 21, 20, 10, "invalidThumbnailHeight"},
             {clip, 1, std::numeric_limits<std::int64_t>::max(), 10, "invalidThumbnailHeight"},
             {sound, 1, 1, 10, "thumbnailGenerationFailed"},
             {folders.file("text.mp4"), 1, 1, 10, "thumbnailGenerationFailed"}}) {
        EXPECT_EQ(failureOf([&] { sheetOf(folders, input, columns, rows, width); }), error) << input;
    }
    EXPECT_THAT(namesIn({scratch.path()}), testing::IsEmpty());
}

} // namespace
} // namespace corvanta::test
