#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoInterfaceImp.hpp>

#include "support/Journal.hpp"

#include <string>
#include <thread>
#include <vector>

/// Stores, changes and runs requests until it is killed, and writes a journal of it.
///
///     kill_test_host JOURNAL OUTPUT_FOLDER CLIP...

namespace {

using namespace corvanta;

struct Work {
    test::Journal journal;
    std::string folder;
    std::vector<CorvantaSdkVideoFile> clips;

    std::shared_ptr<CorvantaSdkVideoRequest> insert() const {
        const std::string output = folder + '/' + uuidString(makeUUID());
        auto request =
            CorvantaSdkVideo->ConcatBuilder(clips, CorvantaSdkVideoFileDescriptor::custom(output)).build();
        journal.add("inserted " + uuidString(request->id));
        return request;
    }

    [[noreturn]] void change() const {
        const auto store = CorvantaSdkVideoInterfaceImp::coreDataStore();
        for (int round = 0;; ++round) {
            const UUID id = insert()->id;
            for (int change = 0; change < 3; ++change) {
                const std::string what = uuidString(id) + ' ' + std::to_string(change);
                journal.add("updating " + what);
                store->updateRequest(id, {{UpdateRequestData::Field::error(std::to_string(change))}});
                journal.add("updated " + what);
            }
        }
    }

    [[noreturn]] void join() const {
        for (;;) {
            const auto request = insert();
            const std::string id = uuidString(request->id);
            journal.add("running " + id);
            const auto subscription =
                CorvantaSdkVideo->streamRequest(request->id).subscribe([this](const auto& stored) {
                    journal.add("status " + std::string(name(stored->status)));
                });
            runBlocking(request->process());
            journal.add("complete " + id);
        }
    }
};

} // namespace

int main(int argumentCount, char** arguments) {
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    Work work{test::Journal(arguments[1]), arguments[2], {}};
    for (int argument = 3; argument < argumentCount; ++argument) {
        work.clips.emplace_back(URL::fromFilePath(arguments[argument]));
    }
    const std::jthread joiner([&work] { work.join(); });
    work.change();
}
