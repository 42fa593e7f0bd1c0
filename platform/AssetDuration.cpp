#include <platform/AssetDuration.hpp>

#include <platform/Aside.hpp>
#include <platform/AssetReader.hpp>

#include <functional>
#include <memory>
#include <stop_token>
#include <utility>

namespace corvanta {

Task<double> assetDuration(URL url) {
    const auto seconds = std::make_shared<double>(0);
    std::function<void(std::stop_token)> read = [seconds, url = std::move(url)](std::stop_token stop) {
        *seconds = AssetReader(url, std::move(stop)).duration();
    };
    co_await runAside(std::move(read));
    co_return *seconds;
}

} // namespace corvanta
