#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>

#include "support/Processes.hpp"

#include <SQLiteCpp/Database.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
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

    std::unique_ptr<Program> start(const std::string& seconds) {
        writeFile(journal_, "");
        return std::make_unique<Program>(SOAK_HOST,
                                         std::vector<std::string>{journal_, directory_.file("outputs"),
                                                                  seconds, SOAK_REQUESTS, first_, second_},
                                         options_);
    }

    // At its start, between two changes, or while ffmpeg runs.
    void killSometime(Program& host) {
        const std::int64_t lines = number(0, 12);
        EXPECT_TRUE(eventually([&] { return std::ranges::count(readFile(journal_), '\n') >= lines; }));
        // A busy wait: a moment at random is the point, and shorter than a clock tick.
        const auto moment = std::chrono::steady_clock::now() + std::chrono::microseconds(number(0, 60'000));
        while (std::chrono::steady_clock::now() < moment) {
        }
        host.signal(SIGKILL);
        EXPECT_EQ(host.wait(), -SIGKILL) << host.errors();
        EXPECT_TRUE(eventually([&] { return processesWith(directory_.path()).empty(); }));
    }

    // The store, read by another process, holds what the host has noted.
    void checkJournal() {
        const std::string file = directory_.file("data/corvanta-sdk-video/video-store.sqlite");
        CoreDataCorvantaStore store(URL::fromFilePath(file));
        std::istringstream lines(readFile(journal_));
        for (std::string word, id; lines >> word >> id;) {
            const auto row = store.getRequest(*parseUUID(id));
            ASSERT_TRUE(row) << id;
            EXPECT_EQ(row->inputFiles.size(),
                      row->type == LocalVideoRequest::OperationType::encode ? 1U : 2U);
            if (word == "stored") {
                EXPECT_EQ(row->error, "seen");
            } else if (word == "complete") {
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
        SQLite::Database database(file);
        EXPECT_EQ(database.execAndGet("PRAGMA integrity_check").getString(), "ok");
        EXPECT_EQ(database.execAndGet("SELECT count(*) FROM pragma_foreign_key_check").getInt(), 0);
    }

    std::int64_t number(std::int64_t least, std::int64_t most) {
        return std::uniform_int_distribution(least, most)(random_);
    }

    const TemporaryDirectory directory_;
    const std::string journal_ = directory_.file("journal");
    const std::string first_ = makeClip({.seconds = 0.3});
    const std::string second_ = makeClip({.seconds = 0.5});
    Program::Options options_;
    std::mt19937_64 random_{std::random_device{}()};
};

TEST_F(SoakTest, NothingIsLostAndNothingLeaks) {
    for (int life = 0; life < SOAK_KILLED_LIVES; ++life) {
        SCOPED_TRACE(life);
        killSometime(*start("600"));
        checkJournal();
    }
    const auto last = start(SOAK_SECONDS);
    EXPECT_EQ(last->wait(), 0) << last->errors();
    checkJournal();
    EXPECT_TRUE(processesWith(directory_.path()).empty());
}

} // namespace
} // namespace corvanta::test
