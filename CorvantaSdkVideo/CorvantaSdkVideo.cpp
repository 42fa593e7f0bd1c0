#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <CorvantaSdkVideo/CorvantaSdkVideoInterfaceImp.hpp>

namespace corvanta {

CorvantaSdkVideoInterface* CorvantaSdkVideoEntry::operator->() const {
    static CorvantaSdkVideoInterfaceImp module;
    return &module;
}

} // namespace corvanta
