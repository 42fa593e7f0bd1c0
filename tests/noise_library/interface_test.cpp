#include "noise_library/support/library_scope.hpp"

#include <array>
#include <gmock/gmock.h>

namespace {

using namespace noise_test;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

constexpr char wrongSessionText[] = "The Session pointer is wrong insert existing session pointer\n";

std::string errorsOf(std::function<void()> const& call) {
    testing::internal::CaptureStderr();
    call();
    return testing::internal::GetCapturedStderr();
}

TEST(Instance, IsStartedAndEndedOnceAtATime) {
    EXPECT_THAT(errorsOf([] { EXPECT_EQ(talvoAudioGlobalDestroy(), -3); }),
                AllOf(HasSubstr("file talvo_audio_sdk/instance Line"),
                      EndsWith("Function Instance\n messege DESTROYING WITHOUT INTIALIZATION\n")));
    EXPECT_THAT(errorsOf([] { EXPECT_EQ(talvoAudioSetModel(L"m.nmw", "m"), -3); }),
                EndsWith("Function Instance\n messege TRY TO GET NULL INSTANCE,ISN'T INITIALIZED\n"));
    short sample = 0;
    int const someObject = 0;
    void* const foreign = const_cast<int*>(&someObject);
    EXPECT_EQ(openCleaning(16000, 16000, 10, nullptr), nullptr);
    EXPECT_EQ(talvoAudioNcCleanAmbientNoiseInt16(foreign, &sample, 1, &sample, 1), -3);
    EXPECT_EQ(talvoAudioVadFrameInt16(foreign, &sample, 1), -3.0f);
    EXPECT_EQ(talvoAudioNcCloseSession(foreign), -3);
    EXPECT_EQ(talvoAudioNcBackgroundSpeakerFixOnOff(foreign, true), 1);
    for (int round = 0; round < 3; ++round) {
        LibraryScope const library;
        EXPECT_THAT(errorsOf([] { EXPECT_EQ(talvoAudioGlobalInit(nullptr), -3); }),
                    EndsWith("messege DOUBLE INITIALIZATION WITHOUT DESTROYING\n"));
        EXPECT_EQ(library.setModel("model", makeModel("0.0.5")), 0) << "models go with the instance";
    }
    // Without a working path a relative one is the process's.
    ASSERT_EQ(talvoAudioGlobalInit(nullptr), 0);
    EXPECT_EQ(talvoAudioSetModel(L"not/there.nmw", "m"), 2);
    EXPECT_EQ(talvoAudioGlobalDestroy(), 0);
}

TEST(SetModel, RegistersUnderANewNameAndTellsWhyNot) {
    LibraryScope const library;
    std::string const folder = library.folder().path().string();
    ModelFile const model = makeModel("0.0.5");
    library.folder().write("good.nmw", model.plain());
    library.folder().write("good.tw", "never read: the stem is loaded");
    library.folder().write("other.tw", model.enciphered());
    library.folder().write("x.nmw", model.plain());
    library.folder().write("bad.tw", std::string(40, 'x'));
    library.folder().write("empty.nmw", "");
    library.folder().write("two.cfg", "WEIGHT other.tw\nWEIGHT good.nmw\nCONTROLFILE a.cfg\nKEY a  value\n");
    library.folder().write("double.cfg", "WEIGHT good.nmw\nKEY 1\nKEY 2\n");
    library.folder().write("word.cfg", "WEIGHT good.nmw\nword\n");
    library.folder().write("none.cfg", "KEY 1\n");
    library.folder().write("narrow.cfg", "WEIGHT \xFF.tw\n");
    std::string const missing = "Warning Weight name isn't included or weight has been included before \n";
    std::string const name = "WARNING model name exists or empty, please insert different name\n";
    struct Case {
        wchar_t const* path;
        char const* model;
        int code;
        std::string printed;
    };
    for (Case const& c : {
             Case{nullptr, "m", 2, "WARRNING talvoAudioSetModel FUNCTION CALL with nullptr\n"},
             {L"good.nmw", "", 2, name},
             {L"good.nmw", nullptr, 2, name},
             {L"good.nmw", "first", 0, "WEIGHT " + folder + "/good.nmw\n"},
             {L"other.tw", "first", 2, name},
             {L"good.tw", "second", 0, "WEIGHT " + folder + "/good.tw\n"},
             {L"x.nmw", "short", 2,
              "WEIGHT " + folder + "/x.nmw\nERROR WEIGHT NAME ISNT LONG ENOUGHT\n" + missing},
             {L"bad.tw", "bad", 2,
              "WEIGHT " + folder + "/bad.tw\nWARNING weight isn't loaded \n weigth file: " + folder +
                  "/bad.tw\nWeight read result: Corrupted weight header!\n" + missing},
             {L"empty.nmw", "empty", 0,
              "WEIGHT " + folder + "/empty.nmw\nWarning Nothing added from weight\n"},
             {L"good", "plain", 2, missing},
             {L"gone.cfg", "gone", 2, missing},
             {L"two.cfg", "two", 0,
              "WEIGHT other.tw\nWARNING multiple weight including, weight exists.\n"
              "WARNING there are CONTROLFILE parameter inside of controlFile, skipped\n"
              "ENVIRONMENT KEY-\"KEY\" VALUE-\"a  value\"\n"},
             {L"double.cfg", "double", 2,
              "WEIGHT good.nmw\nENVIRONMENT KEY-\"KEY\" VALUE-\"1\"\nENVIRONMENT KEY-\"KEY\" VALUE-\"2\"\n"},
             {L"word.cfg", "word", 2, missing},
             {L"none.cfg", "none", 2, "ENVIRONMENT KEY-\"KEY\" VALUE-\"1\"\n" + missing},
             {L"narrow.cfg", "narrow", -3, "WEIGHT \xFF.tw\n"},
             {L"good.nmw", "\xFF", -3, ""},
             {L"\xD800.nmw", "surrogate", -3, ""},
         }) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(talvoAudioSetModel(c.path, c.model), c.code);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), c.printed)
            << (c.model == nullptr ? "null" : c.model);
    }
    std::string led;
    talvoAudioSetPrint([](char const* line, void* to) { *static_cast<std::string*>(to) += line; }, &led);
    testing::internal::CaptureStdout();
    EXPECT_EQ(talvoAudioSetModel(L"gone.cfg", "led"), 2);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(led + '\n', missing);
    talvoAudioSetPrint(nullptr, nullptr);
    for (auto const& [registered, opens] :
         {std::pair{"first", true}, {"second", true}, {"two", true}, {"double", false}})
        EXPECT_EQ(openCleaning(16000, 16000, 10, registered) != nullptr, opens) << registered;
}

TEST(CreateSession, ChoosesTheClassAndRefusesTheRest) {
    LibraryScope const library;
    for (std::string const version :
         {"0.0.1", "0.0.2", "0.0.3", "0.0.4", "0.0.5", "0.0.6", "0.0.7", "VAD_0.0.1"})
        ASSERT_EQ(library.setModel(version, makeModel(version)), 0);
    library.setModel("bare", ModelFile().set("Version", "0.0.5"));
    library.setModel("unversioned", ModelFile().set("SampleRate", 16000));
    library.setModel("keyless", makeModel("0.0.6").remove("LpsEps"));
    library.setModel("rateless", makeModel("0.0.5").set("SampleRate", 44100));
    library.setModel("odd", makeModel("0.0.5").set("FrameLength", 400));
    library.setModel("negative", makeModel("0.0.5").set("PreviewFrames", -1));
    library.setModel("endless", makeModel("0.0.5").set("FrameLength", 0x7FFFFFFF));
    library.setModel("headless", makeModel("0.0.5").set("WeightNonLinear", std::vector<ModelFile::Matrix>()));
    struct Case {
        char const* model;
        int in, out, duration;
        char const* kinds; ///< those that open: c(leaning), v(oice), l(evel)
        char const* error; ///< of a cleaning session
    };
    for (Case const& c : {
             Case{"0.0.1", 16000, 16000, 10, "c", ""},
             {"0.0.2", 16000, 48000, 20, "c", ""},
             {"0.0.3", 8000, 16000, 30, "c", ""},
             {"0.0.4", 44100, 44100, 40, "c", ""},
             {"0.0.5", 16000, 16000, 32, "cl", ""},
             {"0.0.6", 16000, 16000, 15, "c", ""},
             {"VAD_0.0.1", 16000, 16000, 10, "v", "Function create\n messege Unsupported weight version\n"},
             {"0.0.7", 16000, 16000, 10, "", "file noise_canceller/noise_cleaner Line"},
             {"nobody", 16000, 16000, 10, "",
              "Function create\n messege Weight with this name isn't found\n"},
             {"bare", 16000, 16000, 10, "", "ERROR DATA With Key: FrameLengthdoesn't exists\n"},
             {"unversioned", 16000, 16000, 10, "", "messege there are no Weight version in Weight \n"},
             {"keyless", 16000, 16000, 10, "", "ERROR DATA With Key: LpsEpsdoesn't exists\n"},
             {"rateless", 16000, 16000, 10, "", "there are no needing Weight information in Weight \n"},
             {"odd", 16000, 16000, 10, "", "there are no needing Weight information in Weight \n"},
             {"negative", 16000, 16000, 10, "", "PreviewFrames is negative"},
             {"endless", 16000, 16000, 10, "", "out of any range"},
             {"headless", 16000, 16000, 10, "", "no output layer"},
             {"0.0.5", 22050, 16000, 10, "l", "Unsupported Sampling rates!\n"},
             {"0.0.5", 16000, 0, 10, "l", "Unsupported Sampling rates!\n"},
             {"0.0.5", 32000, 32000, 15, "",
              "Function TalvoAudioSessionT\n messege RESAMPLER WORKS WITH WRONG FRAMEDURATION \n"},
             {"0.0.5", 16000, 8000, 32, "l", "RESAMPLER WORKS WITH WRONG FRAMEDURATION \n"},
             {"0.0.5", 16000, 16000, 25, "", "a frame duration must be"},
             {"0.0.5", 16000, 16000, -10, "", "a frame duration must be"},
         }) {
        SCOPED_TRACE(testing::Message() << c.model << " " << c.in << " " << c.out << " " << c.duration);
        void* cleaning = nullptr;
        EXPECT_THAT(errorsOf([&] { cleaning = openCleaning(c.in, c.out, c.duration, c.model); }),
                    HasSubstr(c.error));
        // The other kinds have one rate only.
        int const rate = c.in == 22050 ? 16000 : c.in;
        void* const voice =
            talvoAudioVadCreateSession(samplingRate(rate), frameDuration(c.duration), c.model);
        void* const level =
            talvoAudioNoiseDbCreateSession(samplingRate(rate), frameDuration(c.duration), c.model);
        std::string opened;
        for (auto const& [kind, session] : {std::pair{"c", cleaning}, {"v", voice}, {"l", level}})
            opened += session != nullptr ? kind : "";
        EXPECT_EQ(opened, c.kinds);
        if (cleaning != nullptr) {
            EXPECT_EQ(talvoAudioNcBackgroundSpeakerFixOnOff(cleaning, true), 1);
            EXPECT_EQ(talvoAudioVadCloseSession(cleaning), -3);
            EXPECT_EQ(talvoAudioNcCloseSession(cleaning), 0);
        }
    }
    EXPECT_EQ(talvoAudioVadCreateSession(samplingRate(11025), frameDuration(10), "VAD_0.0.1"), nullptr);
}

TEST(CreateSessionDeathTest, AModelWhoseSizesDontFitEndsTheProcess) {
    struct Case {
        char const *version, *key;
        ModelFile::Value value;
        char const* text;
    };
    using Vectors = std::vector<std::vector<float>>;
    std::array<float, 640> frame{};
    for (Case const& c : {
             Case{"0.0.5", "WeightGRU", ModelFile::Matrix(2, 2), "params.weight_wgru.rowSize() == inOut"},
             {"0.0.1", "BaesLinear", Vectors(), "params.weight_wl.size() == params.weight_wnl.size() && par"},
             {"0.0.3", "BaesLinear", Vectors(), "params.weight_wnl.size()-1 <= params.weight_wl.size()"},
             {"0.0.4", "BaesLinear", Vectors(2, {1}), "params.weight_bnl[i].size() == params.weight_bl[i]"},
         }) {
        LibraryScope const library;
        library.setModel("misfit", makeModel(c.version).set(c.key, c.value));
        void* const session = openCleaning(16000, 16000, 40, "misfit");
        EXPECT_DEATH(talvoAudioNcCleanAmbientNoiseFloat(session, frame.data(), 640, frame.data(), 640),
                     HasSubstr(c.text))
            << c.version;
    }
}

TEST(CreateSession, SelectsAModelByRateWithoutAName) {
    LibraryScope const library;
    ModelShape at8000;
    at8000.sampleRate = 8000;
    at8000.frameLength = 160;
    EXPECT_THAT(errorsOf([] { EXPECT_EQ(openCleaning(8000, 8000, 10, nullptr), nullptr); }),
                HasSubstr("messege Weight not found \n"));
    library.setModel("voice", makeModel("VAD_0.0.1"));
    EXPECT_EQ(openCleaning(16000, 16000, 10, nullptr), nullptr) << "a voice model is no candidate";
    library.setModel("low", makeModel("0.0.5", at8000));
    library.setModel("high", makeModel("0.0.5"));
    // 15 ms frames open only where the model's rate is the session's.
    for (auto const& [rate, opens] : {std::pair{8000, true}, {16000, true}, {12000, false}, {48000, false}})
        EXPECT_EQ(openCleaning(rate, rate, 15, nullptr) != nullptr, opens) << rate;
    for (int const rate : {12000, 48000})
        EXPECT_NE(openCleaning(rate, rate, 10, nullptr), nullptr);
}

TEST(Handles, ThatAreWrongAreReportedByEveryCall) {
    LibraryScope const library;
    library.setModel("clean", makeModel("0.0.5"));
    library.setModel("voice", makeModel("VAD_0.0.1"));
    void* const cleaning = openCleaning(16000, 16000, 10, "clean");
    void* const voice = talvoAudioVadCreateSession(samplingRate(16000), frameDuration(10), "voice");
    void* const level = talvoAudioNoiseDbCreateSession(samplingRate(16000), frameDuration(10), "clean");
    void* const stale = openCleaning(16000, 16000, 10, "clean");
    ASSERT_EQ(talvoAudioNcCloseSession(stale), 0);
    int object = 0;
    std::array<short, 160> shorts{};
    std::array<float, 160> floats{};

    struct Function {
        void* right;
        float code; ///< for a wrong handle
        std::string text;
        std::function<float(void*)> call;
    };
    std::string const close = "file talvo_audio_sdk/talvo-audio-sdk Line";
    short* const s16 = shorts.data();
    float* const f32 = floats.data();
    std::array<Function, 11> const functions{{
        {cleaning, 2, wrongSessionText,
         [&](void* s) { return talvoAudioNcCleanAmbientNoiseInt16(s, s16, 160, s16, 160); }},
        {cleaning, 2, wrongSessionText,
         [&](void* s) { return talvoAudioNcCleanAmbientNoiseFloat(s, f32, 160, f32, 160); }},
        {cleaning, 2, wrongSessionText, [&](void* s) { return talvoAudioNcSetStrength(s, 0.5f); }},
        {voice, -4, wrongSessionText, [&](void* s) { return talvoAudioVadFrameInt16(s, s16, 160); }},
        {voice, -4, wrongSessionText, [&](void* s) { return talvoAudioVadFrameFloat(s, f32, 160); }},
        {level, -4, wrongSessionText, [&](void* s) { return talvoAudioNoiseDbFrameInt16(s, s16, 160); }},
        {level, -4, wrongSessionText, [&](void* s) { return talvoAudioNoiseDbFrameFloat(s, f32, 160); }},
        {level, -3,
         "Function resetSession\n messege Trying to reset a non-existant session or session of incompatible "
         "type\n",
         talvoAudioNoiseDbResetSession},
        {cleaning, -3, close, talvoAudioNcCloseSession},
        {voice, -3, close, talvoAudioVadCloseSession},
        {level, -3,
         "Function closeSession\n messege Trying to close a non-existant session or session of incompatible "
         "type\n",
         talvoAudioNoiseDbCloseSession},
    }};
    for (Function const& function : functions)
        for (void* const handle :
             {static_cast<void*>(nullptr), stale, static_cast<void*>(&object), cleaning, voice, level}) {
            if (handle == function.right)
                continue;
            EXPECT_THAT(errorsOf([&] { EXPECT_EQ(function.call(handle), function.code); }),
                        HasSubstr(function.text));
        }
    // All still work; a reset passes its true on.
    for (std::size_t i = 0; i < functions.size(); ++i)
        EXPECT_GE(functions[i].call(functions[i].right), i == 5 || i == 6 ? -120.0f : 0.0f) << i;
}

TEST(FrameSizes, ThatAreWrongLeaveTheStreamAsItWas) {
    LibraryScope const library;
    library.setModel("clean", makeModel("0.0.5"));
    library.setModel("voice", makeModel("VAD_0.0.1"));
    std::vector<float> const speech = makeSpeech(44100, 0.5);
    auto const openAll = [] {
        return std::array{openCleaning(44100, 48000, 10, "clean"),
                          talvoAudioVadCreateSession(samplingRate(44100), frameDuration(10), "voice"),
                          talvoAudioNoiseDbCreateSession(samplingRate(44100), frameDuration(10), "clean")};
    };
    auto const straight = openAll();
    auto const disturbed = openAll();
    std::array<short, 480> shorts{};
    short* const s16 = shorts.data();
    auto const expectError = [](float code, testing::Matcher<std::string> const& text, auto&&... call) {
        EXPECT_THAT(errorsOf([&] { EXPECT_EQ(static_cast<float>(std::invoke(call...)), code); }), text);
    };
    std::string const sizes = "input size must be 441\n output size must be 480\n";
    for (std::size_t at = 0; at + 441 <= speech.size(); at += 441) {
        float const* const in = speech.data() + at;
        std::array<float, 480> out{}, again{}, spoiled{};
        for (auto const& [input, inSize, output, outSize] :
             {std::tuple{in, 440u, spoiled.data(), 480u},
              {in, 441u, spoiled.data(), 0u},
              {static_cast<float const*>(nullptr), 441u, spoiled.data(), 480u},
              {in, 441u, static_cast<float*>(nullptr), 480u}})
            expectError(1, "ERROR input dataSize or output dataSize is wrong \n " + sizes,
                        talvoAudioNcCleanAmbientNoiseFloat, disturbed[0], input, inSize, output, outSize);
        expectError(
            1,
            "ERROR input dataSize or output dataSize or pointers of inputData output Data is wrong\n " +
                sizes,
            talvoAudioNcCleanAmbientNoiseInt16, disturbed[0], s16, 1u, s16, 480u);
        EXPECT_EQ(talvoAudioNoiseDbFrameFloat(disturbed[2], in, 440), -2.0f);
        expectError(-3,
                    AllOf(HasSubstr("output Data is wrong\n input size must be 441\n"),
                          HasSubstr("file talvo_audio_sdk/session Line"),
                          EndsWith("Function frameNoiseDB\n messege ERROR in input values\n")),
                    talvoAudioNoiseDbFrameInt16, disturbed[2], nullptr, 441u);
        expectError(
            -4,
            "ERROR input dataSize or output dataSize is wrong \n input size must be 441\n output size "
            "must be 0\nTHE CLEANING ERROR OUTPUT result -2\n" +
                std::string(wrongSessionText),
            talvoAudioVadFrameFloat, disturbed[1], in, 442u);
        expectError(-3, EndsWith("Function frameVad\n messege ERROR in input values\n"),
                    talvoAudioVadFrameInt16, disturbed[1], s16, 0u);

        ASSERT_EQ(talvoAudioNcCleanAmbientNoiseFloat(straight[0], in, 441, out.data(), 480), 0);
        ASSERT_EQ(talvoAudioNcCleanAmbientNoiseFloat(disturbed[0], in, 441, again.data(), 480), 0);
        EXPECT_EQ(out, again);
        EXPECT_EQ(talvoAudioVadFrameFloat(straight[1], in, 441),
                  talvoAudioVadFrameFloat(disturbed[1], in, 441));
        EXPECT_EQ(talvoAudioNoiseDbFrameFloat(straight[2], in, 441),
                  talvoAudioNoiseDbFrameFloat(disturbed[2], in, 441));
    }
}

} // namespace
