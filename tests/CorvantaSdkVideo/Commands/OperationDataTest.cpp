#include <CorvantaSdkVideo/Commands/VideoOperationData.hpp>

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corvanta {
namespace {

using Rate = CorvantaSdkVideoFrameRate;
using StoredMerge = VideoMergeData::SerializableMergeData;
using StoredEncoding = VideoEncodingData::SerializableEncodingData;

using Size = std::optional<double>;
using MergeVideos = std::vector<CorvantaSdkVideoMergeVideoTrack>;
using MergeAudios = std::vector<CorvantaSdkVideoMergeAudioTrack>;
using EncodeVideos = std::vector<CorvantaSdkVideoEncodeVideoEntry>;

VideoMergeData merge(Size width, Size height, Rate rate = Rate::thirtyFps, MergeVideos videos = {},
                     MergeAudios audios = {}) {
    return {{*URL::parse("/a.mp4")}, width, height, rate, std::move(videos), std::move(audios)};
}

VideoEncodingData encoding(Size width, Size height, Rate rate = Rate::thirtyFps, EncodeVideos videos = {},
                           std::vector<std::int64_t> audios = {}) {
    return {*URL::parse("/a.mp4"), width, height, std::move(videos), std::move(audios), rate};
}

constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(OperationData, IsWrittenInTheOrderOfItsFieldsAndReadBack) {
    const std::vector<std::pair<VideoMergeData, std::string>> merges = {
        {merge({}, {}), R"({"videoTracks":[],"audioTracks":[],"framesRate":"30"})"},
        {merge(640, 359.5, Rate::sixtyFps, {{{{0, 1}, {2, 3}}, 1280, {}}, {{}, {}, 720}}, {{{{1, 4}}}, {}}),
         R"({"width":640,"height":359.5,"videoTracks":[)"
         R"({"tracks":[{"fileIndex":0,"entryIndex":1},{"fileIndex":2,"entryIndex":3}],"width":1280},)"
         R"({"tracks":[],"height":720}],)"
         R"("audioTracks":[{"tracks":[{"fileIndex":1,"entryIndex":4}]},{"tracks":[]}],"framesRate":"60"})"},
        {merge({}, 1e300, Rate::unknown),
         R"({"height":1e+300,"videoTracks":[],"audioTracks":[],"framesRate":"0"})"},
    };
    for (const auto& [data, text] : merges) {
        EXPECT_EQ(jsonRepresentation(data.serializable()), text);
        const auto read = decode<StoredMerge>(text);
        ASSERT_TRUE(read) << text;
        EXPECT_EQ(read->width, data.width);
        EXPECT_EQ(read->height, data.height);
        EXPECT_EQ(read->videoTracks, data.videoTracks);
        EXPECT_EQ(read->audioTracks, data.audioTracks);
        EXPECT_EQ(read->framesRate, data.framesRate.rawValue());
    }
    const VideoEncodingData data =
        encoding(128, {}, Rate::twentyFiveFps, {{1, 640, {}}, {0, {}, {}}}, {0, 2});
    const std::string text = R"({"width":128,"videoTracks":[{"entryIndex":1,"width":640},{"entryIndex":0}],)"
                             R"("audioTracks":[0,2],"framesRate":"25"})";
    EXPECT_EQ(jsonRepresentation(data.serializable()), text);
    const auto read = decode<StoredEncoding>(text);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->videoTracks, data.videoTracks);
    EXPECT_EQ(read->audioTracks, data.audioTracks);
    EXPECT_EQ(read->width, 128);
    EXPECT_EQ(read->height, std::nullopt);
    const CorvantaSdkVideoMergeVideoTrack track{{{0, 1}}, {}, 720};
    const std::string trackText = R"({"tracks":[{"fileIndex":0,"entryIndex":1}],"height":720})";
    EXPECT_EQ(jsonRepresentation(track), trackText);
    EXPECT_EQ(decode<CorvantaSdkVideoMergeVideoTrack>(trackText), track);
}

TEST(OperationData, ThatCantBeWrittenHasNoText) {
    for (const double size : {infinite, -infinite, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(jsonRepresentation(merge(size, {}).serializable()), std::nullopt);
        EXPECT_EQ(jsonRepresentation(encoding({}, size).serializable()), std::nullopt);
    }
    EXPECT_EQ(jsonRepresentation(StoredMerge{{}, {}, {}, {}, "\xff"}), std::nullopt);
}

TEST(OperationData, IsReadStrictlyButForWhatCanBeAbsent) {
    struct Case {
        std::string text;
        bool isMerge = false;
        bool isEncoding = false;
    };
    const std::vector<Case> cases = {
        {R"({"videoTracks":[],"audioTracks":[],"framesRate":"31"})", true, true},
        {R"({"framesRate":"0","audioTracks":[],"more":{},"videoTracks":[],"width":null,"height":null})", true,
         true},
        {R"( {"width":-1,"height":2e2,"videoTracks":[],"audioTracks":[],"framesRate":""} )", true, true},
        {R"({"videoTracks":[{"tracks":[]}],"audioTracks":[],"framesRate":"30"})", true, false},
        {R"({"videoTracks":[{"entryIndex":1,"width":null}],"audioTracks":[3],"framesRate":"30"})", false,
         true},
        {R"({"videoTracks":[{"entryIndex":9223372036854775807}],"audioTracks":[],"framesRate":"30"})", false,
         true},
        {"", false, false},
        {"null", false, false},
        {"[]", false, false},
        {R"({"videoTracks":[],"audioTracks":[],"framesRate":"30")", false, false},
        {R"({"videoTracks":[],"audioTracks":[],"framesRate":"30"}x)", false, false},
        {"{\"videoTracks\":[],\"audioTracks\":[],\"framesRate\":\"\xff\"}", false, false},
        {R"({"videoTracks":[],"audioTracks":[]})", false, false},
        {R"({"videoTracks":[],"framesRate":"30"})", false, false},
        {R"({"audioTracks":[],"framesRate":"30"})", false, false},
        {R"({"videoTracks":[],"audioTracks":[],"framesRate":30})", false, false},
        {R"({"videoTracks":[],"audioTracks":[],"framesRate":null})", false, false},
        {R"({"videoTracks":{},"audioTracks":[],"framesRate":"30"})", false, false},
        {R"({"videoTracks":[],"audioTracks":null,"framesRate":"30"})", false, false},
        {R"({"width":"640","videoTracks":[],"audioTracks":[],"framesRate":"30"})", false, false},
        {R"({"width":1e999,"videoTracks":[],"audioTracks":[],"framesRate":"30"})", false, false},
        {R"({"videoTracks":[{}],"audioTracks":[],"framesRate":"30"})", false, false},
        {R"({"videoTracks":[1],"audioTracks":[],"framesRate":"30"})", false, false},
        {R"({"videoTracks":[{"entryIndex":"1"}],"audioTracks":[],"framesRate":"30"})", false, false},
        {R"({"videoTracks":[{"entryIndex":1.5}],"audioTracks":[],"framesRate":"30"})", false, false},
        {R"({"videoTracks":[{"entryIndex":18446744073709551615}],"audioTracks":[],"framesRate":"30"})", false,
         false},
        {R"({"videoTracks":[{"entryIndex":1,"height":"2"}],"audioTracks":[],"framesRate":"30"})", false,
         false},
        {R"({"videoTracks":[],"audioTracks":["1"],"framesRate":"30"})", false, false},
        {R"({"videoTracks":[{"tracks":[{"fileIndex":0}]}],"audioTracks":[],"framesRate":"30"})", false,
         false},
        {R"({"videoTracks":[{"tracks":[{"entryIndex":0}]}],"audioTracks":[],"framesRate":"30"})", false,
         false},
        {R"({"videoTracks":[],"audioTracks":[{"tracks":[true]}],"framesRate":"30"})", false, false},
    };
    for (const Case& form : cases) {
        EXPECT_EQ(decode<StoredMerge>(form.text).has_value(), form.isMerge) << form.text;
        EXPECT_EQ(decode<StoredEncoding>(form.text).has_value(), form.isEncoding) << form.text;
    }
    EXPECT_FALSE(decode<StoredMerge>(std::nullopt));
    EXPECT_FALSE(decode<StoredEncoding>(std::nullopt));
}

} // namespace
} // namespace corvanta
