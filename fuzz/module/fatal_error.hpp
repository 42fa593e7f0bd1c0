#pragma once

namespace module_fuzz {

/// Thrown in these targets where the module would end the process, as it promises for what no file can state.
struct Stopped {};

} // namespace module_fuzz
