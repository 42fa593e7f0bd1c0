#include <CorvantaSdkVideo/Store/UpdateRequestData.hpp>

#include <boost/container_hash/hash.hpp>

#include <utility>

namespace corvanta {

UpdateRequestData::Field UpdateRequestData::Field::error(std::optional<std::string> value) {
    Field field(Case::error);
    field.text_ = std::move(value);
    return field;
}

UpdateRequestData::Field UpdateRequestData::Field::status(LocalVideoRequest::Status value) {
    Field field(Case::status);
    field.newStatus_ = value;
    return field;
}

UpdateRequestData::Field UpdateRequestData::Field::processId(std::optional<std::string> value) {
    Field field(Case::processId);
    field.text_ = std::move(value);
    return field;
}

std::size_t UpdateRequestData::FieldHash::operator()(const Field& field) const noexcept {
    std::size_t seed = 0;
    boost::hash_combine(seed, static_cast<int>(field.kind()));
    if (field.kind() == Field::Case::status) {
        boost::hash_combine(seed, static_cast<int>(field.newStatus()));
    } else {
        boost::hash_combine(seed, std::hash<std::optional<std::string>>{}(field.text()));
    }
    return seed;
}

} // namespace corvanta

std::size_t
std::hash<corvanta::UpdateRequestData>::operator()(const corvanta::UpdateRequestData& data) const noexcept {
    // A sum, since equal sets may iterate in different orders.
    std::size_t sum = 0;
    for (const auto& field : data.fields) {
        sum += corvanta::UpdateRequestData::FieldHash{}(field);
    }
    return sum;
}
