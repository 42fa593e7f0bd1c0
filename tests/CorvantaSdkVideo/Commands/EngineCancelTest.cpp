#include "EngineBench.hpp"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/use_future.hpp>
#include <gmock/gmock.h>

namespace corvanta {
namespace {

using namespace test;
namespace asio = boost::asio;

TEST(EngineCancel, DependsOnTheRowAlone) {
    struct Case {
        Stored status;
        std::optional<std::string> processId;
        std::string error, row;
        std::string notes = "";
    };
    const std::string notFound = "operationNotFound";
    const std::string notRunning = "operationMustBeProcessingToBeCancelled";
    const std::vector<Case> cases = {
        {Stored::idle, {}, notFound, "idle -"},
        {Stored::processing, {}, notFound, "processing -"},
        {Stored::processing, "7x", notFound, "processing 7x"},
        {Stored::processing, "", notFound, "processing "},
        {Stored::processing, "9223372036854775808", notFound, "processing 9223372036854775808"},
        {Stored::processing, "12", "", "cancelled -", "cancel 12, cancelled -pid"},
        {Stored::cancelled, "12", notRunning, "cancelled 12"},
        {Stored::error, {}, notFound, "error -"},
        {Stored::completed, "1", notRunning, "complete 1"},
        {Stored::idle, "-1", notRunning, "idle -1"},
    };
    for (const Case& state : cases) {
        for (const Type type : types) {
            SCOPED_TRACE(state.row + ", " + std::string(name(type)));
            EngineBench bench;
            const LocalVideoRequest row = bench.insertRow(type, state.status, state.processId);
            const RequestPointer request = bench.fetch(row.id);
            const auto cancel = [&] { request->cancel(); };
            EXPECT_EQ(failureOf(cancel), state.error);
            EXPECT_EQ(bench.rowOf(row.id), state.row);
            EXPECT_EQ(bench.takeNotes(), state.notes);
            bench.store->failsReads = true;
            EXPECT_EQ(failureOf(cancel), notFound);
            bench.store->failsReads = false;
            bench.store->deleteRequest(row.id);
            EXPECT_EQ(failureOf(cancel), notFound);
        }
    }
}

/// A run that is held in the executor.
struct HeldRun {
    explicit HeldRun(Type type, bool tellsSession = true)
        : row(bench.insertRow(type)), request(bench.fetch(row.id)) {
        bench.executor->hold = true;
        bench.executor->tellsSession = tellsSession;
        result = asio::co_spawn(context, request->process(), asio::use_future);
        context.poll();
        bench.executor->notes->clear();
        bench.takeErrors();
    }

    std::string end() {
        context.run();
        return failureOf([&] { result.get(); });
    }

    // Outlives the executor's timer.
    asio::io_context context;
    EngineBench bench;
    LocalVideoRequest row;
    RequestPointer request;
    std::future<CorvantaSdkVideoRequest::Result> result;
};

TEST(EngineCancel, StopsARunFromWhateverObject) {
    for (const Type type : types) {
        for (const bool sameObject : {true, false}) {
            SCOPED_TRACE(name(type));
            HeldRun run(type);
            EngineBench& bench = run.bench;
            const UUID id = run.row.id;
            EXPECT_EQ(bench.rowOf(id), "processing 7");
            const RequestPointer other = bench.fetch(id);
            EXPECT_EQ(failureOf(other), "operationStillsInProgress");

            bench.log.take();
            (sameObject ? run.request : bench.fetch(id))->cancel();
            EXPECT_THAT(bench.log.take(),
                        ::testing::Contains("info event_video_request_cancel: Cancel request with id: " +
                                            uuidString(id)));
            EXPECT_EQ(bench.takeNotes(), "cancel 7, cancelled -pid");
            EXPECT_EQ(failureOf([&] { other->cancel(); }), "operationNotFound");
            EXPECT_EQ(run.end(), failedName(type));
            EXPECT_EQ(bench.rowOf(id), "cancelled -");
            EXPECT_EQ(bench.takeNotes(), "");
            EXPECT_EQ(bench.takeErrors().size(), type == Type::concat ? 0U : 1U);

            // The object stays shut; another one runs the request again.
            bench.executor->hold = false;
            EXPECT_EQ(failureOf(run.request), "operationStillsInProgress");
            EXPECT_EQ(failureOf(bench.fetch(id)), "");
            EXPECT_EQ(bench.rowOf(id), "complete -");
            EXPECT_EQ(failureOf(bench.fetch(id)), "operationAlreadyCompleted");
        }
    }
}

TEST(EngineCancel, LeavesTheSessionsOfAnotherProcessToIt) {
    EngineBench bench;
    const LocalVideoRequest row = bench.insertRow(Type::merge);
    // A store of its own stands for the other process.
    CoreDataCorvantaStore other(URL::fromFilePath(bench.folders.file("store.sqlite")));
    other.updateRequest(row.id, {{Field::status(Stored::processing), Field::processId("7")}});
    bench.fetch(row.id)->cancel();
    EXPECT_EQ(bench.takeNotes(), "cancelled -pid");
    EXPECT_EQ(bench.rowOf(row.id), "cancelled -");
}

TEST(EngineCancel, FallsInTheGapsAroundARun) {
    for (const Type type : types) {
        SCOPED_TRACE(name(type));
        HeldRun silent(type, false);
        EXPECT_EQ(silent.bench.rowOf(silent.row.id), "processing -");
        EXPECT_EQ(failureOf([&] { silent.request->cancel(); }), "operationNotFound");
        silent.bench.executor->release();
        EXPECT_EQ(silent.end(), "");
        EXPECT_EQ(silent.bench.rowOf(silent.row.id), "complete -");

        // The run sees its end before the cancel is in the row, and leaves the row to it.
        HeldRun early(type);
        early.bench.executor->onCancel = [&] { early.context.poll(); };
        early.request->cancel();
        EXPECT_EQ(early.bench.takeNotes(), "cancel 7, cancelled -pid");
        EXPECT_EQ(early.end(), failedName(type));
        EXPECT_EQ(early.bench.rowOf(early.row.id), "cancelled -");

        // The cancel can't be stored: the run ends as failed.
        HeldRun unstored(type);
        ::testing::internal::CaptureStdout();
        unstored.bench.store->failsWrites = true;
        unstored.request->cancel();
        unstored.bench.store->failsWrites = false;
        EXPECT_EQ(::testing::internal::GetCapturedStdout(),
                  "Request update failed with error the disk is full\n");
        EXPECT_EQ(unstored.end(), failedName(type));
        EXPECT_EQ(unstored.bench.rowOf(unstored.row.id), "error -");
    }
}

TEST(Engines, LiveAsLongAsTheirRuns) {
    for (const Type type : types) {
        HeldRun run(type);
        const std::weak_ptr<CorvantaSdkVideoRequest> request = std::exchange(run.request, nullptr);
        const std::weak_ptr<CorvantaSdkVideoRequestEngine> engine = run.bench.engineOf(type);
        run.bench.requests = CorvantaSdkVideoRequestBuilder(run.bench.store, nullptr, nullptr, nullptr);
        run.bench.concat.reset();
        run.bench.merge.reset();
        run.bench.encode.reset();
        EXPECT_FALSE(request.expired());
        EXPECT_FALSE(engine.expired());
        run.bench.executor->release();
        EXPECT_EQ(run.end(), "");
        EXPECT_EQ(run.bench.rowOf(run.row.id), "complete -");
        EXPECT_TRUE(request.expired());
        EXPECT_TRUE(engine.expired());

        // A run that never ends goes with its loop.
        std::weak_ptr<CorvantaSdkVideoRequest> dropped;
        {
            const HeldRun endless(type);
            dropped = endless.request;
        }
        EXPECT_TRUE(dropped.expired());
    }
}

TEST(Requests, GiveTheirFirstResultAgainWithoutRunning) {
    EngineBench bench;
    const RequestPointer request = bench.fetch(bench.insertRow(Type::encode).id);
    for (int call = 0; call < 3; ++call) {
        bench.log.take();
        EXPECT_EQ(runBlocking(request->process()).videoURL, bench.outputURL());
        EXPECT_EQ(bench.executor->scripts.size(), 1U);
        EXPECT_EQ(bench.log.take().front(),
                  "info event_video_request_process: Process request with id: " + uuidString(request->id));
    }
    EXPECT_EQ(request->status, CorvantaSdkVideoRequest::Status::idle);
}

} // namespace
} // namespace corvanta
