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

TEST(LoggerTest, EveryEventAndMessage) {
    const URL video = URL::fromFilePath("/a b/ü.mp4");
    const URL result = *URL::parse("/out%.wav");
    const UUID id = *parseUUID("0123abcd-4567-89ef-0123-456789abcdef");
    const CorvantaSdkVideoError error(CorvantaSdkVideoError::concatFailed);
    const std::string videoText = "file:///a%20b/%C3%BC.mp4";
    const std::string idText = "0123abcd-4567-89ef-0123-456789abcdef";
    const std::string errorText = "The operation couldn’t be completed. (CorvantaSdkVideoError error 21.)";
    struct Case {
        Event event;
        const char* name;
        EventMessage message;
        std::string text;
    };
    for (const Case& expected : {
             Case{Event::getAllRequest, "event_video_request_get_all", EventMessage::getRequestsBy("idle"),
                  "Get all requests called with status: idle"},
             {Event::clearNoise, "event_video_clear_noise", EventMessage::clearNoise(video, result),
              "Clear noise called with videoPath: " + videoText + ", resultPath: /out%25.wav"},
             {Event::clearNoise, "event_video_clear_noise", EventMessage::clearNoiseFailed(video, error),
              "Error clearing noise. " + videoText + ". " + errorText},
             {Event::compareVideo, "event_video_compare", EventMessage::compare({video, result}),
              "Compare called with videoPaths: [" + videoText + ", /out%25.wav]"},
             {Event::compareVideo, "event_video_compare", EventMessage::compare({}),
              "Compare called with videoPaths: []"},
             {Event::compareVideo, "event_video_compare", EventMessage::compareFailed(error),
              "Error comparing videos. " + errorText},
             {Event::getInfo, "event_video_get_info", EventMessage::getInfo(video),
              "Get info called with videoPath: " + videoText},
             {Event::getInfo, "event_video_get_info", EventMessage::getInfoFailed(video, error),
              "Error getting video info: " + videoText + ". " + errorText},
             {Event::createThumbnail, "event_video_create_thumbnail", EventMessage::createThumbnail(video),
              "Create thumbnail called with videoPath: " + videoText},
             {Event::createThumbnail, "event_video_create_thumbnail",
              EventMessage::createThumbnailFailed(video, error),
              "Error creating thumbnail: " + videoText + ". " + errorText},
             {Event::editVideo, "event_video_edit", EventMessage::editVideo(video),
              "Edit called with videoPath: " + videoText},
             {Event::editVideo, "event_video_edit", EventMessage::editVideoFailed(error),
              "Error editing video. " + errorText},
             {Event::insertRequest, "event_video_request_insert", EventMessage::insertRequest(id),
              "Insert called with video request: " + idText},
             {Event::updateRequest, "event_video_request_update", EventMessage::updateRequest(id),
              "Update called with video request: " + idText},
             {Event::getRequestById, "event_video_request_get_by_id", EventMessage::getRequestBy(id),
              "Get called with id: " + idText},
             {Event::streamRequestWithStatus, "stream_request_with_status",
              EventMessage::streamRequestsBy(std::nullopt), "Stream requests with nil"},
             {Event::streamRequestWithID, "stream_request_with_id", EventMessage::streamRequest(id),
              "Stream requests with id " + idText},
             {Event::processRequest, "event_video_request_process", EventMessage::processRequest(id),
              "Process request with id: " + idText},
             {Event::cancelRequest, "event_video_request_cancel", EventMessage::cancelRequest(id),
              "Cancel request with id: " + idText},
             {Event::mergeRequest, "event_video_merge_request", EventMessage::mergeRequestFailed(error),
              "Merge requeset failed. " + errorText},
             {Event::mergeVideoAndAudioFailed, "event_video_merge_video_and_audio",
              EventMessage::mergeVideoAndAudioFailed(error), "Merge video and audio failed. " + errorText},
             {Event::insertRequest, "event_video_request_insert", EventMessage::insertRequestFailed(error),
              "Insert request failed. " + errorText},
             {Event::processRequest, "event_video_request_process",
              EventMessage::processRequestFailed(
                  CorvantaSdkVideoError(CorvantaSdkVideoError::InvalidInputFilesReason::notEnoughVideos)),
              "Process request failed. invalidInputFiles(notEnoughVideos)"},
             {Event::initVideo, "event_video_init", EventMessage::initVideoModule(), "Init video module"},
             {Event::initEditVideoScreen, "event_video_edit_screen_init", EventMessage::initEditVideoScreen(),
              "Init edit screen called"},
             {Event::editVideo, "event_video_edit", EventMessage::closeEditVideoScreen(),
              "Close Edit Video Screen"},
             {Event::createMergeBuilder, "event_video_merge_build_create", EventMessage::createMergeBuilder(),
              "Building merge builder"},
             {Event::createConcatBuilder, "event_video_concat_build_create",
              EventMessage::createConcatBuilder(), "Building concat builder"},
             {Event::createEncodeBuilder, "event_video_encode_build_create",
              EventMessage::createEncodeBuilder(), "Building encode builder"},
             {Event::validateAuth, "event_video_auth_validate", EventMessage::notAuthenticated(),
              "Validate authentication failed: SDK not authenticated"},
         }) {
        EXPECT_EQ(name(expected.event), expected.name);
        EXPECT_EQ(expected.message.message(), expected.text);
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
                                 {"version=1=2", "unknown"},
                                 {"version = 1", "unknown"},
                                 {" version=1", "unknown"},
                                 {"Version=1", "unknown"},
                                 {"version=\nversion=2", ""},
                                 {"", "unknown"}}) {
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
    class FailingAuth : public SharedCorvantaSdkAuth {
      public:
        explicit FailingAuth(std::optional<bool> answer, bool fails) : answer_(answer), fails_(fails) {}
        std::optional<bool> isAuthenticated(std::error_code& error) override {
            if (fails_) {
                error = std::make_error_code(std::errc::io_error);
            }
            return answer_;
        }

      private:
        std::optional<bool> answer_;
        bool fails_;
    };
    const std::string refusal =
        "error event_video_auth_validate: Validate authentication failed: SDK not authenticated";
    struct Case {
        std::optional<bool> answer;
        bool fails;
        bool allowed;
        std::vector<std::string> lines;
    };
    for (const Case& expected : {Case{true, false, true, {}},
                                 {false, false, false, {refusal}},
                                 {std::nullopt, true, false, {}},
                                 {std::nullopt, false, false, {}},
                                 {true, true, false, {}},
                                 {false, true, false, {}}}) {
        RecordedLog log(std::make_shared<FailingAuth>(expected.answer, expected.fails));
        EXPECT_EQ(CorvantaCredentialsManagerImp().isUserAuthenticated(), expected.allowed);
        EXPECT_EQ(log.take(), expected.lines);
    }
    class ThrowingAuth : public SharedCorvantaSdkAuth {
        std::optional<bool> isAuthenticated(std::error_code&) override { throw std::runtime_error("down"); }
    };
    RecordedLog log(std::make_shared<ThrowingAuth>());
    EXPECT_FALSE(CorvantaCredentialsManagerImp().isUserAuthenticated());
    EXPECT_EQ(log.take(), std::vector<std::string>());

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
