#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"

#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

#include <unistd.h>

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
    struct Case {
        const char* text;
        const char* version;
    };
    for (const Case& expected : {Case{"name=x\nversion=1.2.3\nversion=9\n", "1.2.3"},
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
                writeFile(directory.file("version.properties"), expected.text);
                Logger::addLog(Event::initVideo, EventMessage::initVideoModule());
                good = good && log.version() == expected.version;
                writeFile(directory.file("version.properties"), "version=later");
                Logger::logError(Event::initVideo, EventMessage::initVideoModule());
                // Only a version that was found is kept.
                const bool found = expected.version != std::string("unknown");
                good = good && log.version() == (found ? expected.version : "later");
                _exit(good ? 0 : 1);
            },
            testing::ExitedWithCode(0), "")
            << expected.text;
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
    struct Answer : SharedCorvantaSdkAuth {
        std::optional<bool> authenticated;
        bool fails = false;
        bool throws = false;

        std::optional<bool> isAuthenticated(std::error_code& error) override {
            if (throws) {
                throw std::runtime_error("down");
            }
            if (fails) {
                error = std::make_error_code(std::errc::io_error);
            }
            return authenticated;
        }
    };
    const std::string refusal =
        "error event_video_auth_validate: Validate authentication failed: SDK not authenticated";
    using Lines = std::vector<std::string>;
    const auto ask = [](std::optional<bool> authenticated, bool fails, bool throws) {
        const auto answer = std::make_shared<Answer>();
        answer->authenticated = authenticated;
        answer->fails = fails;
        answer->throws = throws;
        RecordedLog log(answer);
        const bool allowed = CorvantaCredentialsManagerImp().isUserAuthenticated();
        return std::pair(allowed, log.take());
    };
    EXPECT_EQ(ask(true, false, false), std::pair(true, Lines{}));
    EXPECT_EQ(ask(false, false, false), std::pair(false, Lines{refusal}));
    EXPECT_EQ(ask(std::nullopt, false, false), std::pair(false, Lines{}));
    EXPECT_EQ(ask(true, true, false), std::pair(false, Lines{}));
    EXPECT_EQ(ask(false, true, false), std::pair(false, Lines{}));
    EXPECT_EQ(ask(true, false, true), std::pair(false, Lines{}));

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
