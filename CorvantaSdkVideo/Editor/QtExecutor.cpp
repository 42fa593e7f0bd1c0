#include <CorvantaSdkVideo/Editor/QtExecutor.hpp>

#include <QCoreApplication>
#include <QMetaObject>
#include <QObject>

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace corvanta {

namespace {

// The functions wait here and not in Qt's events: an application that ends destroys its events under a lock,
// and a function that goes may hand in more work.
struct Relay {
    QObject receiver;
    boost::asio::execution_context context;
    std::mutex mutex;
    std::deque<std::function<void()>> waiting;

    void add(std::function<void()> function) {
        const std::lock_guard lock(mutex);
        waiting.push_back(std::move(function));
    }

    std::function<void()> takeNext() {
        const std::lock_guard lock(mutex);
        std::function<void()> next = std::move(waiting.front());
        waiting.pop_front();
        return next;
    }
};

// Never deleted: tasks may still hand in work while the process ends.
Relay& relay() {
    static Relay* const shared = [] {
        auto made = std::make_unique<Relay>();
        made->receiver.moveToThread(QCoreApplication::instance()->thread());
        return made.release();
    }();
    return *shared;
}

} // namespace

boost::asio::execution_context& QtExecutor::query(boost::asio::execution::context_t) const noexcept {
    return relay().context;
}

void QtExecutor::post(std::function<void()> function) {
    relay().add(std::move(function));
    QMetaObject::invokeMethod(
        &relay().receiver, [] { relay().takeNext()(); }, Qt::QueuedConnection);
}

} // namespace corvanta
