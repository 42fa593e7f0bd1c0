#include "talvo_audio_sdk.h"

#include "talvo_audio_sdk/instance.hpp"
#include "utils/printed_line.hpp"
#include "utils/talvo_exception.hpp"

#include <algorithm>
#include <array>
#include <exception>
#include <iostream>

using TALVO::TALVO_AUDIO::TalvoAudioInstanceT;
using TALVO::TALVO_AUDIO::TalvoAudioSessionT;
using TALVO::TALVO_AUDIO::TalvoAudioSessionType;
using TALVO::UTILS::TalvoException;
using MODE = TalvoAudioInstanceT::MODE;

namespace {

/// Runs a call and turns whatever it throws into a code made by `failure` from -1, -2 or -3.
template <class Call, class Failure>
auto guarded(Call call, Failure failure) noexcept -> decltype(call()) {
    try {
        return call();
    } catch (TalvoException const& error) {
        std::cerr << error.what() << std::endl;
        return failure(-3);
    } catch (std::exception const& error) {
        std::cerr << error.what() << std::endl;
        return failure(-2);
    } catch (...) {
        std::cerr << "UNDEFINED EXCEPTION" << std::endl;
        return failure(-1);
    }
}

template <class Call>
int guardedCode(Call call) noexcept {
    return guarded(call, [](int code) { return code; });
}

template <class Call>
float guardedFloat(Call call) noexcept {
    return guarded(call, [](int code) { return static_cast<float>(code); });
}

bool isRate(TalvoAudioSamplingRate rate) {
    constexpr std::array rates{8000, 12000, 16000, 24000, 32000, 44100, 48000, 88200, 96000};
    return std::ranges::find(rates, static_cast<int>(rate)) != rates.end();
}

/// Creates a session unless one of its rates is none of the listed ones.
template <class Create>
void* createSession(std::initializer_list<TalvoAudioSamplingRate> rates, Create create) noexcept {
    return guarded(
        [&]() -> void* {
            if (!std::ranges::all_of(rates, isRate)) {
                std::cerr << "Unsupported Sampling rates!" << std::endl;
                return nullptr;
            }
            return create(*TalvoAudioInstanceT::Instance(MODE::access));
        },
        [](int) -> void* { return nullptr; });
}

int closeSession(void* session, TalvoAudioSessionType kind) {
    TalvoAudioInstanceT* const pInstance = TalvoAudioInstanceT::Instance(MODE::access);
    TALVO_ASSERT(pInstance, "pInstance");
    if (pInstance->getSessionType(session) != kind)
        TALVO_THROW("Trying to close a non-existant session or session of incompatible type");
    return pInstance->destroySession(session) ? 0 : 1;
}

void reportWrongSession() {
    std::cerr << "The Session pointer is wrong insert existing session pointer" << std::endl;
}

/// The session behind a handle, or null when it isn't one of that kind.
TalvoAudioSessionT* sessionOf(void* handle, TalvoAudioSessionType kind) {
    TalvoAudioInstanceT* const pInstance = TalvoAudioInstanceT::Instance(MODE::access);
    TALVO_ASSERT(pInstance, "pInstance");
    return pInstance->getSessionType(handle) == kind ? static_cast<TalvoAudioSessionT*>(handle) : nullptr;
}

constexpr float wrongSession = -4.0f;

int resetSession(void* handle) {
    TalvoAudioSessionT* const session = sessionOf(handle, TalvoAudioSessionType::noiseLevel);
    if (session == nullptr)
        TALVO_THROW("Trying to reset a non-existant session or session of incompatible type");
    return session->resetNoiseDBSession();
}

template <class Sample>
int cleanFrame(void* handle, Sample const* in, unsigned inSize, Sample* out, unsigned outSize) noexcept {
    return guardedCode([&] {
        TalvoAudioSessionT* const session = sessionOf(handle, TalvoAudioSessionType::noiseCleaning);
        if (session == nullptr) {
            reportWrongSession();
            return 2;
        }
        return session->cleanNoise(in, inSize, out, outSize) ? 0 : 1;
    });
}

/// What `frame` measures on the session behind a handle of that kind.
template <class Frame>
float measuredFrame(void* handle, TalvoAudioSessionType kind, Frame frame) noexcept {
    return guardedFloat([&] {
        TalvoAudioSessionT* const session = sessionOf(handle, kind);
        if (session == nullptr) {
            reportWrongSession();
            return wrongSession;
        }
        return frame(*session);
    });
}

} // namespace

int talvoAudioGlobalInit(wchar_t const* workingPath) {
    return guardedCode([&] {
        TalvoAudioInstanceT::Instance(MODE::create, workingPath);
        return 0;
    });
}

void talvoAudioSetPrint(TalvoAudioPrint print, void* context) { TALVO::UTILS::setPrint(print, context); }

int talvoAudioGlobalDestroy() {
    return guardedCode([] {
        TalvoAudioInstanceT::Instance(MODE::destroy);
        return 0;
    });
}

int talvoAudioSetModel(wchar_t const* weightFilePath, char const* modelName) {
    return guardedCode([&] {
        if (weightFilePath == nullptr) {
            TALVO::UTILS::printLine("WARRNING talvoAudioSetModel FUNCTION CALL with nullptr");
            return 2;
        }
        TalvoAudioInstanceT* const pInstance = TalvoAudioInstanceT::Instance(MODE::access);
        std::scoped_lock const lock(TalvoAudioInstanceT::mutexForInputs_);
        return pInstance->addWeightWithControlFile(weightFilePath, modelName) ? 0 : 2;
    });
}

void* talvoAudioNcCreateSession(TalvoAudioSamplingRate inRate, TalvoAudioSamplingRate outRate,
                                TalvoAudioFrameDuration duration, char const* modelName) {
    return createSession({inRate, outRate}, [&](TalvoAudioInstanceT& instance) {
        return instance.createNCSession(inRate, outRate, duration, modelName);
    });
}

void* talvoAudioVadCreateSession(TalvoAudioSamplingRate rate, TalvoAudioFrameDuration duration,
                                 char const* modelName) {
    return createSession({rate}, [&](TalvoAudioInstanceT& instance) {
        return instance.createVADSession(rate, duration, modelName);
    });
}

void* talvoAudioNoiseDbCreateSession(TalvoAudioSamplingRate rate, TalvoAudioFrameDuration duration,
                                     char const* modelName) {
    return createSession({rate}, [&](TalvoAudioInstanceT& instance) {
        return instance.createNoiseDBSession(rate, duration, modelName);
    });
}

int talvoAudioNcCloseSession(void* session) {
    return guardedCode([&] { return closeSession(session, TalvoAudioSessionType::noiseCleaning); });
}

int talvoAudioVadCloseSession(void* session) {
    return guardedCode([&] { return closeSession(session, TalvoAudioSessionType::voiceActivity); });
}

int talvoAudioNoiseDbCloseSession(void* session) {
    return guardedCode([&] { return closeSession(session, TalvoAudioSessionType::noiseLevel); });
}

int talvoAudioNoiseDbResetSession(void* session) {
    return guardedCode([&] { return resetSession(session); });
}

int talvoAudioNcCleanAmbientNoiseInt16(void* session, short const* in, unsigned inSize, short* out,
                                       unsigned outSize) {
    return cleanFrame(session, in, inSize, out, outSize);
}

int talvoAudioNcCleanAmbientNoiseFloat(void* session, float const* in, unsigned inSize, float* out,
                                       unsigned outSize) {
    return cleanFrame(session, in, inSize, out, outSize);
}

float talvoAudioVadFrameInt16(void* session, short const* in, unsigned size) {
    return measuredFrame(session, TalvoAudioSessionType::voiceActivity,
                         [&](TalvoAudioSessionT& found) { return found.frameVad(in, size); });
}

float talvoAudioVadFrameFloat(void* session, float const* in, unsigned size) {
    return measuredFrame(session, TalvoAudioSessionType::voiceActivity, [&](TalvoAudioSessionT& found) {
        float const result = found.frameVad(in, size);
        if (result >= 0.0f && result <= 1.0f)
            return result;
        std::cerr << "THE CLEANING ERROR OUTPUT result " << result << std::endl;
        reportWrongSession();
        return wrongSession;
    });
}

float talvoAudioNoiseDbFrameInt16(void* session, short const* in, unsigned size) {
    return measuredFrame(session, TalvoAudioSessionType::noiseLevel,
                         [&](TalvoAudioSessionT& found) { return found.frameNoiseDB(in, size); });
}

float talvoAudioNoiseDbFrameFloat(void* session, float const* in, unsigned size) {
    return measuredFrame(session, TalvoAudioSessionType::noiseLevel,
                         [&](TalvoAudioSessionT& found) { return found.frameNoiseDB(in, size); });
}

int talvoAudioNcSetStrength(void* session, float strength) {
    return guardedCode([&] {
        TalvoAudioSessionT* const found = sessionOf(session, TalvoAudioSessionType::noiseCleaning);
        if (found == nullptr) {
            reportWrongSession();
            return 2;
        }
        return found->setStrength(strength) ? 0 : 1;
    });
}

int talvoAudioNcBackgroundSpeakerFixOnOff(void* session, bool on) {
    return guarded(
        [&] {
            TalvoAudioSessionT* const found = sessionOf(session, TalvoAudioSessionType::noiseCleaning);
            if (found == nullptr) {
                reportWrongSession();
                return 1;
            }
            return found->cleaner().background_speaker_fix_switch(on) ? 0 : 1;
        },
        [](int) { return 1; });
}
