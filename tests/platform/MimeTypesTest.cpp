#include <platform/MimeTypes.hpp>

#include <gtest/gtest.h>

namespace corvanta {
namespace {

TEST(MimeTypesTest, Extensions) {
    struct Case {
        std::string_view fileExtension;
        std::string_view type;
        bool audiovisual;
    };
    for (const Case& expected : {Case{"mp4", "video/mp4", true},
                                 {"MOV", "video/quicktime", true},
                                 {"m4v", "video/x-m4v", true},
                                 {"mkv", "video/x-matroska", true},
                                 {"3g2", "video/3gpp2", true},
                                 {"avi", "video/x-msvideo", true},
                                 {"m4a", "audio/mp4", true},
                                 {"Wav", "audio/vnd.wave", true},
                                 {"caf", "audio/x-caf", true},
                                 {"wmv", "video/x-ms-wmv", true},
                                 {"jpg", "image/jpeg", false},
                                 {"txt", "text/plain", false},
                                 {"zip", "application/zip", false}}) {
        const auto type = mimeTypeForExtension(expected.fileExtension);
        ASSERT_TRUE(type) << expected.fileExtension;
        EXPECT_EQ(*type, expected.type);
        EXPECT_EQ(isAudiovisual(*type), expected.audiovisual) << *type;
    }
    for (const std::string_view unknown : {"", "mp", "mp44", ".mp4", "mp4 ", "zzz", "\xff", "0"}) {
        EXPECT_FALSE(mimeTypeForExtension(unknown)) << unknown;
    }
    EXPECT_FALSE(isAudiovisual("application/octet-stream"));
    EXPECT_FALSE(isAudiovisual("video"));
}

} // namespace
} // namespace corvanta
