#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

namespace corvanta {

/// The frame rates that the module writes. A drop-frame rate counts as its round neighbour.
class CorvantaSdkVideoFrameRate {
  public:
    enum Value { twentyFourFps, twentyFiveFps, thirtyFps, fiftyFps, sixtyFps, unknown };

    constexpr CorvantaSdkVideoFrameRate(Value value) : value_(value) {}

    /// From "24", "25", "30", "50", "60" or "0" (`unknown`); nothing for any other text.
    static std::optional<CorvantaSdkVideoFrameRate> fromRawValue(std::string_view rawValue);

    /// From a probe's rational rate, such as "30000/1001"; `unknown` for all but the ten exact texts.
    static CorvantaSdkVideoFrameRate getValue(std::string_view from);

    std::string_view rawValue() const;

    constexpr operator Value() const { return value_; }

  private:
    Value value_;
};

} // namespace corvanta

template <>
struct std::hash<corvanta::CorvantaSdkVideoFrameRate> {
    std::size_t operator()(corvanta::CorvantaSdkVideoFrameRate rate) const noexcept {
        return std::hash<corvanta::CorvantaSdkVideoFrameRate::Value>{}(rate);
    }
};
