#include <CorvantaSdkVideo/Logger/Logger.hpp>

#include <platform/Bundle.hpp>
#include <platform/NeverDestroyed.hpp>
#include <platform/SharedCorvantaSdkCommon.hpp>

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>

#include <fstream>
#include <iterator>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace corvanta {

namespace {

std::vector<std::string> split(const std::string& text, const char* separators) {
    std::vector<std::string> parts;
    boost::split(parts, text, boost::is_any_of(separators));
    return parts;
}

std::optional<std::string> readVersion() {
    const auto path = Bundle::pathForResource("version", "properties");
    if (!path) {
        return std::nullopt;
    }
    std::string text;
    try {
        std::ifstream file(*path, std::ios::binary);
        text.assign(std::istreambuf_iterator<char>(file), {});
    } catch (const std::ios_base::failure&) {
        // A folder of that name can be opened and not read.
    }
    for (const std::string& line : split(text, "\r\n")) {
        const std::vector<std::string> parts = split(line, "=");
        if (parts.size() == 2 && parts[0] == "version") {
            return parts[1];
        }
    }
    return std::nullopt;
}

// A version that could not be read is looked for again at the next record.
std::string moduleVersion() {
    static std::mutex mutex;
    static NeverDestroyed<std::optional<std::string>> savedModuleVersion;
    const std::lock_guard lock(mutex);
    if (!*savedModuleVersion) {
        *savedModuleVersion = readVersion();
    }
    return (*savedModuleVersion).value_or("unknown");
}

void add(SharedCorvantaSdkLogSeverity severity, Event event, const EventMessage& eventMessage) noexcept {
    try {
        const SharedCorvantaSdkLog record{
            std::string(name(event)),          eventMessage.message(), severity,
            SharedCorvantaSdkLogModule::video, moduleVersion(),        eventMessage.details()};
        SharedCorvantaSdkCommonKt::sdk_common().log()->addLog(record);
    } catch (...) {
        // A record that can't be written must not fail the operation that it tells of.
    }
}

} // namespace

void Logger::addLog(Event event, const EventMessage& eventMessage) noexcept {
    add(SharedCorvantaSdkLogSeverity::info, event, eventMessage);
}

void Logger::logError(Event event, const EventMessage& eventMessage) noexcept {
    add(SharedCorvantaSdkLogSeverity::error, event, eventMessage);
}

} // namespace corvanta
