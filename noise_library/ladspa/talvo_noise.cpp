#include "noise_instance.hpp"

#include <array>
#include <exception>
#include <iostream>
#include <memory>

#include <ladspa.h>

namespace {

using TALVO::LADSPA::NoiseInstance;

enum Port : unsigned long { input, output, strength, latency, portCount };

constexpr std::array<LADSPA_PortDescriptor, portCount> descriptors{
    LADSPA_PORT_INPUT | LADSPA_PORT_AUDIO, LADSPA_PORT_OUTPUT | LADSPA_PORT_AUDIO,
    LADSPA_PORT_INPUT | LADSPA_PORT_CONTROL, LADSPA_PORT_OUTPUT | LADSPA_PORT_CONTROL};
// Hosts know the last one by its name.
constexpr std::array<char const*, portCount> names{"Input", "Output", "Strength", "latency"};
constexpr std::array<LADSPA_PortRangeHint, portCount> hints{
    {{0, 0.0f, 0.0f},
     {0, 0.0f, 0.0f},
     {LADSPA_HINT_BOUNDED_BELOW | LADSPA_HINT_BOUNDED_ABOVE | LADSPA_HINT_DEFAULT_1, 0.0f, 1.0f},
     {0, 0.0f, 0.0f}}};

/// An instance and the memory that its host has connected.
struct Plugin {
    NoiseInstance instance;
    std::array<LADSPA_Data*, portCount> ports{};

    explicit Plugin(unsigned long rate) : instance(rate) {}
};

Plugin& plugin(LADSPA_Handle handle) { return *static_cast<Plugin*>(handle); }

/// Nothing may be thrown into a host: what fails is told.
template <class Call>
void told(Call call) noexcept {
    try {
        call();
    } catch (std::exception const& error) {
        std::cerr << "talvo_noise: " << error.what() << std::endl;
    }
}

LADSPA_Handle instantiate(LADSPA_Descriptor const*, unsigned long rate) {
    std::unique_ptr<Plugin> made;
    told([&] { made = std::make_unique<Plugin>(rate); });
    return made.release();
}

void connectPort(LADSPA_Handle handle, unsigned long port, LADSPA_Data* data) {
    if (port < portCount)
        plugin(handle).ports[port] = data;
}

void tellLatency(Plugin const& of) {
    if (of.ports[latency] != nullptr)
        *of.ports[latency] = static_cast<LADSPA_Data>(of.instance.latency());
}

void activate(LADSPA_Handle handle) {
    told([&] { plugin(handle).instance.restart(); });
    tellLatency(plugin(handle));
}

void run(LADSPA_Handle handle, unsigned long count) {
    auto& [instance, ports] = plugin(handle);
    tellLatency(plugin(handle));
    instance.run(ports[input], ports[output], count, ports[strength] != nullptr ? *ports[strength] : 1.0f);
}

void cleanup(LADSPA_Handle handle) { std::unique_ptr<Plugin>(&plugin(handle)).reset(); }

constexpr LADSPA_Descriptor descriptor{.UniqueID = 5475150,
                                       .Label = "talvo_noise",
                                       .Properties = LADSPA_PROPERTY_HARD_RT_CAPABLE,
                                       .Name = "Talvo noise cleaner (mono)",
                                       .Maker = "The CorvantaSdkVideo authors",
                                       .Copyright = "MIT",
                                       .PortCount = portCount,
                                       .PortDescriptors = descriptors.data(),
                                       .PortNames = names.data(),
                                       .PortRangeHints = hints.data(),
                                       .ImplementationData = nullptr,
                                       .instantiate = instantiate,
                                       .connect_port = connectPort,
                                       .activate = activate,
                                       .run = run,
                                       .run_adding = nullptr,
                                       .set_run_adding_gain = nullptr,
                                       .deactivate = nullptr,
                                       .cleanup = cleanup};

} // namespace

extern "C" __attribute__((visibility("default"))) LADSPA_Descriptor const*
ladspa_descriptor(unsigned long index) {
    return index == 0 ? &descriptor : nullptr;
}
