#include "Commands.hpp"
#include "Failures.hpp"
#include "Output.hpp"
#include "RequestRun.hpp"
#include "Run.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

using namespace corvanta;

namespace {

using Status = CorvantaSdkVideoRequest::Status;

constexpr std::array allStatuses = {Status::processing, Status::error, Status::cancelled, Status::complete,
                                    Status::idle};

// Which requests are meant; all, if nothing is said.
struct Selection {
    std::vector<std::string> ids;
    std::string statusName;
    bool onlyFinished = false;

    bool isAll() const { return ids.empty() && statusName.empty() && !onlyFinished; }
};

bool isFinished(Status status) { return status != Status::processing && status != Status::idle; }

UUID parsedId(const std::string& text) {
    if (const auto id = parseUUID(text)) {
        return *id;
    }
    throw UsageError("\"" + text + "\" is no request id: `requests` lists them");
}

// A wrong id gives none at all.
std::vector<RequestPointer> requestsWith(const Selection& selection) {
    std::vector<RequestPointer> requests;
    for (const Status status : allStatuses) {
        const bool isMeant = selection.statusName.empty() || selection.statusName == name(status);
        if (isMeant && (isFinished(status) || !selection.onlyFinished)) {
            std::ranges::move(CorvantaSdkVideo->getRequests(status), std::back_inserter(requests));
        }
    }
    if (selection.ids.empty()) {
        return requests;
    }
    std::vector<RequestPointer> named;
    for (const std::string& text : selection.ids) {
        const auto found = std::ranges::find(requests, parsedId(text), &CorvantaSdkVideoRequest::id);
        if (found == requests.end()) {
            throw Refusal("operationNotFound", "there is no such request: " + text);
        }
        named.push_back(*found);
    }
    return named;
}

nlohmann::ordered_json toJson(const std::vector<RequestPointer>& requests) {
    auto list = nlohmann::ordered_json::array();
    for (const RequestPointer& request : requests) {
        list.push_back(::toJson(*request));
    }
    return list;
}

void printRequests(Console& console, const std::vector<RequestPointer>& requests) {
    if (console.json()) {
        console.print(toJson(requests));
        return;
    }
    for (const RequestPointer& request : requests) {
        console.print("{}\n", toLine(*request));
    }
}

void deleteRequests(Console& console, const Selection& selection) {
    if (selection.isAll()) {
        throw UsageError("--delete takes ids, --status or --finished");
    }
    const auto requests = requestsWith(selection);
    for (const RequestPointer& request : requests) {
        CorvantaSdkVideo->deleteRequest(request->id);
    }
    printRequests(console, requests);
}

// Each emission is one line.
void printEmission(Console& console, const std::vector<RequestPointer>& requests) {
    if (console.json()) {
        console.printLine(toJson(requests));
        return;
    }
    std::string line = std::to_string(requests.size()) + " requests";
    const char* separator = ": ";
    for (const RequestPointer& request : requests) {
        line += fmt::format("{}{} {} {}", std::exchange(separator, ", "), uuidString(request->id),
                            name(request->type), name(request->status));
    }
    console.print("{}\n", line);
}

void printEmission(Console& console, const RequestPointer& request) {
    if (console.json()) {
        console.printLine(::toJson(*request));
    } else {
        console.print("{}\n", toLine(*request));
    }
}

// The store's own error doesn't tell which request it misses.
Stream<RequestPointer> streamOf(const std::string& id) {
    try {
        return CorvantaSdkVideo->streamRequest(parsedId(id));
    } catch (const CoreDataCorvantaStoreError& error) {
        if (error.kind() != CoreDataCorvantaStoreError::uploadNotFound) {
            throw;
        }
        throw Refusal(error.what(), "there is no such request: " + id);
    }
}

void watch(Console& console, const std::string& id) {
    const auto print = [&console](const auto& value) { printEmission(console, value); };
    keepUntilInterrupt([&] {
        return id.empty() ? CorvantaSdkVideo->streamRequests().subscribe(print)
                          : streamOf(id).subscribe(print);
    });
}

void process(Console& console, const std::string& id, bool force) {
    RequestPointer stored;
    const Subscription subscription = streamOf(id).subscribe(
        [&stored](const RequestPointer& request) { stored = stored ? stored : request; });
    if (!stored) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::operationNotFound);
    }
    const auto output = stored->outputPath();
    const std::string path = output ? output->path() : "";
    // Else the module refuses, and the file is what the request has written or writes.
    if (stored->status != Status::complete && stored->status != Status::processing) {
        requireFree(path, force);
    }
    runRequest(console, stored, path);
}

// One after the other; a failure is told in its place, and the others go on.
void processAll(Console& console, const std::vector<std::string>& ids, bool force) {
    for (const std::string& id : ids) {
        parsedId(id);
    }
    bool haveAllSucceeded = true;
    for (const std::string& id : ids) {
        console.setRequest(id);
        try {
            process(console, id, force);
        } catch (const Cancelled&) {
            throw;
        } catch (const std::exception& error) {
            console.fail(error);
            haveAllSucceeded = false;
        }
    }
    if (!haveAllSucceeded) {
        throw SomeFailed();
    }
}

} // namespace

void addRequestsCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("requests", "List the stored requests, or delete some");
    const auto selection = std::make_shared<Selection>();
    const auto isDeletion = std::make_shared<bool>(false);
    std::vector<std::string> names;
    names.reserve(std::size(allStatuses));
    for (const Status known : allStatuses) {
        names.emplace_back(name(known));
    }
    command->add_option("ID", selection->ids, "Only those of these ids");
    command->add_option("--status", selection->statusName, "Only those of one status")
        ->check(CLI::IsMember(names));
    command->add_flag("--finished", selection->onlyFinished,
                      "Only those that are complete, cancelled or failed");
    command->add_flag("--delete", *isDeletion, "Delete them, and print what they were; their files stay");
    command->callback([&chosen, selection, isDeletion] {
        chosen = [selection, isDeletion](Console& console) {
            if (*isDeletion) {
                deleteRequests(console, *selection);
            } else {
                printRequests(console, requestsWith(*selection));
            }
        };
    });
}

void addWatchCommand(CLI::App& app, Command& chosen) {
    auto* command =
        app.add_subcommand("watch", "Print the stored requests, or one, at each change until Ctrl-C");
    const auto id = std::make_shared<std::string>();
    command->add_option("ID", *id, "A request's id");
    command->callback([&chosen, id] { chosen = [id](Console& console) { watch(console, *id); }; });
}

void addProcessCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("process", "Run stored requests, one after the other");
    const auto ids = std::make_shared<std::vector<std::string>>();
    const auto force = std::make_shared<bool>(false);
    command->add_option("ID", *ids, "The requests' ids; where one fails, the next ones are run all the same")
        ->required();
    command->add_flag("--force", *force, "Write over a file that is there already");
    command->callback([&chosen, ids, force] {
        chosen = [ids, force](Console& console) { processAll(console, *ids, *force); };
    });
}
