#include "noise_library/support/library_scope.hpp"

#include <gmock/gmock.h>
#include <thread>

namespace {

using namespace noise_test;

constexpr int frames = 60;

std::vector<float> cleanAll(void* session, std::vector<float> const& speech) {
    std::vector<float> out(static_cast<std::size_t>(frames) * 160);
    for (std::size_t at = 0; at < out.size(); at += 160)
        EXPECT_EQ(talvoAudioNcCleanAmbientNoiseFloat(session, speech.data() + at, 160, out.data() + at, 160),
                  0);
    return out;
}

TEST(Threads, SessionsOfOneModelRunBesideEachOtherAndBesideChanges) {
    LibraryScope const library;
    ASSERT_EQ(library.setModel("shared", makeModel("0.0.5")), 0);
    std::string const another = makeModel("0.0.3").plain();
    std::vector<float> const speech = makeSpeech(16000, 1.0);
    std::vector<float> const expected = cleanAll(openCleaning(16000, 16000, 10, "shared"), speech);

    std::vector<std::vector<float>> results(16);
    std::atomic<int> running = 16;
    testing::internal::CaptureStderr(); // the foreign handle's complaints
    std::vector<std::thread> threads;
    for (std::vector<float>& result : results)
        threads.emplace_back([&] {
            void* const session = openCleaning(16000, 16000, 10, "shared");
            result = cleanAll(session, speech);
            EXPECT_EQ(talvoAudioNcCloseSession(session), 0);
            --running;
        });
    threads.emplace_back([&] {
        for (int i = 0; i < 200 && running > 0; ++i) {
            std::string const name = "model" + std::to_string(i);
            auto const path = library.folder().write(name + ".nmw", another);
            EXPECT_EQ(talvoAudioSetModel(path.wstring().c_str(), name.c_str()), 0);
            EXPECT_EQ(talvoAudioNcCloseSession(openCleaning(16000, 16000, 10, name.c_str())), 0);
        }
    });
    threads.emplace_back([&] {
        int foreign = 0;
        std::array<float, 160> frame{};
        while (running > 0)
            EXPECT_EQ(talvoAudioNcCleanAmbientNoiseFloat(&foreign, frame.data(), 160, frame.data(), 160), 2);
    });
    for (std::thread& thread : threads)
        thread.join();
    testing::internal::GetCapturedStderr();
    EXPECT_THAT(results, testing::Each(expected));
}

TEST(Threads, OneOfTwoThatCloseASessionDoesIt) {
    LibraryScope const library;
    ASSERT_EQ(library.setModel("model", makeModel("0.0.3")), 0);
    testing::internal::CaptureStdout(); // what the later one is told
    testing::internal::CaptureStderr();
    for (int i = 0; i < 50; ++i) {
        void* const session = openCleaning(16000, 16000, 10, "model");
        int first = 0;
        std::thread beside([&] { first = talvoAudioNcCloseSession(session); });
        int const second = talvoAudioNcCloseSession(session);
        beside.join();
        EXPECT_NE(first == 0, second == 0);
        EXPECT_THAT(first + second, testing::AnyOf(1, -3));
    }
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
}

} // namespace
