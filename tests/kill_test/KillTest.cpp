#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>

#include "support/MediaFixtures.hpp"
#include "support/Processes.hpp"

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <random>
#include <sstream>

namespace corvanta::test {
namespace {

namespace fs = std::filesystem;
using ::testing::AnyOf;
using Status = LocalVideoRequest::Status;

struct Ended {
    int status;
    std::string output;
};

/// What the host's journal promises of the rows.
struct Promise {
    bool complete = false;
    bool wasRun = false;
    std::optional<std::string> error;
    /// Of an update that had not returned.
    std::optional<std::string> nextError;
};

class KillTest : public ::testing::TestWithParam<int> {
  protected:
    KillTest() {
        fs::create_directory(directory_.file("outputs"));
        options_.environment = {{"XDG_DATA_HOME", directory_.file("data")}, {"KILL_TEST_MARK", mark_}};
    }

    // Waits for the moment and kills. Returns what the host had noted.
    std::string journalOfAKilledHost() {
        const std::string journal = directory_.file("journal");
        fs::remove(journal);
        Program host(
            KILL_TEST_HOST,
            {journal, directory_.file("outputs"), makeClip({.seconds = 0.3}), makeClip({.seconds = 0.5})},
            options_);
        const auto count = [&](std::string_view line) {
            const std::string text = readFile(journal);
            std::int64_t found = 0;
            for (std::size_t at = text.find(line); at != std::string::npos; at = text.find(line, at + 1)) {
                ++found;
            }
            return found;
        };
        switch (number(0, 2)) {
        case 0:
            linger(60'000);
            break;
        case 1: {
            const std::int64_t lines = number(1, 80);
            EXPECT_TRUE(eventually([&] { return count("\n") >= lines; }));
            linger(3'000);
            break;
        }
        default: {
            const std::int64_t changes = number(1, 4);
            EXPECT_TRUE(eventually([&] { return count("status processing\n") >= changes; }));
            linger(80'000);
        }
        }
        host.signal(SIGKILL);
        EXPECT_EQ(host.wait(), -SIGKILL);
        EXPECT_TRUE(eventually([&] { return processesWith(mark_).empty(); }));
        return readFile(journal);
    }

    void promise(const std::string& journal) {
        std::istringstream lines(journal);
        for (std::string word, id; lines >> word >> id;) {
            if (word == "status") {
                continue;
            }
            Promise& row = promises_[*parseUUID(id)];
            row.complete = row.complete || word == "complete";
            row.wasRun = row.wasRun || word == "running";
            if (word == "updating") {
                row.nextError = std::string();
                lines >> *row.nextError;
            } else if (word == "updated") {
                lines >> *row.nextError;
                row.error = std::exchange(row.nextError, std::nullopt);
            }
        }
    }

    void checkRows() {
        std::map<UUID, LocalVideoRequest> rows;
        {
            CoreDataCorvantaStore store(URL::fromFilePath(storeFile()));
            const auto subscription = store.streamVideos().subscribe([&rows](const auto& list) {
                for (const LocalVideoRequest& row : list) {
                    EXPECT_NE(row.status, Status::processing);
                    EXPECT_EQ(row.inputFiles.size(), 2U);
                    EXPECT_TRUE(rows.emplace(row.id, row).second);
                }
            });
        }
        for (const auto& [id, promised] : promises_) {
            ASSERT_TRUE(rows.contains(id)) << uuidString(id);
            const LocalVideoRequest& row = rows.at(id);
            if (promised.complete) {
                EXPECT_EQ(row.status, Status::completed);
            } else if (promised.wasRun) {
                EXPECT_THAT(row.status, AnyOf(Status::idle, Status::cancelled, Status::completed));
            } else {
                EXPECT_EQ(row.status, Status::idle);
            }
            if (row.status == Status::completed) {
                EXPECT_EQ(row.processId, std::nullopt);
                EXPECT_GT(fs::file_size(row.outputPath.path()), 1000U);
            }
            EXPECT_THAT(row.error, AnyOf(promised.error, promised.nextError));
        }
        const SQLite::Database database(storeFile());
        const auto textOf = [&database](const char* query) {
            return SQLite::Database(database.getFilename()).execAndGet(query).getString();
        };
        EXPECT_EQ(textOf("PRAGMA integrity_check"), "ok");
        EXPECT_EQ(textOf("SELECT count(*) FROM pragma_foreign_key_check"), "0");
    }

    Ended runHost(const std::vector<std::string>& arguments) const {
        Program host(CORVANTA_HOST, arguments, options_);
        const int status = host.wait();
        return {status, host.output()};
    }

    std::string storeFile() const { return directory_.file("data/corvanta-sdk-video/video-store.sqlite"); }

    std::int64_t number(std::int64_t least, std::int64_t most) {
        return std::uniform_int_distribution(least, most)(random_);
    }

    // A busy wait: a moment at random is the point, and shorter than a clock tick.
    void linger(std::int64_t most) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(number(0, most));
        while (std::chrono::steady_clock::now() < end) {
        }
    }

    const TemporaryDirectory directory_;
    const std::string mark_ = directory_.path().string();
    Program::Options options_;
    std::mt19937_64 random_{std::random_device{}()};
    std::map<UUID, Promise> promises_;
};

TEST_P(KillTest, NothingThatReturnedIsLost) {
    for (int moment = 0; moment < KILL_TEST_MOMENTS; ++moment) {
        SCOPED_TRACE("moment " + std::to_string(moment));
        promise(journalOfAKilledHost());
        const Ended restarted = runHost({"--json", "requests", "--status", "processing"});
        ASSERT_EQ(restarted.status, 0);
        ASSERT_EQ(restarted.output, "[]\n");
        checkRows();
        if (HasFatalFailure()) {
            return;
        }
    }
    for (const auto& [id, promised] : promises_) {
        if (promised.wasRun && !promised.complete && runHost({"process", uuidString(id)}).status == 0) {
            promises_[id].complete = true;
            break;
        }
    }
    checkRows();
}

INSTANTIATE_TEST_SUITE_P(Stores, KillTest, ::testing::Range(0, KILL_TEST_STORES));

} // namespace
} // namespace corvanta::test
