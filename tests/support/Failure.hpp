#pragma once

#include <exception>
#include <string>

namespace corvanta::test {

/// The text of the error that a call throws, or "".
template <typename Call>
std::string failureOf(Call call) {
    try {
        call();
        return "";
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace corvanta::test
