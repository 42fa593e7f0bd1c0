#include "noise_library/support/library_scope.hpp"

#include <stdexcept>

namespace noise_test {

LibraryScope::LibraryScope() {
    if (talvoAudioGlobalInit((folder_.path().wstring() + L"/").c_str()) != 0)
        throw std::runtime_error("the library didn't start");
}

LibraryScope::~LibraryScope() {
    talvoAudioGlobalDestroy();
}

int LibraryScope::setModel(std::string const& name, ModelFile const& model) const {
    return talvoAudioSetModel(folder_.write(name + ".nmw", model.plain()).wstring().c_str(), name.c_str());
}

int LibraryScope::setModel(std::string const& name, ModelFile const& model,
                           std::string const& settings) const {
    folder_.write(name + ".tw", model.enciphered());
    auto const control = folder_.write(name + ".cfg", "WEIGHT " + name + ".tw\n" + settings);
    return talvoAudioSetModel(control.wstring().c_str(), name.c_str());
}

} // namespace noise_test
