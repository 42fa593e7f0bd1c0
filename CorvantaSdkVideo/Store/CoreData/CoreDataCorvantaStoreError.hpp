#pragma once

#include <platform/Errors.hpp>

#include <string>

namespace corvanta {

/// The store's own errors; also known as `CoreDataCorvantaStore::Error`.
class CoreDataCorvantaStoreError : public CodedError {
  public:
    enum class Case {
        /// Opening: the data model could not be read. The model is part of this library, so nothing raises
        /// it.
        modelNotFound = 0,
        /// Opening: the file could not be opened, or is not of this store's form. The log tells why.
        failedToLoadPersistentContainer = 1,
        /// Reserved: nothing raises it.
        generic = 2,
        /// `streamRequest`, `streamVideo`: no row has this id.
        uploadNotFound = 3,
    };
    using enum Case;

    explicit CoreDataCorvantaStoreError(Case kind) : case_(kind) {}

    Case kind() const { return case_; }

    std::string domain() const override { return "CoreDataCorvantaStore.Error"; }
    int code() const override { return static_cast<int>(case_); }
    /// The name of the case.
    const char* what() const noexcept override;

    friend bool operator==(const CoreDataCorvantaStoreError& left, const CoreDataCorvantaStoreError& right) {
        return left.case_ == right.case_;
    }

  private:
    Case case_;
};

} // namespace corvanta
