#include "support/Display.hpp"

#include <platform/FFmpegKit.hpp>

#include <QGuiApplication>

#include <gtest/gtest.h>

#include <cstdlib>

// The first two keep tables for the life of the process: Qt's connection to the sound server, which it never
// closes, and GLib's registry of names, whose only pointer the leak checker can't read. Qt's software
// renderer forgets the textures of images that go with their window.
extern "C" const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() {
    return "leak:libpulse.so\nleak:libglib-2.0.so\nleak:QSGTexture::QSGTexture\n";
}

namespace corvanta::test {
namespace {

/// The one application of a test program, without a screen; with CORVANTA_TEST_DISPLAY set, on a display in
/// memory.
class QtApplication : public testing::Environment {
  public:
    void SetUp() override {
        if (std::getenv("CORVANTA_TEST_DISPLAY") != nullptr) {
            display_.emplace();
        } else {
            setenv("QT_QPA_PLATFORM", "offscreen", 1);
        }
        application_ = std::make_unique<QGuiApplication>(count_, arguments_);
        QGuiApplication::setQuitOnLastWindowClosed(false);
        FFmpegKitConfig::setLogLevel("error");
    }
    void TearDown() override {
        application_.reset();
        display_.reset();
    }

  private:
    int count_ = 1;
    char name_[5] = "test";
    char* arguments_[2] = {name_, nullptr};
    std::optional<Display> display_;
    std::unique_ptr<QGuiApplication> application_;
};

const auto* const application =
    testing::AddGlobalTestEnvironment(std::make_unique<QtApplication>().release());

} // namespace
} // namespace corvanta::test
