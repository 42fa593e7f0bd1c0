#include <CorvantaSdkVideo/Store/ChangeStreams.hpp>

#include <algorithm>
#include <utility>

namespace corvanta {

namespace {

using List = std::vector<LocalVideoRequest>;

std::shared_ptr<const List> share(List list) { return std::make_shared<const List>(std::move(list)); }

} // namespace

Stream<List> streamList(std::shared_ptr<WorkingContext> context, ReadList read) {
    const auto seed = context->performSync([&] { return share(read()); });
    // Touched within the scope only.
    const auto last = std::make_shared<std::shared_ptr<const List>>(seed);
    return Stream<List>(
        [context, read = std::move(read), seed, last](const Stream<List>::Callback& callback) {
            const auto passChange = [read, last, callback](const WorkingContext::Notice&) {
                List list = read();
                if (list == **last) {
                    return;
                }
                // Held here as well: the observer may write, and so bring the next list about.
                const auto changed = share(std::move(list));
                *last = changed;
                callback(*changed);
            };
            return context->performSync([&] {
                Subscription subscription = context->observe(passChange);
                if (!seed->empty()) {
                    callback(*seed);
                }
                return subscription;
            });
        });
}

Stream<LocalVideoRequest> streamRow(std::shared_ptr<WorkingContext> context, RowKey key, ReadRow read) {
    return Stream<LocalVideoRequest>([context = std::move(context), key, read = std::move(read)](
                                         const Stream<LocalVideoRequest>::Callback& callback) {
        // What was passed last, which is looked at for commits of other processes alone.
        const auto last = std::make_shared<std::optional<LocalVideoRequest>>();
        const auto pass = [read, callback, last](bool always) {
            if (auto request = read(); request && (always || request != *last)) {
                *last = request;
                callback(*request);
            }
        };
        const auto passUpdate = [key, pass](const WorkingContext::Notice& notice) {
            const bool isUpdated = std::ranges::find(notice.updatedRows, key) != notice.updatedRows.end();
            if (isUpdated || notice.isForeign) {
                pass(isUpdated);
            }
        };
        return context->performSync([&] {
            Subscription subscription = context->observe(passUpdate);
            pass(true);
            return subscription;
        });
    });
}

} // namespace corvanta
