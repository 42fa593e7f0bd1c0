#include "Checkup.hpp"
#include "Commands.hpp"
#include "Failures.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace {

constexpr std::array stateNames{"ok", "limited", "missing"};

void examine(Console& console) {
    const std::vector<Finding> findings = checkup();
    const bool isWhole =
        std::ranges::find(findings, Finding::State::missing, &Finding::state) == findings.end();
    auto checks = nlohmann::ordered_json::array();
    std::string lines;
    for (const Finding& finding : findings) {
        const char* state = stateNames.at(static_cast<std::size_t>(finding.state));
        nlohmann::ordered_json check{{"name", finding.name}, {"state", state}, {"told", finding.told}};
        if (finding.path) {
            check["path"] = *finding.path;
        }
        if (finding.freeBytes) {
            check["freeBytes"] = *finding.freeBytes;
        }
        checks.push_back(check);
        const std::string place = !finding.path          ? ""
                                  : finding.told.empty() ? *finding.path
                                                         : ", " + *finding.path;
        lines += fmt::format("{:<8}{:<11}{}{}\n", state, finding.name, finding.told, place);
    }
    console.result({{"works", isWhole}, {"checks", checks}}, lines);
    if (!isWhole) {
        console.note("corvanta_host: something that is needed is missing");
        throw Told(exitStatus::failed);
    }
}

} // namespace

void addDoctorCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("doctor", "Tell whether all that is needed is there: ffmpeg and its "
                                                 "parts, folders and their free space, store, noise model");
    command->callback([&chosen] { chosen = examine; });
}
