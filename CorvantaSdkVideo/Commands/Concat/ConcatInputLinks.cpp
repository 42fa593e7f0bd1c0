#include <CorvantaSdkVideo/Commands/Concat/ConcatInputLinks.hpp>

#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <platform/UUID.hpp>

#include <filesystem>
#include <string_view>
#include <utility>

namespace corvanta {

bool isBarePath(const std::string& path) {
    constexpr std::string_view special(" \t\r\n'\"\\\0", 8);
    return path.find_first_of(special) == std::string::npos;
}

ConcatInputLinks::ConcatInputLinks(std::vector<CorvantaSdkVideoInformation> inputs)
    : inputs_(std::move(inputs)) {
    try {
        for (CorvantaSdkVideoInformation& input : inputs_) {
            const std::string path = input.url.path();
            if (isBarePath(path)) {
                continue;
            }
            const URL link = CorvantaSdkVideoUtils::outputURL(uuidString(makeUUID()), "link");
            std::filesystem::create_symlink(std::filesystem::absolute(path), link.path());
            links_.push_back(link.path());
            input.url = link;
            input.path = link.absoluteString();
        }
    } catch (...) {
        removeLinks();
        throw;
    }
}

ConcatInputLinks::~ConcatInputLinks() { removeLinks(); }

void ConcatInputLinks::removeLinks() noexcept {
    for (const std::string& link : links_) {
        std::error_code ignored;
        std::filesystem::remove(link, ignored);
    }
}

} // namespace corvanta
