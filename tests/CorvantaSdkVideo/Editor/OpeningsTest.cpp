#include "CorvantaSdkVideo/Editor/ScreenFixture.hpp"
#include "support/Processes.hpp"

#include <filesystem>

#include <malloc.h>
#include <unistd.h>

namespace corvanta {
namespace {

class OpeningsTest : public test::ScreenFixture {
  protected:
    struct Held {
        std::size_t descriptors;
        std::size_t threads;
        std::size_t children;
        std::size_t heap;
    };

    void openAndClose(int count) {
        for (int opening = 0; opening < count; ++opening) {
            present();
            // Some close while the file is still being read.
            if (opening % 2 == 0) {
                ASSERT_TRUE(isFileRead());
                click("Play");
            }
            click("Close");
            ASSERT_TRUE(isClosed());
        }
        ASSERT_EQ(results_.size(), static_cast<std::size_t>(count));
        results_.clear();
    }

    static Held held() {
        const std::filesystem::directory_iterator tasks("/proc/self/task");
        return {test::openDescriptors(), static_cast<std::size_t>(std::distance(begin(tasks), end(tasks))),
                test::childrenOf(getpid()).size(), mallinfo2().uordblks};
    }

    void expectNoLeak(int count, std::size_t heapEach) {
        // Libraries that are loaded at the first opening stay.
        openAndClose(3);
        EXPECT_TRUE(eventually([] { return held().children == 0; }));
        const Held before = held();
        openAndClose(count);
        EXPECT_TRUE(eventually([&] {
            const Held now = held();
            return now.children == 0 && now.threads <= before.threads &&
                   now.descriptors <= before.descriptors;
        })) << held().descriptors
            << " descriptors, before " << before.descriptors << "; " << held().threads << " threads, before "
            << before.threads;
        if (test::memoryIsOurs) {
            EXPECT_LT(held().heap, before.heap + static_cast<std::size_t>(count) * heapEach);
        }
    }
};

#ifdef CORVANTA_LONG_TESTS
TEST_F(OpeningsTest, TwoHundredLeaveNothingBehind) { expectNoLeak(200, 10'000); }
#else
TEST_F(OpeningsTest, AFewLeaveNothingBehind) { expectNoLeak(12, 100'000); }
#endif

} // namespace
} // namespace corvanta
