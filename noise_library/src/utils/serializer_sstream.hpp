#pragma once

#include "utils/serializer.hpp"

#include <sstream>

namespace TALVO::UTILS {

/// Reads a record stream that lies in memory.
class SerializerSstream : public Serializer {
  public:
    explicit SerializerSstream(std::string content) : Serializer(stream_) {
        setSize(content.size());
        stream_.str(std::move(content));
    }

    void load_sequential_container(std::vector<float>& container) { *this >> container; }

  private:
    std::stringstream stream_;
};

} // namespace TALVO::UTILS
