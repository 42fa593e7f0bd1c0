#include <platform/UUID.hpp>

#include <gtest/gtest.h>

namespace corvanta {
namespace {

TEST(UUIDTest, TextAndBack) {
    constexpr const char* text = "0123abcd-4567-89ef-0123-456789abcdef";
    const auto id = parseUUID(text);
    ASSERT_TRUE(id);
    EXPECT_EQ(uuidString(*id), text);
    EXPECT_EQ(parseUUID("0123ABCD-4567-89EF-0123-456789ABCDEF"), id);
    for (const char* refused :
         {"", "0123abcd", "0123abcd456789ef0123456789abcdef", "{0123abcd-4567-89ef-0123-456789abcdef}",
          "0123abcd-4567-89ef-0123-456789abcdeg", "0123abcd-456789ef-0123-456789abcdef00",
          "0123abcd-4567-89ef-0123-456789abcdef0", "0123abcd-4567-89ef-0123456789abcdef--",
          " 123abcd-4567-89ef-0123-456789abcdef"}) {
        EXPECT_FALSE(parseUUID(refused)) << refused;
    }
}

} // namespace
} // namespace corvanta
