#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"

#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

namespace corvanta::test {
namespace {

// One process keeps one version, so each text is read by a new one.
TEST(LoggerDeathTest, VersionIsReadFromTheResource) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (const auto& [text, version] : {std::pair("name=x\nversion=1.2.3\nversion=9\n", "1.2.3"),
                                        {"a\r\nversion=1.2.3 \r\nb", "1.2.3 "},
                                        {"version=1=2\nversion=7", "7"},
                                        {"version = 1", "unknown"},
                                        {" version=1", "unknown"},
                                        {"version=\nversion=2", ""},
                                        {"Version=1", "unknown"}}) {
        EXPECT_EXIT(
            {
                const TemporaryDirectory directory;
                const ScopedVariable resources("CORVANTA_RESOURCES", directory.path().string());
                RecordedLog log;
                Logger::addLog(Event::initVideo, EventMessage::initVideoModule());
                // It is a folder that can't be read, too.
                std::filesystem::create_directory(directory.file("version.properties"));
                Logger::addLog(Event::initVideo, EventMessage::initVideoModule());
                bool good = log.version() == "unknown" && log.take().size() == 2;
                std::filesystem::remove(directory.file("version.properties"));
                writeFile(directory.file("version.properties"), text);
                Logger::addLog(Event::initVideo, EventMessage::initVideoModule());
                good = good && log.version() == version;
                writeFile(directory.file("version.properties"), "version=later");
                Logger::logError(Event::initVideo, EventMessage::initVideoModule());
                // Only a version that was found is kept.
                const bool found = version != std::string("unknown");
                good = good && log.version() == (found ? version : "later");
                _exit(good ? 0 : 1);
            },
            testing::ExitedWithCode(0), "")
            << text;
    }
}

TEST(LoggerTest, ASinkThatThrowsChangesNothing) {
    class Throwing : public SharedCorvantaSdkLogSink {
        void addLog(const SharedCorvantaSdkLog&) override { throw std::runtime_error("full"); }
    };
    const RecordedLog restored;
    SharedCorvantaSdkCommonKt::sdk_common().setLog(std::make_shared<Throwing>());
    Logger::addLog(Event::initVideo, EventMessage::initVideoModule());
    Logger::logError(Event::initVideo, EventMessage::initVideoModule());
}

TEST(CredentialsManagerTest, OnlyAPlainNoIsLogged) {
    enum class Told { truth, error, exception };
    struct Answer : SharedCorvantaSdkAuth {
        Answer(std::optional<bool> authenticated_, Told told_) : authenticated(authenticated_), told(told_) {}
        std::optional<bool> isAuthenticated(std::error_code& error) override {
            if (told == Told::exception) {
                throw std::runtime_error("down");
            }
            if (told == Told::error) {
                error = std::make_error_code(std::errc::io_error);
            }
            return authenticated;
        }
        std::optional<bool> authenticated;
        Told told;
    };
    const std::string refusal =
        "error event_video_auth_validate: Validate authentication failed: SDK not authenticated";
    for (const auto& [authenticated, told, allowed, lines] :
         std::vector<std::tuple<std::optional<bool>, Told, bool, std::vector<std::string>>>{
             {true, Told::truth, true, {}},
             {false, Told::truth, false, {refusal}},
             {std::nullopt, Told::truth, false, {}},
             {true, Told::error, false, {}},
             {false, Told::error, false, {}},
             {true, Told::exception, false, {}}}) {
        RecordedLog log(std::make_shared<Answer>(authenticated, told));
        EXPECT_EQ(CorvantaCredentialsManagerImp().isUserAuthenticated(), allowed);
        EXPECT_EQ(log.take(), lines);
    }

    SharedCorvantaSdkCommon common;
    common.setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    common.setAuth(nullptr);
    common.setLog(nullptr);
    std::error_code error;
    EXPECT_FALSE(common.auth()->isAuthenticated(error).value());
    EXPECT_NE(common.log(), nullptr);
}

} // namespace
} // namespace corvanta::test
