#include "Commands.hpp"
#include "DataFolder.hpp"
#include "Failures.hpp"
#include "Output.hpp"
#include "RequestRun.hpp"
#include "Run.hpp"
#include "SeveralJobs.hpp"
#include "Words.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <atomic>
#include <iostream>
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
    std::string lines;
    for (const RequestPointer& request : requests) {
        lines += toLine(*request) + '\n';
    }
    console.result(toJson(requests), lines);
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
    std::string line = std::to_string(requests.size()) + " requests";
    const char* separator = ": ";
    for (const RequestPointer& request : requests) {
        line += fmt::format("{}{} {} {}", std::exchange(separator, ", "), uuidString(request->id),
                            name(request->type), name(request->status));
    }
    console.emission(toJson(requests), line);
}

void printEmission(Console& console, const RequestPointer& request) {
    console.emission(::toJson(*request), toLine(*request));
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
    DataFolder::requireLasting();
    std::atomic<bool> isTold = false;
    const auto print = [&](const auto& value) {
        isTold = true;
        printEmission(console, value);
    };
    keepUntilInterrupt([&] {
        if (!id.empty()) {
            return streamOf(id).subscribe(print);
        }
        auto subscription = CorvantaSdkVideo->streamRequests().subscribe(print);
        // Of an empty store nothing is heard before it changes.
        if (!isTold) {
            print(std::vector<RequestPointer>{});
        }
        return subscription;
    });
}

void process(Console& console, const std::string& id, Overwriting overwriting) {
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
        requireFree(path, overwriting);
    }
    runRequest(console, stored, path);
}

// The ids of a list as `requests --json` prints it, of requests or of ids.
std::vector<std::string> idsFrom(std::istream& input) {
    const auto listed = nlohmann::json::parse(input, nullptr, false);
    std::vector<std::string> ids;
    for (const auto& entry : listed.is_array() ? listed : nlohmann::json::array({listed})) {
        const auto& id = entry.is_object() ? entry.value("id", nlohmann::json()) : entry;
        if (!id.is_string()) {
            throw UsageError("standard input holds no list of requests as `requests --json` prints it");
        }
        ids.push_back(id);
    }
    return ids;
}

void processAll(Console& console, std::vector<std::string> ids, Overwriting overwriting) {
    if (ids == std::vector<std::string>{"-"}) {
        ids = idsFrom(std::cin);
    }
    for (const std::string& id : ids) {
        parsedId(id);
    }
    DataFolder::requireLasting();
    runEach(console, ids.size(), [&](std::size_t number) {
        console.setRequest(ids[number]);
        process(console, ids[number], overwriting);
    });
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
    command->add_option("ID", selection->ids, "Only those of these ids")->type_name("ID");
    command->add_option("--status", selection->statusName, "Only those of one status")->check(oneOf(names));
    command->add_flag("--finished", selection->onlyFinished,
                      "Only those that are complete, cancelled or failed");
    command->add_flag("--delete", *isDeletion, "Delete them, and print what they were; their files stay");
    command->callback([&chosen, selection, isDeletion] {
        chosen = [selection, isDeletion](Console& console) {
            DataFolder::requireLasting();
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
    command->add_option("ID", *id, "A request's id")->type_name("ID");
    command->callback([&chosen, id] { chosen = [id](Console& console) { watch(console, *id); }; });
}

void addProcessCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("process", "Run stored requests, one after the other");
    const auto ids = std::make_shared<std::vector<std::string>>();
    command
        ->add_option(
            "ID", *ids,
            "The requests' ids; where one fails, the next ones are run all the same. \"-\" reads them "
            "from standard input, as `requests --json` prints them")
        ->required()
        ->type_name("ID");
    const OverwritingOptions overwriting(*command);
    command->callback([&chosen, ids, overwriting] {
        chosen = [ids, overwriting](Console& console) { processAll(console, *ids, overwriting.chosen()); };
    });
}
