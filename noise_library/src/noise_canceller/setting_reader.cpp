#include "noise_canceller/setting_reader.hpp"

#include <cstdlib>

namespace TALVO::NOISE_CANCELLER {

std::optional<std::string> SettingReader::fromEnvironment(std::string const& name) const {
    auto const value = model_.second.get<std::string>(key(name));
    return value ? std::optional(*value) : std::nullopt;
}

template <class T>
T SettingReader::fromWeight(std::string const& name, T otherwise) const {
    auto const value = model_.first->find<T>(weightKey(name));
    return value ? *value : otherwise;
}

bool SettingReader::flag(std::string const& name, bool otherwise) const {
    return flagStoredAs(weightKey(name), name, otherwise);
}

bool SettingReader::flagStoredAs(std::string const& storedKey, std::string const& name,
                                 bool otherwise) const {
    if (auto const text = fromEnvironment(name))
        return *text == "TRUE";
    auto const stored = model_.first->find<std::string>(storedKey);
    return stored ? *stored == "t" : otherwise;
}

float SettingReader::number(std::string const& name, float otherwise) const {
    if (auto const text = fromEnvironment(name))
        return static_cast<float>(std::atof(text->c_str()));
    return fromWeight(name, otherwise);
}

int SettingReader::whole(std::string const& name, int otherwise) const {
    if (auto const text = fromEnvironment(name))
        return std::atoi(text->c_str());
    return fromWeight(name, otherwise);
}

std::string SettingReader::text(std::string const& name, std::string const& otherwise) const {
    if (auto text = fromEnvironment(name))
        return *text;
    return fromWeight(name, otherwise);
}

} // namespace TALVO::NOISE_CANCELLER
