#pragma once

#include <boost/functional/hash.hpp>
#include <boost/uuid/uuid.hpp>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace corvanta {

/// A 128-bit identity (RFC 9562).
using UUID = boost::uuids::uuid;

/// A new random (version 4) identity. Safe from any thread.
UUID makeUUID();

/// 36 characters, lower case.
std::string uuidString(const UUID& id);

/// Reads the 36-character form, in either case. Gives nothing for any other text.
std::optional<UUID> parseUUID(std::string_view text);

struct UUIDHash {
    std::size_t operator()(const UUID& id) const noexcept { return boost::uuids::hash_value(id); }
};

} // namespace corvanta
