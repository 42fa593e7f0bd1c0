#include <platform/MimeTypes.hpp>

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

namespace corvanta {
namespace {

TEST(MimeTypesTest, Extensions) {
    for (const auto& [fileExtension, type, audiovisual] :
         std::vector<std::tuple<std::string_view, std::string_view, bool>>{{"mp4", "video/mp4", true},
                                                                           {"MOV", "video/quicktime", true},
                                                                           {"m4v", "video/x-m4v", true},
                                                                           {"mkv", "video/x-matroska", true},
                                                                           {"m4a", "audio/mp4", true},
                                                                           {"Wav", "audio/vnd.wave", true},
                                                                           {"caf", "audio/x-caf", true},
                                                                           {"jpg", "image/jpeg", false},
                                                                           {"txt", "text/plain", false}}) {
        EXPECT_EQ(mimeTypeForExtension(fileExtension), type);
        EXPECT_EQ(isAudiovisual(type), audiovisual) << type;
    }
    for (const std::string_view unknown : {"", "mp", "mp44", ".mp4", "mp4 ", "\xff"}) {
        EXPECT_FALSE(mimeTypeForExtension(unknown)) << unknown;
    }
    EXPECT_FALSE(isAudiovisual("video"));
}

} // namespace
} // namespace corvanta
