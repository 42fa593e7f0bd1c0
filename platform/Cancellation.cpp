#include <platform/Cancellation.hpp>

#include <boost/asio/error.hpp>
#include <boost/system/system_error.hpp>

namespace corvanta {

namespace asio = boost::asio;

void throwIfCancelled(const asio::cancellation_state& state) {
    if (state.cancelled() != asio::cancellation_type::none) {
        throw boost::system::system_error(asio::error::operation_aborted);
    }
}

bool isCancellation(const std::exception& error) {
    const auto* const system = dynamic_cast<const boost::system::system_error*>(&error);
    return system != nullptr && system->code() == asio::error::operation_aborted;
}

} // namespace corvanta
