#include <CorvantaSdkVideo/Shared/FFMPEGCommands/LogTail.hpp>

#include <algorithm>
#include <array>

namespace corvanta {

namespace {

constexpr std::size_t keptLines = 4;
constexpr std::size_t longestLine = 300;

// Blocks that describe streams are indented below their first lines.
constexpr auto descriptions = std::to_array<std::string_view>(
    {" ", "Input #", "Output #", "Stream mapping:", "frame=", "size=", "video:", "Press [q]",
     "Exiting normally"});

// "[mp4 @ 0x55d0c8]" tells people no more than "[mp4]".
std::string withoutAddress(std::string_view line) {
    std::string text(line.substr(0, longestLine));
    const std::size_t address = text.find(" @ 0x");
    const std::size_t end = text.find(']');
    if (text.starts_with('[') && address < end && end != std::string::npos) {
        text.erase(address, end - address);
    }
    return text;
}

} // namespace

void LogTail::add(std::string_view line) {
    if (line.empty() || std::ranges::any_of(descriptions, [line](std::string_view description) {
            return line.starts_with(description);
        })) {
        return;
    }
    std::string text = withoutAddress(line);
    if (std::ranges::find(lines_, text) != lines_.end()) {
        return;
    }
    if (lines_.size() == keptLines) {
        lines_.pop_front();
    }
    lines_.push_back(std::move(text));
}

std::string LogTail::text() const {
    std::string text;
    for (const std::string& line : lines_) {
        text += (text.empty() ? "" : "; ") + line;
    }
    return text;
}

} // namespace corvanta
