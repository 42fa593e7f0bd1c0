#include <platform/UUID.hpp>

#include <gtest/gtest.h>

#include <mutex>
#include <set>
#include <thread>
#include <vector>

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

TEST(UUIDTest, NewOnesAreRandomAndDifferAcrossThreads) {
    std::mutex mutex;
    std::set<UUID> all;
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&] {
                for (int round = 0; round < 500; ++round) {
                    const UUID made = makeUUID();
                    const std::lock_guard lock(mutex);
                    all.insert(made);
                }
            });
        }
    }
    EXPECT_EQ(all.size(), 2000U);
    EXPECT_EQ(all.begin()->version(), boost::uuids::uuid::version_random_number_based);
    EXPECT_EQ(parseUUID(uuidString(*all.begin())), *all.begin());
}

} // namespace
} // namespace corvanta
