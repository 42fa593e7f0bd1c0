#include "EngineBench.hpp"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/thread_pool.hpp>
#include <boost/asio/use_future.hpp>
#include <gtest/gtest.h>

#include <chrono>
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

/// Merges on four threads, with a script in place of ffmpeg.
struct ThreadsBench : EngineBench {
    explicit ThreadsBench(std::string_view script)
        : EngineBench(std::make_shared<RunningExecutor>()), ffmpeg("CORVANTA_FFMPEG", script) {}

    std::future<std::string> start(RequestPointer request) {
        return asio::co_spawn(pool, outcomeOf(std::move(request)), asio::use_future);
    }

    FakeProgram ffmpeg;
    asio::thread_pool pool{4};
};

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

// The end of such a run comes on another thread while the starting one still stores the session's id.
TEST(EngineThreads, SettleTheRowAfterTheSessionsIdIsStored) {
    ThreadsBench bench("exit 1\n");
    SharedCorvantaSdkCommonKt::sdk_common().setLog(std::make_shared<HoldingLog>());
    const UUID id = bench.insertRow(Type::merge).id;
    EXPECT_EQ(bench.start(bench.fetch(id)).get(), "mergeFailed");
    bench.pool.join();
    EXPECT_EQ(bench.rowOf(id), "error -");
}

TEST(EngineThreads, CancelRunsOfOtherThreads) {
    ThreadsBench bench("exec sleep 600\n");
    std::vector<std::pair<UUID, std::future<std::string>>> runs;
    for (int run = 0; run < 8; ++run) {
        const UUID id = bench.insertRow(Type::merge).id;
        runs.emplace_back(id, bench.start(bench.fetch(id)));
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
    bench.pool.join();
    for (const auto& [id, result] : runs) {
        EXPECT_EQ(bench.rowOf(id), "cancelled -");
    }
}

TEST(EngineThreads, GiveOneResultToManyCallers) {
    ThreadsBench bench("exit 0\n");
    const RequestPointer request = bench.fetch(bench.insertRow(Type::merge).id);
    std::vector<std::future<std::string>> calls;
    for (int call = 0; call < 32; ++call) {
        calls.push_back(bench.start(request));
    }
    int successes = 0;
    for (auto& call : calls) {
        const std::string failure = call.get();
        EXPECT_TRUE(failure.empty() || failure == "operationStillsInProgress") << failure;
        successes += failure.empty() ? 1 : 0;
    }
    bench.pool.join();
    EXPECT_GE(successes, 1);
}

} // namespace
} // namespace corvanta
