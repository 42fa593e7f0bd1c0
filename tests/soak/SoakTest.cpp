#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>

#include "support/MediaFixtures.hpp"
#include "support/Processes.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <random>
#include <sstream>

namespace corvanta::test {
namespace {

using Status = LocalVideoRequest::Status;

/// One store through several lives of a host, all but the last of them killed.
class SoakTest : public ::testing::Test {
  protected:
    SoakTest() {
        std::filesystem::create_directory(directory_.file("outputs"));
        options_.environment = {{"XDG_DATA_HOME", directory_.file("data")}, {"SOAK_MARK", directory_.path()}};
    }

    std::unique_ptr<Program> start() {
        std::filesystem::remove(journal_);
        return std::make_unique<Program>(SOAK_HOST,
                                         std::vector<std::string>{journal_, directory_.file("outputs"),
                                                                  SOAK_SECONDS, SOAK_REQUESTS, first_,
                                                                  second_},
                                         options_);
    }

    void killSometime(Program& host) {
        const auto lines = std::uniform_int_distribution<std::ptrdiff_t>(1, 40)(random_);
        EXPECT_TRUE(eventually([&] { return std::ranges::count(readFile(journal_), '\n') >= lines; }));
        host.signal(SIGKILL);
        EXPECT_EQ(host.wait(), -SIGKILL) << host.errors();
        EXPECT_TRUE(eventually([&] { return processesWith(directory_.path()).empty(); }));
    }

    // The store, read by another process, holds what the host has noted.
    void checkJournal() {
        CoreDataCorvantaStore store(
            URL::fromFilePath(directory_.file("data/corvanta-sdk-video/video-store.sqlite")));
        std::istringstream lines(readFile(journal_));
        for (std::string word, id; lines >> word >> id;) {
            const auto row = store.getRequest(*parseUUID(id));
            ASSERT_TRUE(row) << id;
            if (word == "complete") {
                // A cancel may come between the end of a run and its mark.
                EXPECT_TRUE(row->status == Status::completed || row->status == Status::cancelled);
                EXPECT_GT(std::filesystem::file_size(row->outputPath.path()), 1000U);
            } else if (word == "ended") {
                int status = 0;
                lines >> status;
                EXPECT_EQ(row->status, static_cast<Status>(status));
                EXPECT_NE(row->status, Status::processing);
            }
        }
    }

    const TemporaryDirectory directory_;
    const std::string journal_ = directory_.file("journal");
    const std::string first_ = makeClip({.seconds = 0.3});
    const std::string second_ = makeClip({.seconds = 0.5});
    Program::Options options_;
    std::mt19937 random_{std::random_device{}()};
};

TEST_F(SoakTest, NothingIsLostAndNothingLeaks) {
    for (int life = 0; life < SOAK_KILLED_LIVES; ++life) {
        killSometime(*start());
        checkJournal();
    }
    const auto last = start();
    EXPECT_EQ(last->wait(), 0) << last->errors();
    checkJournal();
    EXPECT_TRUE(processesWith(directory_.path()).empty());
}

} // namespace
} // namespace corvanta::test
