#include "module/fatal_error.hpp"

#include <platform/Errors.hpp>

void corvanta::fatalError(const char*) { throw module_fuzz::Stopped{}; }
