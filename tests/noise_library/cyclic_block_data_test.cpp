#include "utils/cyclic_block_data.hpp"

#include <deque>
#include <gmock/gmock.h>
#include <random>

namespace {

using namespace TALVO::CONTAINERS;
using testing::ElementsAreArray;

TEST(CyclicBlockData, HoldsWhatAQueueHolds) {
    std::mt19937 random(1);
    CyclicBlockData block(100);
    std::deque<float> queue;
    for (int turn = 0; turn < 5000; ++turn) {
        std::size_t const n = random() % 16;
        std::vector<float> floats(n);
        std::vector<short> shorts(n);
        for (std::size_t i = 0; i < n; ++i)
            floats[i] = static_cast<float>(shorts[i] = static_cast<short>(random() % 60000 - 30000));
        switch (queue.size() + n < 32 ? random() % 3 : 3) {
        case 0:
            block.push_back(floats.data(), n);
            queue.insert(queue.end(), floats.begin(), floats.end());
            break;
        case 1:
            block.push_back(shorts.data(), n);
            queue.insert(queue.end(), floats.begin(), floats.end());
            break;
        case 2:
            block.push_backNULL(n);
            queue.insert(queue.end(), n, 0.0f);
            break;
        default:
            std::size_t const gone = std::min(queue.size(), n + 8);
            block.pop_front(gone);
            queue.erase(queue.begin(), queue.begin() + static_cast<std::ptrdiff_t>(gone));
        }
        ASSERT_THAT(std::vector<float>(block.data(), block.data() + block.size()), ElementsAreArray(queue));
    }
}

TEST(CyclicBlockDataDeathTest, EndsBeforeItOverlapsOrOverruns) {
    auto const filled = [](std::size_t capacity, std::size_t pushed, std::size_t popped) {
        CyclicBlockData block(capacity);
        block.push_backNULL(pushed);
        block.pop_front(popped);
        return block;
    };
    EXPECT_DEATH(CyclicBlockData(0), "size!=0");
    EXPECT_DEATH(filled(20, 4, 5), "startindx_ <= endindx_");
    EXPECT_DEATH(filled(20, 10, 5).push_backNULL(12), "startindx_ > size\\(\\)");
    EXPECT_DEATH(filled(20, 10, 0).push_backNULL(5), "data_.size\\(\\) > 2\\*size\\(\\)");
    EXPECT_DEATH(filled(20, 10, 10).push_backNULL(200), "data_.size\\(\\) > 2\\*size\\(\\)");
}

} // namespace
