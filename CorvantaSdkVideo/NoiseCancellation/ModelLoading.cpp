#include <CorvantaSdkVideo/NoiseCancellation/ModelLoading.hpp>

#include <CorvantaSdkVideo/NoiseCancellation/CorvantaNoiseProcessor.hpp>
#include <CorvantaSdkVideo/NoiseCancellation/SoundCleaning.hpp>
#include <platform/Bundle.hpp>

namespace corvanta {

void ModelLoading::load() {
    const std::scoped_lock lock(mutex_);
    if (!stopped_ && !loaded_ && !Bundle::resourceDirectory().empty()) {
        loaded_ = CorvantaNoiseProcessor::loadModel(SoundCleaning::modelFileName);
    }
}

void ModelLoading::stop() {
    const std::scoped_lock lock(mutex_);
    stopped_ = true;
}

bool ModelLoading::isLoaded() const {
    const std::scoped_lock lock(mutex_);
    return loaded_;
}

} // namespace corvanta
