#include <CorvantaSdkVideo/Shared/FFMPEGCommands/KeptTags.hpp>

#include <platform/AssetReader.hpp>
#include <platform/Errors.hpp>

#include <algorithm>
#include <array>

namespace corvanta {

namespace {

bool hasApplicationTags(const URL& file) {
    try {
        return AssetReader(file).hasApplicationTags();
    } catch (const PlatformError&) {
        return false;
    }
}

} // namespace

bool isMP4Family(std::string_view output) {
    return std::ranges::any_of(std::to_array<std::string_view>({".mp4", ".m4v", ".mov", ".m4a"}),
                               [&](std::string_view extension) { return output.ends_with(extension); });
}

std::string applicationTagOptions() {
    // The container's own words are written as tags too then, and would contradict it.
    return " -movflags +use_metadata_tags -metadata major_brand= -metadata minor_version= -metadata "
           "compatible_brands=";
}

std::string keptTags(const URL& first, int input, std::string_view output) {
    const std::string options = " -map_metadata " + std::to_string(input);
    return isMP4Family(output) && hasApplicationTags(first) ? options + applicationTagOptions() : options;
}

} // namespace corvanta
