#include "utils/serializer.hpp"

#include <bit>

namespace TALVO::UTILS {

static_assert(std::endian::native == std::endian::little, "weight files are read as they lie in memory");

template <class T>
void Serializer::readPlain(T& value) {
    static_assert(sizeof(T) == 4);
    checkMode();
    in_.read(reinterpret_cast<char*>(&value), sizeof value);
}

bool Serializer::holds(std::uint64_t count, std::uint64_t itemSize) {
    if (!in_.good())
        return false;
    auto const position = in_.tellg();
    std::uint64_t const at = position < 0 ? size_ : static_cast<std::uint64_t>(position);
    if (at <= size_ && count <= (size_ - at) / itemSize)
        return true;
    in_.setstate(std::ios_base::eofbit | std::ios_base::failbit);
    return false;
}

void Serializer::readFloats(std::vector<float>& values, std::uint64_t count) {
    if (!holds(count, sizeof(float)))
        return;
    values.resize(count);
    in_.read(reinterpret_cast<char*>(values.data()), static_cast<std::streamsize>(count * sizeof(float)));
}

template <class T>
void Serializer::readList(std::vector<T>& list, std::uint64_t smallestItem) {
    std::uint32_t count = 0;
    readPlain(count);
    if (!holds(count, smallestItem))
        return;
    // Grown item by item: an item takes more room in memory than its smallest form in the file.
    for (list.clear(); list.size() < count && in_.good();) {
        T item;
        *this >> item;
        list.push_back(std::move(item));
    }
}

Serializer& Serializer::operator>>(int& value) {
    readPlain(value);
    return *this;
}

Serializer& Serializer::operator>>(float& value) {
    readPlain(value);
    return *this;
}

Serializer& Serializer::operator>>(std::string& value) {
    std::uint32_t length = 0;
    readPlain(length);
    if (holds(length, 1)) {
        value.resize(length);
        in_.read(value.data(), length);
    }
    return *this;
}

Serializer& Serializer::operator>>(std::vector<float>& value) {
    std::uint32_t count = 0;
    readPlain(count);
    readFloats(value, count);
    return *this;
}

Serializer& Serializer::operator>>(CONTAINERS::Matrix& value) {
    std::uint32_t rows = 0;
    std::uint32_t cols = 0;
    readPlain(rows);
    readPlain(cols);
    if ((rows == 0) != (cols == 0))
        in_.setstate(std::ios_base::failbit); // a shape that no matrix can have
    std::vector<float> values;
    readFloats(values, std::uint64_t{rows} * cols);
    if (in_.good()) {
        value.resize(rows, cols, std::move(values));
        value.keepBfloat16(); // the weights of a network that was rounded stay in the inner caches
    }
    return *this;
}

Serializer& Serializer::operator>>(std::vector<std::vector<float>>& value) {
    readList(value, sizeof(std::uint32_t));
    return *this;
}

Serializer& Serializer::operator>>(std::vector<CONTAINERS::Matrix>& value) {
    readList(value, 2 * sizeof(std::uint32_t));
    return *this;
}

} // namespace TALVO::UTILS
