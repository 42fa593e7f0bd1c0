#ifndef TALVO_AUDIO_SDK_H
#define TALVO_AUDIO_SDK_H

/**
 * @file
 * Cleans speech of background noise, tells speech from silence and measures noise, frame by frame.
 *
 * The order of calls: talvoAudioGlobalInit, talvoAudioSetModel once or more, a create function, a
 * frame function for each frame of the stream, the close function, talvoAudioGlobalDestroy.
 *
 * Samples are mono, either 16-bit or float from -1 to 1. Every call takes exactly one frame of
 * rate * duration / 1000 samples, cut toward zero (44100 Hz at 15 ms: 661), and a cleaning call gives
 * exactly one back. The output comes late by the cleaner's and the resamplers' delay, and begins with
 * silence; nothing is ever dropped. A stream goes through one session from its start to its end.
 *
 * Errors: no exception leaves the library. The text of an error goes to standard error, of a warning
 * to standard output unless talvoAudioSetPrint says otherwise. Unless a function says otherwise it returns
 * one of
 *
 *      0  success
 *      1  refused: a wrong frame size, a session that could not be removed
 *      2  a wrong session, a null argument, a model that was not registered
 *     -1  an unknown exception
 *     -2  a standard exception, for example no memory
 *     -3  an exception of the library
 *
 * A model whose inner sizes contradict each other, and frame pairings that a model's version can't
 * serve, end the process with the text of the assertion that they break.
 *
 * Threads: a session serves one thread at a time. Different sessions may run on different threads,
 * also sessions of one model, and frame calls take no lock. Models may be set and sessions created
 * and closed on any thread while frame calls of other sessions run. Not allowed are closing or
 * resetting a session while a call on it runs, and talvoAudioGlobalDestroy beside any other call.
 */

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define TALVO_AUDIO_API __attribute__((visibility("default")))
#else
#define TALVO_AUDIO_API
#endif

#ifdef __cplusplus
#define TALVO_AUDIO_ENUM(name) enum name : int32_t
extern "C" {
#else
#define TALVO_AUDIO_ENUM(name) enum name
#endif

/** Samples a second. */
TALVO_AUDIO_ENUM(TalvoAudioSamplingRate){
    TALVO_AUDIO_RATE_8000 = 8000,   TALVO_AUDIO_RATE_12000 = 12000, TALVO_AUDIO_RATE_16000 = 16000,
    TALVO_AUDIO_RATE_24000 = 24000, TALVO_AUDIO_RATE_32000 = 32000, TALVO_AUDIO_RATE_44100 = 44100,
    TALVO_AUDIO_RATE_48000 = 48000, TALVO_AUDIO_RATE_88200 = 88200, TALVO_AUDIO_RATE_96000 = 96000};

/** Milliseconds. 15 and 32 are allowed only where neither side is resampled. */
TALVO_AUDIO_ENUM(TalvoAudioFrameDuration){TALVO_AUDIO_DURATION_10 = 10, TALVO_AUDIO_DURATION_15 = 15,
                                          TALVO_AUDIO_DURATION_20 = 20, TALVO_AUDIO_DURATION_30 = 30,
                                          TALVO_AUDIO_DURATION_32 = 32, TALVO_AUDIO_DURATION_40 = 40};

#ifndef __cplusplus
typedef enum TalvoAudioSamplingRate TalvoAudioSamplingRate;
typedef enum TalvoAudioFrameDuration TalvoAudioFrameDuration;
#endif

/**
 * Starts the library.
 * @param workingPath put in front of relative paths of models as it stands, so it should end in a
 *        separator; null is the empty path.
 * @return 0, or -3 when the library was already started, which leaves it as it was.
 */
TALVO_AUDIO_API int talvoAudioGlobalInit(wchar_t const* workingPath);

/**
 * Ends the library: all sessions and models go, and the handles of sessions become stale.
 * @return 0, or -3 when the library was not started.
 */
TALVO_AUDIO_API int talvoAudioGlobalDestroy(void);

/**
 * Registers a model, which stays until talvoAudioGlobalDestroy.
 * @param weightFilePath a weight file (".nmw" plain, ".tw" enciphered) or a control file (".cfg") that
 *        names one and adds settings. A weight file that was loaded before is not read again.
 * @param modelName a new name that is not empty, UTF-8.
 * @return 0 when it was registered, 2 when not (a null path, a name that is empty or taken, a file
 *         that can't be read, a setting given twice), -1, -2, -3 (not started, a text that isn't UTF-8).
 */
TALVO_AUDIO_API int talvoAudioSetModel(wchar_t const* weightFilePath, char const* modelName);

/**
 * Opens a cleaning session.
 * @param inRate,outRate rates of the frames given and taken; any other value gives null.
 * @param duration of the frames; 15 and 32 ms only where both rates are the model's own.
 * @param modelName a registered name. Null chooses by rate: the model with the highest sample rate not
 *        above inRate, else the last one registered.
 * @return the session's handle, or null with the reason on standard error.
 */
TALVO_AUDIO_API void* talvoAudioNcCreateSession(enum TalvoAudioSamplingRate inRate,
                                                enum TalvoAudioSamplingRate outRate,
                                                enum TalvoAudioFrameDuration duration, char const* modelName);

/**
 * Opens a voice activity session on a model made for it (version "VAD_0.0.1").
 * @param rate of the frames. 15 and 32 ms are allowed only at 16000 Hz with a model of that rate.
 * @param duration of the frames.
 * @param modelName as for talvoAudioNcCreateSession.
 * @return the session's handle, or null.
 */
TALVO_AUDIO_API void* talvoAudioVadCreateSession(enum TalvoAudioSamplingRate rate,
                                                 enum TalvoAudioFrameDuration duration,
                                                 char const* modelName);

/**
 * Opens a noise level session on a cleaning model of version "0.0.5".
 * @return the session's handle, or null. Parameters are those of talvoAudioVadCreateSession.
 */
TALVO_AUDIO_API void* talvoAudioNoiseDbCreateSession(enum TalvoAudioSamplingRate rate,
                                                     enum TalvoAudioFrameDuration duration,
                                                     char const* modelName);

/**
 * Close a session; its handle is stale after that.
 * @return 0, 1 when another thread closed it first, or -1, -2, -3. A handle that is null, unknown or
 *         of another kind gives -3 and closes nothing.
 */
TALVO_AUDIO_API int talvoAudioNcCloseSession(void* session);
TALVO_AUDIO_API int talvoAudioVadCloseSession(void* session);
TALVO_AUDIO_API int talvoAudioNoiseDbCloseSession(void* session);

/**
 * Begins a new measurement on a noise level session, as if it had just been opened; where its sound is
 * resampled, a sample or two from before the reset may still come through.
 * @return 1 on success, -3 for a handle that is null, unknown or of another kind, or -1, -2.
 */
TALVO_AUDIO_API int talvoAudioNoiseDbResetSession(void* session);

/**
 * Cleans one frame.
 * @param session a cleaning session's handle.
 * @param in,inSize inRate * duration / 1000 samples.
 * @param out,outSize outRate * duration / 1000 samples; may be the same memory as in.
 *        Samples beyond full scale are clipped. Floats that are not numbers count as silence.
 * @return 0; 1 for a wrong size or a null pointer, which leaves the stream as it was; 2 for a wrong
 *         session; -1, -2, -3.
 */
TALVO_AUDIO_API int talvoAudioNcCleanAmbientNoiseInt16(void* session, short const* in, unsigned inSize,
                                                       short* out, unsigned outSize);
TALVO_AUDIO_API int talvoAudioNcCleanAmbientNoiseFloat(void* session, float const* in, unsigned inSize,
                                                       float* out, unsigned outSize);

/**
 * Sets how much a cleaning session takes away, from the next frame on: what comes out is the cleaned sound
 * times the strength plus the sound as it came in, equally late, times the rest. A session begins with 1.
 * @param session a cleaning session's handle.
 * @param strength from 0, nothing, to 1, all that the model takes.
 * @return 0; 1 for any other strength, which changes nothing; 2 for a wrong session; -1, -2, -3.
 */
TALVO_AUDIO_API int talvoAudioNcSetStrength(void* session, float strength);

/**
 * Takes one line of the library's warnings and of its account of the models it reads: UTF-8, without the
 * line's end; some have a line feed within. Called from any thread, one call at a time; must not call the
 * library.
 */
typedef void (*TalvoAudioPrint)(char const* line, void* context);

/**
 * Sets where such lines go, for the process, before the library is initialised or at any later time.
 * @param print NULL: standard output, as at first.
 * @param context handed to each call of print; must live until another print is set.
 */
TALVO_AUDIO_API void talvoAudioSetPrint(TalvoAudioPrint print, void* context);

/**
 * The probability, 0 to 1, that a frame holds speech.
 * @param session a voice activity session's handle.
 * @param in,size rate * duration / 1000 samples.
 * @return the probability; -4 for a wrong session; -1, -2, -3 for exceptions. A wrong size or a null
 *         pointer gives -3 with 16-bit samples and -4 with floats, and leaves the stream as it was.
 */
TALVO_AUDIO_API float talvoAudioVadFrameInt16(void* session, short const* in, unsigned size);
TALVO_AUDIO_API float talvoAudioVadFrameFloat(void* session, float const* in, unsigned size);

/**
 * Measures the noise in a stream with one more frame of it.
 * @param session a noise level session's handle.
 * @param in,size rate * duration / 1000 samples.
 * @return the noise level in decibels relative to full scale: 10 log10 of the mean, over all of the
 *         model's frames since the session's start or its last reset, of the mean square of what the
 *         mask took away from the windowed frame, over 32768 squared; -120 at the lowest. It is so low
 *         until the first of the model's frames is complete. -4 for a wrong session; -1, -2, -3 for
 *         exceptions. A wrong size or a null pointer gives -3 with 16-bit samples and -2 with floats,
 *         and leaves the stream as it was. A level just below full scale can read like one of these
 *         codes; real noise stays far below.
 */
TALVO_AUDIO_API float talvoAudioNoiseDbFrameInt16(void* session, short const* in, unsigned size);
TALVO_AUDIO_API float talvoAudioNoiseDbFrameFloat(void* session, float const* in, unsigned size);

#ifdef __cplusplus
}

/**
 * Would switch the background speaker fix of a cleaning session, but no model's cleaner can switch it
 * while it runs: it stays as the model's settings made it. Only for C++.
 * @return 1 in all cases.
 */
TALVO_AUDIO_API int talvoAudioNcBackgroundSpeakerFixOnOff(void* session, bool on);
#endif

#endif
