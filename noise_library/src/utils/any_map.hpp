#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>

namespace TALVO::CONTAINERS {

struct MapObject {
    MapObject() = default;
    MapObject(MapObject const&) = delete;
    MapObject& operator=(MapObject const&) = delete;
    virtual ~MapObject() = default;
};

template <class T>
struct Any : MapObject {
    explicit Any(std::shared_ptr<T> held) : value(std::move(held)) {}
    std::shared_ptr<T> value;
};

/// Typed values by name. A value is found only under the type that it was stored with.
class AnyMap {
  public:
    enum InsertMode { KEEP = 0, OVERWRITE = 1 };

    /// Gives back the stored value only for a new key: also a replacement yields null.
    template <class T>
    std::shared_ptr<T> insert(std::string const& key, T value, InsertMode mode) {
        auto const [place, isNew] = objects_.try_emplace(key);
        if (!isNew && mode == KEEP)
            return nullptr;
        auto stored = std::make_shared<T>(std::move(value));
        place->second = std::make_shared<Any<T>>(stored);
        return isNew ? stored : nullptr;
    }

    /// Null when the key is absent or holds another type.
    template <class T>
    std::shared_ptr<T> get(std::string const& key) const {
        auto const place = objects_.find(key);
        if (place == objects_.end())
            return nullptr;
        auto const any = std::dynamic_pointer_cast<Any<T>>(place->second);
        return any ? any->value : nullptr;
    }

    bool empty() const { return objects_.empty(); }
    void clear() { objects_.clear(); }

  private:
    std::map<std::string, std::shared_ptr<MapObject>> objects_;
};

} // namespace TALVO::CONTAINERS
