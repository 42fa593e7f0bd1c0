#include <CorvantaSdkVideo/Editor/QtExecutor.hpp>

#include <QCoreApplication>
#include <QMetaObject>
#include <QObject>

namespace corvanta {

namespace {

struct Relay {
    QObject receiver;
    boost::asio::execution_context context;
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
    QMetaObject::invokeMethod(&relay().receiver, std::move(function), Qt::QueuedConnection);
}

} // namespace corvanta
