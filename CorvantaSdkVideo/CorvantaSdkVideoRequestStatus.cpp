#include <CorvantaSdkVideo/CorvantaSdkVideoRequestStatus.hpp>

#include <array>
#include <cstddef>

namespace corvanta {

std::string_view name(CorvantaSdkVideoRequestStatus status) {
    static constexpr auto names =
        std::to_array<std::string_view>({"processing", "error", "cancelled", "complete", "idle"});
    return names.at(static_cast<std::size_t>(status));
}

} // namespace corvanta
