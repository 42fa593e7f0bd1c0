#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>

namespace corvanta {

const char* CoreDataCorvantaStore::Error::what() const noexcept {
    switch (case_) {
    case modelNotFound:
        return "modelNotFound";
    case failedToLoadPersistentContainer:
        return "failedToLoadPersistentContainer";
    case generic:
        return "generic";
    case uploadNotFound:
        break;
    }
    return "uploadNotFound";
}

} // namespace corvanta
