#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"

#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

namespace corvanta::test {
namespace {

// What no operation's test reads in its log.
TEST(LoggerTest, EventsAndMessages) {
    const URL video = URL::fromFilePath("/a b/ü.mp4");
    const URL result = *URL::parse("/out%.wav");
    const UUID id = *parseUUID("0123abcd-4567-89ef-0123-456789abcdef");
    const CorvantaSdkVideoError error(CorvantaSdkVideoError::InvalidInputFilesReason::notEnoughVideos);
    struct Case {
        Event event;
        EventMessage message;
        std::string line;
    };
    for (const Case& expected : {
             Case{Event::getAllRequest, EventMessage::getRequestsBy("idle"),
                  "event_video_request_get_all: Get all requests called with status: idle"},
             {Event::compareVideo, EventMessage::compare({video, result}),
              "event_video_compare: Compare called with videoPaths: [file:///a%20b/%C3%BC.mp4, /out%25.wav]"},
             {Event::compareVideo, EventMessage::compare({}),
              "event_video_compare: Compare called with videoPaths: []"},
             {Event::streamRequestWithStatus, EventMessage::streamRequestsBy(std::nullopt),
              "stream_request_with_status: Stream requests with nil"},
             {Event::streamRequestWithID, EventMessage::streamRequest(id),
              "stream_request_with_id: Stream requests with id 0123abcd-4567-89ef-0123-456789abcdef"},
             {Event::processRequest, EventMessage::processRequestFailed(error),
              "event_video_request_process: Process request failed. invalidInputFiles(notEnoughVideos)"},
             {Event::createMergeBuilder, EventMessage::createMergeBuilder(),
              "event_video_merge_build_create: Building merge builder"},
             {Event::createConcatBuilder, EventMessage::createConcatBuilder(),
              "event_video_concat_build_create: Building concat builder"},
             {Event::createEncodeBuilder, EventMessage::createEncodeBuilder(),
              "event_video_encode_build_create: Building encode builder"},
         }) {
        RecordedLog log;
        Logger::addLog(expected.event, expected.message);
        EXPECT_EQ(log.take(), std::vector{"info " + expected.line});
    }
}

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
                bool good = log.version() == "unknown";
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
