#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <CorvantaSdkVideo/CorvantaSdkVideoInterfaceImp.hpp>
#include <platform/NeverDestroyed.hpp>

namespace corvanta {

CorvantaSdkVideoInterface* CorvantaSdkVideoEntry::operator->() const {
    static NeverDestroyed<CorvantaSdkVideoInterfaceImp> module;
    return &*module;
}

} // namespace corvanta
