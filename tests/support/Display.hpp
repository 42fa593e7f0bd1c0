#pragma once

#include "support/Processes.hpp"

#include <csignal>
#include <stdexcept>

namespace corvanta::test {

/// A display in memory with a window manager, which Qt's windows come to as long as the object lives, drawn
/// by OpenGL in software. Make it before the Qt application.
class Display {
  public:
    Display()
        : server_("setpriv", underThisProcess("Xvfb", {"-displayfd", "1", "-screen", "0", "2000x1200x24"})) {
        waitFor("Xvfb", [this] { return server_.output().ends_with('\n'); });
        const std::string number = server_.output();
        name_.emplace("DISPLAY", ':' + number.substr(0, number.size() - 1));
        manager_.emplace("setpriv",
                         underThisProcess("openbox", {"--startup", "touch " + directory_.file("managed")}));
        waitFor("openbox", [this] { return std::filesystem::exists(directory_.file("managed")); });
    }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;
    // Killed, it would leave its lock behind.
    ~Display() {
        manager_.reset();
        server_.signal(SIGTERM);
    }

  private:
    static std::vector<std::string> underThisProcess(const std::string& program,
                                                     const std::vector<std::string>& arguments) {
        std::vector<std::string> words{"--pdeathsig", "TERM", program};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return words;
    }
    static void waitFor(const std::string& program, const std::function<bool()>& condition) {
        if (!eventually(condition)) {
            throw std::runtime_error(program + " doesn't start");
        }
    }

    TemporaryDirectory directory_;
    Program server_;
    std::optional<ScopedVariable> name_;
    std::optional<Program> manager_;
    ScopedVariable platform_{"QT_QPA_PLATFORM", "xcb"};
    ScopedVariable api_{"QSG_RHI_BACKEND", "opengl"};
    ScopedVariable software_{"LIBGL_ALWAYS_SOFTWARE", "1"};
    ScopedVariable shaderCache_{"MESA_SHADER_CACHE_DISABLE", "true"};
};

} // namespace corvanta::test
