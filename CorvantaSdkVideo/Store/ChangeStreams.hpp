#pragma once

#include <CorvantaSdkVideo/Store/LocalVideoRequest.hpp>
#include <CorvantaSdkVideo/Store/WorkingContext.hpp>
#include <platform/Stream.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace corvanta {

/// The change streams of a store, made of its commit notices and a way to read it. The reads run within the
/// scope. A subscription takes place within the scope too, so that no commit comes between its first value
/// and the first change: values are never delivered out of order.

using ReadList = std::function<std::vector<LocalVideoRequest>()>;
using ReadRow = std::function<std::optional<LocalVideoRequest>()>;

/// The list as it is now, unless it is empty; then, after each commit, the list if it differs from the last.
Stream<std::vector<LocalVideoRequest>> streamList(std::shared_ptr<WorkingContext> context, ReadList read);

/// The row at subscription and after each commit that updated it, whenever it can be read; after a commit of
/// another process, if it reads otherwise than before.
Stream<LocalVideoRequest> streamRow(std::shared_ptr<WorkingContext> context, RowKey key, ReadRow read);

} // namespace corvanta
