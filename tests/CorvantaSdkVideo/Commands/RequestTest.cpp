#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequest.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>

#include "support/RecordedLog.hpp"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/use_future.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <stdexcept>

namespace corvanta {
namespace {

namespace asio = boost::asio;
using Error = CorvantaSdkVideoError;
using ::testing::ElementsAre;

const URL resultURL = URL::fromFilePath("/made/out.mp4");

/// Runs through one turn of the event loop and then does what it is told.
class ScriptedEngine : public CorvantaSdkVideoRequestEngine {
  public:
    Task<CorvantaSdkVideoRequestResult> process(std::shared_ptr<CorvantaSdkVideoRequest> request) override {
        ++runs;
        co_await asio::post(co_await asio::this_coro::executor, asio::use_awaitable);
        if (fails) {
            throw std::runtime_error("engine " + uuidString(request->id));
        }
        co_return CorvantaSdkVideoRequestResult{resultURL};
    }

    void cancel(const CorvantaSdkVideoRequest& request) override {
        ++cancels;
        if (fails) {
            throw std::runtime_error("cancel " + uuidString(request.id));
        }
    }

    bool fails = false;
    int runs = 0;
    int cancels = 0;
};

class RequestTest : public testing::Test {
  protected:
    std::shared_ptr<CorvantaSdkVideoRequest> makeRequest() const {
        const auto now = std::chrono::system_clock::now();
        return std::make_shared<CorvantaSdkVideoRequest>(
            id_, CorvantaSdkVideoRequest::Type::concat, CorvantaSdkVideoRequest::Status::idle,
            CorvantaSdkVideoFileDescriptor::files("out"), now, now, std::nullopt, std::nullopt,
            VideoConcatData{}, std::nullopt, std::nullopt, engine_);
    }

    std::string idText() const { return uuidString(id_); }

    const UUID id_ = makeUUID();
    const std::shared_ptr<ScriptedEngine> engine_ = std::make_shared<ScriptedEngine>();
    test::RecordedLog log_;
};

template <typename Run>
std::string errorOf(Run run) {
    try {
        run();
        return "none";
    } catch (const std::exception& error) {
        return error.what();
    }
}

TEST_F(RequestTest, GivesTheFirstSuccessAgainWithoutRunning) {
    const auto request = makeRequest();
    EXPECT_EQ(request->outputPath(), std::nullopt);
    for (int call = 0; call < 3; ++call) {
        EXPECT_EQ(runBlocking(request->process()).videoURL, resultURL);
        EXPECT_EQ(engine_->runs, 1);
        EXPECT_EQ(request->outputPath(), resultURL);
        EXPECT_EQ(request->status, CorvantaSdkVideoRequest::Status::idle);
        EXPECT_THAT(log_.take(),
                    ElementsAre("info event_video_request_process: Process request with id: " + idText()));
    }
}

TEST_F(RequestTest, StaysShutAfterAFailure) {
    engine_->fails = true;
    const auto request = makeRequest();
    EXPECT_EQ(errorOf([&] { runBlocking(request->process()); }), "engine " + idText());
    engine_->fails = false;
    log_.take();
    for (int call = 0; call < 2; ++call) {
        EXPECT_EQ(errorOf([&] { runBlocking(request->process()); }), "operationStillsInProgress");
    }
    EXPECT_EQ(engine_->runs, 1);
    EXPECT_EQ(request->outputPath(), std::nullopt);
    EXPECT_EQ(log_.take().size(), 2U);
    EXPECT_EQ(runBlocking(makeRequest()->process()).videoURL, resultURL);
}

TEST_F(RequestTest, CancelPassesThroughAtAnyTime) {
    const auto request = makeRequest();
    request->cancel();
    EXPECT_THAT(log_.take(),
                ElementsAre("info event_video_request_cancel: Cancel request with id: " + idText()));
    engine_->fails = true;
    EXPECT_EQ(errorOf([&] { request->cancel(); }), "cancel " + idText());
    EXPECT_EQ(engine_->cancels, 2);
    EXPECT_EQ(engine_->runs, 0);
}

TEST_F(RequestTest, RefusesASecondRunAndLivesWhileItRuns) {
    asio::io_context context;
    auto request = makeRequest();
    auto first = asio::co_spawn(context, request->process(), asio::use_future);
    auto second = asio::co_spawn(context, request->process(), asio::use_future);
    context.run_one();
    const std::weak_ptr<CorvantaSdkVideoRequest> watched = std::exchange(request, nullptr);
    EXPECT_FALSE(watched.expired());
    context.run();
    EXPECT_EQ(first.get().videoURL, resultURL);
    EXPECT_EQ(errorOf([&] { second.get(); }), "operationStillsInProgress");
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(engine_->runs, 1);
}

TEST_F(RequestTest, IsFreedWithARunThatNeverEnds) {
    std::weak_ptr<CorvantaSdkVideoRequest> watched;
    {
        asio::io_context context;
        auto request = makeRequest();
        watched = request;
        asio::co_spawn(context, request->process(), asio::detached);
        context.run_one();
        EXPECT_EQ(engine_->runs, 1);
    }
    EXPECT_TRUE(watched.expired());
}

TEST(RequestNames, AreThoseOfTheCases) {
    using Type = CorvantaSdkVideoRequest::Type;
    using Status = CorvantaSdkVideoRequest::Status;
    EXPECT_EQ(name(Type::merge), "merge");
    EXPECT_EQ(name(Type::encode), "encode");
    EXPECT_EQ(name(Type::concat), "concat");
    const std::vector<std::pair<Status, std::string>> statuses = {{Status(0), "processing"},
                                                                  {Status(1), "error"},
                                                                  {Status(2), "cancelled"},
                                                                  {Status(3), "complete"},
                                                                  {Status(4), "idle"}};
    for (const auto& [status, text] : statuses) {
        EXPECT_EQ(name(status), text);
    }
}

} // namespace
} // namespace corvanta
