#include "EngineBench.hpp"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/use_future.hpp>
#include <gtest/gtest.h>

namespace corvanta {
namespace {

using namespace test;
namespace asio = boost::asio;


TEST(EngineCancel, DependsOnTheRowAlone) {
    struct Case {
        std::string name;
        Stored status;
        std::optional<std::string> processId;
        std::string error;
        std::string row;
        std::string notes;
    };
    const std::string notFound = "operationNotFound";
    const std::string notRunning = "operationMustBeProcessingToBeCancelled";
    const std::vector<Case> cases = {
        {"idle", Stored::idle, {}, notFound, "idle -", ""},
        {"started, no session yet", Stored::processing, {}, notFound, "processing -", ""},
        {"no number", Stored::processing, "7x", notFound, "processing 7x", ""},
        {"empty", Stored::processing, "", notFound, "processing ", ""},
        {"blank", Stored::processing, " 7", notFound, "processing  7", ""},
        {"fraction", Stored::processing, "7.0", notFound, "processing 7.0", ""},
        {"too large", Stored::processing, "9223372036854775808", notFound, "processing 9223372036854775808",
         ""},
        {"running", Stored::processing, "12", "", "cancelled -", "cancel 12, cancelled -pid"},
        {"left over", Stored::cancelled, "12", notRunning, "cancelled 12", ""},
        {"failed", Stored::error, {}, notFound, "error -", ""},
        {"failed with an id", Stored::error, "1", notRunning, "error 1", ""},
        {"complete", Stored::completed, {}, notFound, "complete -", ""},
        {"complete with an id", Stored::completed, "1", notRunning, "complete 1", ""},
        {"idle with an id", Stored::idle, "-1", notRunning, "idle -1", ""},
    };
    for (const Case& state : cases) {
        for (const Type type : types) {
            SCOPED_TRACE(state.name + ", " + std::string(name(type)));
            EngineBench bench;
            const LocalVideoRequest row = bench.insertRow(type, state.status, state.processId);
            const RequestPointer request = bench.fetch(row.id);
            EXPECT_EQ(failureOf([&] { request->cancel(); }), state.error);
            EXPECT_EQ(bench.rowOf(row.id), state.row);
            EXPECT_EQ(bench.takeNotes(), state.notes);
            bench.store->failsReads = true;
            EXPECT_EQ(failureOf([&] { request->cancel(); }), notFound);
            bench.store->failsReads = false;
            bench.store->deleteRequest(row.id);
            EXPECT_EQ(failureOf([&] { request->cancel(); }), notFound);
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
        bench.notes->clear();
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

std::string failedName(Type type) {
    return type == Type::concat ? "concatFailed" : type == Type::merge ? "mergeFailed" : "encodingFailed";
}

TEST(EngineCancel, StopsARunFromWhateverObject) {
    for (const Type type : types) {
        for (const bool sameObject : {true, false}) {
            SCOPED_TRACE(name(type));
            HeldRun run(type);
            EXPECT_EQ(run.bench.rowOf(run.row.id), "processing 7");
            const RequestPointer other = run.bench.fetch(run.row.id);
            EXPECT_EQ(other->status, CorvantaSdkVideoRequest::Status::processing);
            EXPECT_EQ(failureOf([&] { runBlocking(other->process()); }), "operationStillsInProgress");

            (sameObject ? run.request : run.bench.fetch(run.row.id))->cancel();
            EXPECT_EQ(run.bench.takeNotes(), "cancel 7, cancelled -pid");
            EXPECT_EQ(failureOf([&] { other->cancel(); }), "operationNotFound");
            EXPECT_EQ(run.end(), failedName(type));
            EXPECT_EQ(run.bench.rowOf(run.row.id), "cancelled -");
            EXPECT_EQ(run.bench.takeNotes(), "");
            EXPECT_EQ(run.bench.takeErrors().size(), type == Type::concat ? 0U : 1U);
            EXPECT_EQ(run.bench.documents(),
                      type == Type::concat ? std::vector<std::string>{".txt"} : std::vector<std::string>{});

            run.bench.executor->hold = false;
            EXPECT_EQ(failureOf([&] { runBlocking(run.request->process()); }), "operationStillsInProgress");
            EXPECT_EQ(failureOf([&] { runBlocking(run.bench.fetch(run.row.id)->process()); }), "");
            EXPECT_EQ(run.bench.rowOf(run.row.id), "complete -");
            EXPECT_EQ(failureOf([&] { runBlocking(run.bench.fetch(run.row.id)->process()); }),
                      "operationAlreadyCompleted");
            EXPECT_EQ(failureOf([&] { run.request->cancel(); }), "operationNotFound");
        }
    }
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

        // The run sees its end before the cancel is in the row.
        HeldRun early(type);
        early.bench.executor->onCancel = [&] { early.context.poll(); };
        early.request->cancel();
        EXPECT_EQ(early.bench.takeNotes(), "cancel 7, error -pid, cancelled -pid");
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
    }
}

TEST(EngineCancel, LetsTwoObjectsStartThatBothSawAnIdleRow) {
    // Both pass the checks while the first one probes; nothing but the row keeps them apart.
    EngineBench bench;
    const LocalVideoRequest row = bench.insertRow(Type::merge);
    const RequestPointer second = bench.fetch(row.id);
    bool overtaken = false;
    bench.executor->onProbe = [&](const URL& url) {
        if (!std::exchange(overtaken, true)) {
            EXPECT_EQ(failureOf([&] { runBlocking(second->process()); }), "");
        }
        return plainInformation(url);
    };
    EXPECT_EQ(failureOf([&] { runBlocking(bench.fetch(row.id)->process()); }), "");
    EXPECT_EQ(bench.executor->scripts.size(), 2U);
    EXPECT_EQ(bench.rowOf(row.id), "complete -");
}

} // namespace
} // namespace corvanta
