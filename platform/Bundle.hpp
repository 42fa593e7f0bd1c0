#pragma once

#include <optional>
#include <string>

namespace corvanta::Bundle {

/// The path of a resource of the module, "name.type", or just "name" if the type is empty: in
/// $CORVANTA_RESOURCES if that is set, else in ../share/corvanta-sdk-video beside the loaded library,
/// wherever that lies. Nothing if there is no such file.
std::optional<std::string> pathForResource(const std::string& name, const std::string& type);

/// The directory in which resources are looked for; empty if there is none.
std::string resourceDirectory();

} // namespace corvanta::Bundle
