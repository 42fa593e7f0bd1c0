#pragma once

#include "utils/any_map.hpp"
#include "weights/model.hpp"

#include <optional>
#include <string>

namespace TALVO::NOISE_CANCELLER {

/// Looks a setting up under prefix + name + suffix: first in the model's environment, where values
/// are texts, then in the weight file under the same key with "CONTROL_" in front.
class SettingReader {
  public:
    SettingReader(WEIGHTS::Model const& model, std::string prefix, std::string suffix)
        : model_(model), prefix_(std::move(prefix)), suffix_(std::move(suffix)) {}

    /// "TRUE" in the environment, "t" in the weight file; any other text is false.
    bool flag(std::string const& name, bool otherwise) const;
    float number(std::string const& name, float otherwise) const;
    int whole(std::string const& name, int otherwise) const;
    std::string text(std::string const& name, std::string const& otherwise) const;

    /// A flag whose key in the weight file doesn't follow the rule.
    bool flagStoredAs(std::string const& weightKey, std::string const& name, bool otherwise) const;

  private:
    std::string key(std::string const& name) const { return prefix_ + name + suffix_; }
    std::string weightKey(std::string const& name) const { return "CONTROL_" + key(name); }
    std::optional<std::string> fromEnvironment(std::string const& name) const;
    template <class T>
    T fromWeight(std::string const& name, T otherwise) const;

    WEIGHTS::Model const& model_;
    std::string prefix_;
    std::string suffix_;
};

} // namespace TALVO::NOISE_CANCELLER
