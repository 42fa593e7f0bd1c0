#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStoreError.hpp>

namespace corvanta {

const char* CoreDataCorvantaStoreError::what() const noexcept {
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
