#include "EngineBench.hpp"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace corvanta {
namespace {

using namespace test;
namespace asio = boost::asio;

/// Invents the probes and runs the rest.
class RunningExecutor : public FFMPEGCommandExecutorImplementation {
  public:
    Task<CorvantaSdkVideoInformation> getMediaInformation(URL url) override {
        co_return plainInformation(url);
    }
};

struct ThreadsBench {
    ThreadsBench() {
        for (const char* name : {"a.mp4", "b.mp4"}) {
            writeFile(directory.file(name), "");
        }
    }

    UUID insertRow() const {
        const auto now = std::chrono::system_clock::now();
        const LocalVideoRequest row{.id = makeUUID(),
                                    .status = Stored::idle,
                                    .outputPath = URL::fromFilePath(directory.file("out.mp4")),
                                    .output = CorvantaSdkVideoFileDescriptor::custom(directory.file("out")),
                                    .type = LocalVideoRequest::OperationType::merge,
                                    .error = std::nullopt,
                                    .inputFiles = {{URL::fromFilePath(directory.file("a.mp4")), 0},
                                                   {URL::fromFilePath(directory.file("b.mp4")), 1}},
                                    .rawData = R"({"videoTracks":[],"audioTracks":[],"framesRate":"30"})",
                                    .processId = std::nullopt,
                                    .createdAt = now,
                                    .updatedAt = now};
        store->insert(row);
        return row.id;
    }

    RequestPointer fetch(const UUID& id) const {
        RequestPointer fetched;
        const auto subscription = requests.streamVideoRequest(id).subscribe(
            [&](const RequestPointer& request) { fetched = request; });
        return fetched;
    }

    TemporaryDirectory directory;
    RecordedLog log;
    std::shared_ptr<FFMPEGCommandExecutor> executor = std::make_shared<RunningExecutor>();
    std::shared_ptr<corvanta::InMemoryVideoStore> store =
        std::make_shared<corvanta::InMemoryVideoStore>();
    std::shared_ptr<CorvantaCredentialsManager> credentials =
        std::make_shared<CorvantaCredentialsManagerImp>();
    std::shared_ptr<CorvantaSdkVideoMergeEngine> merge = std::make_shared<CorvantaSdkVideoMergeEngine>(
        credentials, FFMPEGMergeCommandGenerator(), executor,
        VideosInformationGenerator(credentials, executor), CorvantaSdkVideoFileValidator(), store);
    CorvantaSdkVideoRequestBuilder requests{store, merge, nullptr, nullptr};
};

// "" or the error's name. The error stays on the threads that the sanitizer can follow it on: the standard
// library counts an exception's owners out of its sight.
Task<std::string> outcomeOf(RequestPointer request) {
    try {
        co_await request->process();
    } catch (const std::exception& error) {
        co_return error.what();
    }
    co_return "";
}

// The end of such a run comes on another thread while the starting one still stores the session's id.
TEST(EngineThreads, EndRunsThatEndAtOnceWithoutAProcessId) {
    ThreadsBench bench;
    const ScopedVariable ffmpeg("CORVANTA_FFMPEG", "/nonexistent/ffmpeg");
    asio::thread_pool pool(4);
    std::vector<std::pair<UUID, std::future<std::string>>> runs;
    // Each prints why it could not be started.
    ::testing::internal::CaptureStdout();
    for (int run = 0; run < 150; ++run) {
        const UUID id = bench.insertRow();
        runs.emplace_back(id, asio::co_spawn(pool, outcomeOf(bench.fetch(id)), asio::use_future));
    }
    for (auto& [id, result] : runs) {
        EXPECT_EQ(result.get(), "mergeFailed");
        const auto row = bench.store->getRequest(id);
        EXPECT_EQ(row->status, Stored::error);
        EXPECT_EQ(row->processId, std::nullopt);
    }
    pool.join();
    ::testing::internal::GetCapturedStdout();
}

/// Holds the second update, that of the session's id, back until the run's failure is told, or a moment.
class HoldingLog : public SharedCorvantaSdkLogSink {
  public:
    void addLog(const SharedCorvantaSdkLog& record) override {
        std::unique_lock lock(mutex_);
        if (record.tag == "event_video_merge_request") {
            failed_ = true;
            changed_.notify_all();
        } else if (record.tag == "event_video_request_update" && ++updates_ == 2) {
            changed_.wait_for(lock, std::chrono::milliseconds(200), [this] { return failed_; });
        }
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int updates_ = 0;
    bool failed_ = false;
};

TEST(EngineThreads, SettleTheRowAfterTheSessionsIdIsStored) {
    ThreadsBench bench;
    SharedCorvantaSdkCommonKt::sdk_common().setLog(std::make_shared<HoldingLog>());
    const FakeProgram ffmpeg("CORVANTA_FFMPEG", "exit 1\n");
    asio::thread_pool pool(2);
    const UUID id = bench.insertRow();
    EXPECT_EQ(asio::co_spawn(pool, outcomeOf(bench.fetch(id)), asio::use_future).get(), "mergeFailed");
    pool.join();
    const auto row = bench.store->getRequest(id);
    EXPECT_EQ(row->status, Stored::error);
    EXPECT_EQ(row->processId, std::nullopt);
}

TEST(EngineThreads, CancelRunsOfOtherThreads) {
    ThreadsBench bench;
    const FakeProgram ffmpeg("CORVANTA_FFMPEG", "exec sleep 600\n");
    asio::thread_pool pool(4);
    std::vector<std::pair<UUID, std::future<std::string>>> runs;
    for (int run = 0; run < 8; ++run) {
        const UUID id = bench.insertRow();
        runs.emplace_back(id, asio::co_spawn(pool, outcomeOf(bench.fetch(id)), asio::use_future));
    }
    std::vector<std::jthread> cancellers;
    for (const auto& [id, result] : runs) {
        cancellers.emplace_back([&bench, id = id] {
            EXPECT_TRUE(eventually([&] { return failureOf([&] { bench.fetch(id)->cancel(); }).empty(); }));
        });
    }
    for (auto& [id, result] : runs) {
        EXPECT_EQ(result.get(), "mergeFailed");
    }
    cancellers.clear();
    pool.join();
    for (const auto& [id, result] : runs) {
        const auto row = bench.store->getRequest(id);
        EXPECT_EQ(row->status, Stored::cancelled);
        EXPECT_EQ(row->processId, std::nullopt);
    }
}

TEST(EngineThreads, GiveOneResultToManyCallers) {
    ThreadsBench bench;
    const FakeProgram ffmpeg("CORVANTA_FFMPEG", "exit 0\n");
    asio::thread_pool pool(4);
    const RequestPointer request = bench.fetch(bench.insertRow());
    std::vector<std::future<std::string>> calls;
    for (int call = 0; call < 32; ++call) {
        calls.push_back(asio::co_spawn(pool, outcomeOf(request), asio::use_future));
    }
    int successes = 0;
    for (auto& call : calls) {
        const std::string failure = call.get();
        EXPECT_TRUE(failure.empty() || failure == "operationStillsInProgress") << failure;
        successes += failure.empty() ? 1 : 0;
    }
    pool.join();
    EXPECT_GE(successes, 1);
    EXPECT_TRUE(request->outputPath());
}

} // namespace
} // namespace corvanta
