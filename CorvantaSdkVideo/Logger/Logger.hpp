#pragma once

#include <CorvantaSdkVideo/Logger/Event.hpp>
#include <CorvantaSdkVideo/Logger/EventMessage.hpp>

namespace corvanta {

/// Hands records to the common library's log, with the module's tag and version. Never fails and never
/// changes control flow: what a log sink throws is dropped. Safe from any thread.
class Logger {
  public:
    static void addLog(Event event, const EventMessage& eventMessage) noexcept;
    static void logError(Event event, const EventMessage& eventMessage) noexcept;
};

} // namespace corvanta
