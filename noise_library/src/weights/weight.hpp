#pragma once

#include "utils/any_map.hpp"
#include "utils/path.hpp"
#include "utils/serializer.hpp"
#include "utils/talvo_exception.hpp"

#include <memory>
#include <string>
#include <utility>

namespace TALVO::WEIGHTS {

/// The typed contents of a weight file. Not changed after `read`, and shared by all models and
/// sessions made from the file.
class Weight {
  public:
    /// Reads a ".tw" or ".nmw" file. A file that is cut off counts as read as far as it goes.
    bool read(UTILS::Path const& path);
    /// The last complaint of `read`, empty after a success.
    std::string const& error() const { return error_; }

    /// The stored value; throws when the key is absent or holds another type.
    template <class T>
    T const& getReference(std::string const& key) const {
        auto const value = data_.get<T>(key);
        if (value == nullptr)
            TALVO_THROW("ERROR DATA With Key: " + key + "doesn't exists");
        return *value;
    }

    /// Null when the key is absent or holds another type.
    template <class T>
    std::shared_ptr<T const> find(std::string const& key) const {
        return data_.get<T>(key);
    }

    std::string getWeightVersion() const;
    /// Sample rate in hertz and frame duration in milliseconds.
    std::pair<int, int> getWeightInfo() const;

  private:
    bool readEnciphered(UTILS::Path const& path);
    bool readPlain(UTILS::Path const& path);
    bool readRecords(UTILS::Serializer& stream, bool enciphered);
    bool read_value(std::string const& key, int type, UTILS::Serializer& stream);

    CONTAINERS::AnyMap data_;
    std::string error_;
};

} // namespace TALVO::WEIGHTS
