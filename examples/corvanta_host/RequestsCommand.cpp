#include "Commands.hpp"
#include "RequestRun.hpp"
#include "Run.hpp"

#include <nlohmann/json.hpp>

#include <memory>
#include <stdexcept>
#include <utility>

using namespace corvanta;

namespace {

using Status = CorvantaSdkVideoRequest::Status;

constexpr std::array allStatuses = {Status::processing, Status::error, Status::cancelled, Status::complete,
                                    Status::idle};

std::vector<RequestPointer> requestsWith(const std::string& statusName) {
    std::vector<RequestPointer> requests;
    for (const Status status : allStatuses) {
        if (statusName.empty() || statusName == name(status)) {
            for (RequestPointer& request : CorvantaSdkVideo->getRequests(status)) {
                requests.push_back(std::move(request));
            }
        }
    }
    return requests;
}

nlohmann::ordered_json toJson(const std::vector<RequestPointer>& requests) {
    auto list = nlohmann::ordered_json::array();
    for (const RequestPointer& request : requests) {
        list.push_back(::toJson(*request));
    }
    return list;
}

void listRequests(Console& console, const std::string& statusName) {
    const auto requests = requestsWith(statusName);
    if (console.json()) {
        console.print(toJson(requests));
        return;
    }
    for (const RequestPointer& request : requests) {
        console.print("{}\n", toLine(*request));
    }
}

UUID parsedId(const std::string& text) {
    if (const auto id = parseUUID(text)) {
        return *id;
    }
    throw std::invalid_argument("\"" + text + "\" is no request id");
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

// Emissions come from this process's own changes: the store serves one process at a time.
void watch(Console& console, const std::string& id) {
    const auto print = [&console](const auto& value) { printEmission(console, value); };
    const Subscription subscription = id.empty()
                                          ? CorvantaSdkVideo->streamRequests().subscribe(print)
                                          : CorvantaSdkVideo->streamRequest(parsedId(id)).subscribe(print);
    waitForInterrupt();
}

void process(Console& console, const std::string& id) {
    RequestPointer stored;
    const Subscription subscription =
        CorvantaSdkVideo->streamRequest(parsedId(id)).subscribe([&stored](const RequestPointer& request) {
            stored = stored ? stored : request;
        });
    if (!stored) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::operationNotFound);
    }
    runRequest(console, stored);
}

} // namespace

void addRequestsCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("requests", "List the stored requests");
    const auto status = std::make_shared<std::string>();
    std::vector<std::string> names;
    names.reserve(std::size(allStatuses));
    for (const Status known : allStatuses) {
        names.emplace_back(name(known));
    }
    command->add_option("--status", *status, "Only those of one status")->check(CLI::IsMember(names));
    command->callback(
        [&chosen, status] { chosen = [status](Console& console) { listRequests(console, *status); }; });
}

void addWatchCommand(CLI::App& app, Command& chosen) {
    auto* command =
        app.add_subcommand("watch", "Print the stored requests, or one, at each change until Ctrl-C");
    const auto id = std::make_shared<std::string>();
    command->add_option("ID", *id, "A request's id");
    command->callback([&chosen, id] { chosen = [id](Console& console) { watch(console, *id); }; });
}

void addProcessCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("process", "Run a stored request");
    const auto id = std::make_shared<std::string>();
    command->add_option("ID", *id, "The request's id")->required();
    command->callback([&chosen, id] { chosen = [id](Console& console) { process(console, *id); }; });
}
