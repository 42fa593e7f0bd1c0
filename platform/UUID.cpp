#include <platform/UUID.hpp>

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <stdexcept>

namespace corvanta {

UUID makeUUID() {
    thread_local boost::uuids::random_generator generator;
    return generator();
}

std::string uuidString(const UUID& id) { return boost::uuids::to_string(id); }

std::optional<UUID> parseUUID(std::string_view text) {
    // The string generator also takes forms with braces and without dashes.
    if (text.size() != 36 || text[8] != '-') {
        return std::nullopt;
    }
    try {
        return boost::uuids::string_generator{}(text.begin(), text.end());
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

} // namespace corvanta
