#pragma once

#include "utils/matrix.hpp"

#include <cstdint>
#include <istream>
#include <string>
#include <vector>

namespace TALVO::UTILS {

/// Reads the values of a record stream. A length that exceeds what is left of the stream is a short
/// read: the stream is at its end then, and nothing is allocated for it.
class Serializer {
  public:
    Serializer(Serializer const&) = delete;
    Serializer& operator=(Serializer const&) = delete;
    virtual ~Serializer() = default;

    Serializer& operator>>(int& value);
    Serializer& operator>>(float& value);
    Serializer& operator>>(std::string& value);
    Serializer& operator>>(std::vector<float>& value);
    Serializer& operator>>(CONTAINERS::Matrix& value);
    Serializer& operator>>(std::vector<std::vector<float>>& value);
    Serializer& operator>>(std::vector<CONTAINERS::Matrix>& value);

    bool good() const { return in_.good(); }
    bool eof() const { return in_.eof(); }
    /// Whether the last read succeeded.
    explicit operator bool() const { return !in_.fail(); }

  protected:
    explicit Serializer(std::istream& in) : in_(in) {}

    /// The bytes there are in all, known to the owner of the stream.
    void setSize(std::uint64_t size) { size_ = size; }
    virtual void checkMode() const {}

  private:
    template <class T>
    void readPlain(T& value);
    template <class T>
    void readList(std::vector<T>& list, std::uint64_t smallestItem);
    void readFloats(std::vector<float>& values, std::uint64_t count);
    /// Whether count items of that many bytes can still come; if not, the stream is put at its end.
    bool holds(std::uint64_t count, std::uint64_t itemSize);

    std::istream& in_;
    std::uint64_t size_ = 0;
};

} // namespace TALVO::UTILS
