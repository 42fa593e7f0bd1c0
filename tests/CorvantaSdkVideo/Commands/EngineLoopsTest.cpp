#include "EngineBench.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/Thumbnail/CorvantaSdkVideoThumbnailGeneratorImplementation.hpp>
#include <platform/Cancellation.hpp>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/experimental/awaitable_operators.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/thread_pool.hpp>
#include <gtest/gtest.h>

#include <deque>
#include <thread>

namespace corvanta {
namespace {

using namespace test;
namespace asio = boost::asio;

/// Probes by a run of ffprobe that tells nothing.
class ProbingExecutor : public FFMPEGCommandExecutorImplementation {
  public:
    Task<CorvantaSdkVideoInformation> getMediaInformation(URL url) override {
        co_await executeFFMPEGProbeCommand("");
        co_return plainInformation(url);
    }
};

enum class Phase { probe, run };

/// Engines over the real executor, with scripts in place of the programs: the one of the phase notes that it
/// is there and stays, the others end at once.
struct LoopsBench : EngineBench {
    explicit LoopsBench(Phase phase, const std::string& stays = "exec sleep 600")
        : EngineBench(std::make_shared<ProbingExecutor>()), notes(": >\"$here/there\"\n" + stays),
          ffprobe("CORVANTA_FFPROBE", phase == Phase::probe ? notes : "exit 0"),
          ffmpeg("CORVANTA_FFMPEG", phase == Phase::run ? notes : "exit 0"),
          mark((phase == Phase::probe ? ffprobe : ffmpeg).file("there")) {}

    bool isThere() const { return std::filesystem::exists(mark); }

    const std::string notes;
    FakeProgram ffprobe;
    FakeProgram ffmpeg;
    const std::string mark;
};

/// A loop of a host's own, as one over a user interface's would be.
class OwnLoop : public asio::execution_context {
  public:
    class executor_type {
      public:
        explicit executor_type(OwnLoop* loop) : loop_(loop) {}

        template <typename Function>
        void execute(Function&& function) const {
            auto shared = std::make_shared<std::decay_t<Function>>(std::forward<Function>(function));
            const std::lock_guard lock(loop_->mutex_);
            loop_->functions_.push_back([shared] { std::move (*shared)(); });
        }
        asio::execution_context& query(asio::execution::context_t) const noexcept { return *loop_; }
        static constexpr auto query(asio::execution::blocking_t) noexcept {
            return asio::execution::blocking.never;
        }
        friend bool operator==(const executor_type&, const executor_type&) noexcept { return true; }
        friend bool operator!=(const executor_type&, const executor_type&) noexcept { return false; }

      private:
        OwnLoop* loop_;
    };

    ~OwnLoop() {
        shutdown();
        while (takeNext()) {
        }
    }

    executor_type get_executor() { return executor_type(this); }
    void poll() {
        while (const auto next = takeNext()) {
            next();
        }
    }

  private:
    std::function<void()> takeNext() {
        const std::lock_guard lock(mutex_);
        std::function<void()> next;
        if (!functions_.empty()) {
            next = std::move(functions_.front());
            functions_.pop_front();
        }
        return next;
    }

    std::mutex mutex_;
    std::deque<std::function<void()>> functions_;
};

void turn(asio::io_context& loop) { loop.poll(); }
void turn(OwnLoop& loop) { loop.poll(); }
void turn(asio::thread_pool&) {}

template <typename Loop>
class EngineLoops : public ::testing::Test {};

using Loops = ::testing::Types<asio::io_context, asio::thread_pool, OwnLoop>;
TYPED_TEST_SUITE(EngineLoops, Loops);

TYPED_TEST(EngineLoops, EndBeforeTheirRuns) {
    for (const Type type : types) {
        for (const auto& [phase, isCancelled] :
             {std::pair(Phase::probe, false), {Phase::run, false}, {Phase::run, true}}) {
            LoopsBench bench(phase);
            const UUID id = bench.insertRow(type).id;
            RequestPointer request = bench.fetch(id);
            {
                TypeParam loop;
                asio::co_spawn(loop.get_executor(), request->process(), asio::detached);
                const std::string reached = phase == Phase::run ? "processing" : "idle";
                ASSERT_TRUE(eventually([&] {
                    turn(loop);
                    return bench.isThere() && bench.rowOf(id).starts_with(reached);
                }));
                EXPECT_TRUE(!isCancelled ||
                            eventually([&] { return failureOf([&] { request->cancel(); }).empty(); }));
            }
            EXPECT_EQ(bench.rowOf(id), "cancelled -");
            const std::weak_ptr dropped = request;
            request.reset();
            EXPECT_TRUE(dropped.expired());
            EXPECT_TRUE(eventually([] { return childrenOf(getpid()).empty(); }));
        }
    }
}

// The session's end is told while its loop goes.
TYPED_TEST(EngineLoops, EndTogetherWithTheirRuns) {
    LoopsBench bench(Phase::run, "exit 0");
    for (int round = 0; round < 40; ++round) {
        const UUID id = bench.insertRow(Type::merge).id;
        {
            TypeParam loop;
            asio::co_spawn(loop.get_executor(), bench.fetch(id)->process(), asio::detached);
            ASSERT_TRUE(eventually([&] {
                turn(loop);
                return bench.isThere();
            }));
            std::filesystem::remove(bench.mark);
        }
        const std::string row = bench.rowOf(id);
        EXPECT_TRUE(row == "cancelled -" || row == "complete -") << row;
    }
}

Task<> until(std::function<bool()> condition) {
    const auto executor = co_await asio::this_coro::executor;
    while (!condition()) {
        co_await asio::post(executor, asio::use_awaitable);
    }
}

// Whether `condition` held before the run had ended, and both have.
Task<bool> isOutrun(RequestPointer request, std::function<bool()> condition) {
    using namespace asio::experimental::awaitable_operators;
    const auto first = co_await (request->process() || until(std::move(condition)));
    co_return first.index() == 1;
}

/// How `task` ends that is stopped once the bench's program is there.
template <typename T>
std::string ending(Task<T> task, const LoopsBench& bench) {
    std::stop_source stop;
    const std::jthread stopper([&] {
        EXPECT_TRUE(eventually([&] { return bench.isThere(); }));
        stop.request_stop();
    });
    try {
        runBlocking(std::move(task), stop.get_token());
        return "";
    } catch (const std::exception& error) {
        return isCancellation(error) ? "cancelled" : error.what();
    }
}

TEST(EngineCancellation, ByAsioStopsARunInAnyPhase) {
    for (const Type type : types) {
        for (const Phase phase : {Phase::probe, Phase::run}) {
            LoopsBench bench(phase);
            const UUID id = bench.insertRow(type).id;
            EXPECT_TRUE(runBlocking(isOutrun(bench.fetch(id), [&] { return bench.isThere(); })));
            EXPECT_EQ(bench.rowOf(id), "cancelled -");

            std::filesystem::remove(bench.mark);
            EXPECT_EQ(ending(bench.fetch(id)->process(), bench),
                      phase == Phase::run || type == Type::encode ? failedName(type) : "cancelled");
            EXPECT_EQ(bench.rowOf(id), "cancelled -");
            EXPECT_TRUE(eventually([] { return childrenOf(getpid()).empty(); }));
        }
    }
}

TEST(EngineCancellation, ByAsioStopsOtherOperations) {
    const std::string clip = makeClip({});
    LoopsBench probing(Phase::probe);
    const std::vector<URL> inputs{probing.input("a.mp4"), probing.input("b.mp4")};
    EXPECT_EQ(ending(probing.probes.getVideosInformation(inputs), probing), "cancelled");
    std::filesystem::remove(probing.mark);
    EXPECT_EQ(ending(probing.comparison.canProcessConcatWith(inputs), probing), "cancelled");

    LoopsBench running(Phase::run);
    const CorvantaSdkVideoFile file(URL::fromFilePath(clip));
    const auto output = CorvantaSdkVideoFileDescriptor::custom(running.output());
    CorvantaSdkVideoThumbnailGeneratorImplementation thumbnails;
    EXPECT_EQ(ending(thumbnails.generateThumbnail({file, output, 0, std::nullopt, std::nullopt}), running),
              "cancelled");
    std::filesystem::remove(running.mark);
    const auto engine = CorvantaSdkVideo->engine();
    EXPECT_EQ(ending(engine->clearNoiseForFile(file, output), running), "cancelled");
}

} // namespace
} // namespace corvanta
