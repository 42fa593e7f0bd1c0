#pragma once

#include "utils/any_map.hpp"
#include "weights/weight.hpp"

#include <memory>
#include <utility>
#include <vector>

namespace TALVO::WEIGHTS {

/// A weight file and its environment: the settings of the control file as strings, and what all
/// sessions of the model share. The environment is touched only under the library's mutex.
using Model = std::pair<std::shared_ptr<Weight>, CONTAINERS::AnyMap>;
using ModelPtr = std::shared_ptr<Model>;

} // namespace TALVO::WEIGHTS
