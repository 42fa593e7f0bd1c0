#pragma once

#include <CorvantaSdkVideo/Store/LocalVideoRequest.hpp>

#include <functional>
#include <optional>
#include <string>
#include <unordered_set>

namespace corvanta {

/// A partial update of a stored request. A field that doesn't stand in the set is left as it is; one that
/// stands there with an absent value is erased.
struct UpdateRequestData {
    /// One attribute with its new value.
    class Field {
      public:
        /// The numbers go into the hash.
        enum class Case { error = 0, status = 1, processId = 2 };

        static Field error(std::optional<std::string> value);
        static Field status(LocalVideoRequest::Status value);
        static Field processId(std::optional<std::string> value);

        Case kind() const { return kind_; }
        /// The value of `error` and `processId`.
        const std::optional<std::string>& text() const { return text_; }
        /// The value of `status`.
        LocalVideoRequest::Status newStatus() const { return newStatus_; }

        friend bool operator==(const Field&, const Field&) = default;

      private:
        explicit Field(Case kind) : kind_(kind) {}

        Case kind_;
        std::optional<std::string> text_;
        LocalVideoRequest::Status newStatus_{};
    };

    struct FieldHash {
        std::size_t operator()(const Field& field) const noexcept;
    };

    /// Two fields of one case can stand here; which of them wins is not defined.
    std::unordered_set<Field, FieldHash> fields;

    friend bool operator==(const UpdateRequestData&, const UpdateRequestData&) = default;
};

} // namespace corvanta

template <>
struct std::hash<corvanta::UpdateRequestData::Field> : corvanta::UpdateRequestData::FieldHash {};

template <>
struct std::hash<corvanta::UpdateRequestData> {
    std::size_t operator()(const corvanta::UpdateRequestData& data) const noexcept;
};
