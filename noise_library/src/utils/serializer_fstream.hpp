#pragma once

#include "utils/serializer.hpp"

#include <fstream>

namespace TALVO::UTILS {

enum class SerializeMode { Read = 0, Write = 1 };

/// Reads a record stream from a file. The library never writes one: with `Write` the file is opened
/// and nothing more.
class SerializerFstream : public Serializer {
  public:
    SerializerFstream(SerializeMode mode, wchar_t const* path);

  private:
    void checkMode() const override;

    SerializeMode mode_;
    std::ofstream output_;
    std::ifstream input_;
};

} // namespace TALVO::UTILS
