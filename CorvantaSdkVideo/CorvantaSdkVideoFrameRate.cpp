#include <CorvantaSdkVideo/CorvantaSdkVideoFrameRate.hpp>

#include <algorithm>
#include <array>

namespace corvanta {

namespace {

struct Rate {
    CorvantaSdkVideoFrameRate::Value value;
    std::string_view rawValue;
    std::string_view exact;
    std::string_view dropFrame;
};

constexpr auto rates = std::to_array<Rate>({
    {CorvantaSdkVideoFrameRate::twentyFourFps, "24", "24/1", "24000/1001"},
    {CorvantaSdkVideoFrameRate::twentyFiveFps, "25", "25/1", "25000/1001"},
    {CorvantaSdkVideoFrameRate::thirtyFps, "30", "30/1", "30000/1001"},
    {CorvantaSdkVideoFrameRate::fiftyFps, "50", "50/1", "50000/1001"},
    {CorvantaSdkVideoFrameRate::sixtyFps, "60", "60/1", "60000/1001"},
    {CorvantaSdkVideoFrameRate::unknown, "0", {}, {}},
});

} // namespace

std::optional<CorvantaSdkVideoFrameRate> CorvantaSdkVideoFrameRate::fromRawValue(std::string_view rawValue) {
    const auto found = std::ranges::find(rates, rawValue, &Rate::rawValue);
    return found != rates.end() ? std::optional<CorvantaSdkVideoFrameRate>(found->value) : std::nullopt;
}

CorvantaSdkVideoFrameRate CorvantaSdkVideoFrameRate::getValue(std::string_view from) {
    const auto found = std::ranges::find_if(rates, [from](const Rate& rate) {
        return !from.empty() && (from == rate.exact || from == rate.dropFrame);
    });
    return found != rates.end() ? found->value : unknown;
}

std::string_view CorvantaSdkVideoFrameRate::rawValue() const {
    return std::ranges::find(rates, value_, &Rate::value)->rawValue;
}

} // namespace corvanta
