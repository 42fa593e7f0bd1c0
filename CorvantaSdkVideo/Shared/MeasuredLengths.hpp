#pragma once

#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>
#include <platform/Task.hpp>

#include <vector>

namespace corvanta {

/// Gives tracks that state no length theirs, as Matroska's: nothing is put behind them then that they don't
/// lack. A file with such tracks is as long as its longest one. Throws PlatformError.
Task<std::vector<CorvantaSdkVideoInformation>>
withMeasuredLengths(std::vector<CorvantaSdkVideoInformation> information);

} // namespace corvanta
