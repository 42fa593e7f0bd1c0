#include "support/Patience.hpp"

#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>

#include <QTest>

#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <memory>
#include <utility>

namespace corvanta {
namespace {

using Signal = boost::asio::cancellation_signal;

Task<> awaitOnWorker(std::shared_ptr<Signal> stop, std::function<void()> work) {
    const auto run = [](std::function<void()> function) -> Task<> {
        function();
        co_return;
    };
    Task<> task = run(std::move(work));
    co_await onEditorWorker(std::move(task), stop->slot());
}

/// Something that the worker does, for as long as it is to.
class Hold {
  public:
    void operator()() {
        begun_.set_value();
        mayEnd_.get_future().wait();
    }
    void waitUntilBegun() { begun_.get_future().wait(); }
    void end() { mayEnd_.set_value(); }

  private:
    std::promise<void> begun_, mayEnd_;
};

// As when an editor is closed in the moment in which a thumbnail is ready.
TEST(EditorTasksTest, ACancelMayComeWhenWhoeverAskedForItHasGone) {
    Hold task, beforeTheEnd, beforeTheCancel;
    auto stop = std::make_shared<Signal>();
    const std::weak_ptr<Signal> kept = stop;
    startOnQtThread(awaitOnWorker(stop, std::ref(task)));
    QCoreApplication::processEvents();
    task.waitUntilBegun();
    boost::asio::post(editorWorker(), std::ref(beforeTheEnd));
    task.end();
    beforeTheEnd.waitUntilBegun();

    boost::asio::post(editorWorker(), std::ref(beforeTheCancel));
    stop->emit(boost::asio::cancellation_type::terminal);
    stop.reset();
    beforeTheEnd.end();
    beforeTheCancel.waitUntilBegun();
    EXPECT_TRUE(QTest::qWaitFor([&] { return kept.expired(); }, test::patienceInMilliseconds));
    beforeTheCancel.end();
    // What the cancel queues runs behind what is queued before it.
    for (int round = 0; round < 3; ++round) {
        std::promise<void> reached;
        boost::asio::post(editorWorker(), [&reached] { reached.set_value(); });
        reached.get_future().wait();
    }
}

} // namespace
} // namespace corvanta
