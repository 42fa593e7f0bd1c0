#pragma once

#include <CorvantaSdkVideo/Store/CoreData/ManagedVideoRequest.hpp>
#include <CorvantaSdkVideo/Store/LocalVideoRequest.hpp>

#include <optional>
#include <vector>

namespace corvanta {

/// The record of a row, its bookmarks resolved. Nothing if the row's status or type is unknown, or if its id
/// or one of its paths can't be read as such. Needs no scope.
std::optional<LocalVideoRequest> makeRecord(std::optional<ManagedVideoRequest> row);

/// The records of those rows that have one.
std::vector<LocalVideoRequest> makeRecords(std::vector<ManagedVideoRequest> rows);

} // namespace corvanta
