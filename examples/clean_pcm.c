/* Cleans raw 16-bit mono sound: clean_pcm MODEL [RATE] <noisy.raw >clean.raw */
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
#include <talvo_audio_sdk.h>
#include <unistd.h>

enum { DURATION = 10, LARGEST_FRAME = 960 };

int main(int argc, char** argv) {
    wchar_t path[4096];
    short frame[LARGEST_FRAME];
    int const rate = argc > 2 ? atoi(argv[2]) : 16000;
    setlocale(LC_CTYPE, "");
    if (argc < 2 || mbstowcs(path, argv[1], 4096) >= 4096) {
        fprintf(stderr, "usage: clean_pcm MODEL [RATE] <noisy.raw >clean.raw\n");
        return 2;
    }
    /* The library prints to standard output, which is the sound's here. */
    FILE* const sound = fdopen(dup(STDOUT_FILENO), "wb");
    if (sound == NULL || dup2(STDERR_FILENO, STDOUT_FILENO) < 0)
        return 1;

    if (talvoAudioGlobalInit(L"") != 0 || talvoAudioSetModel(path, "model") != 0)
        return 1;
    void* const session =
        talvoAudioNcCreateSession((enum TalvoAudioSamplingRate)rate, (enum TalvoAudioSamplingRate)rate,
                                  TALVO_AUDIO_DURATION_10, "model");
    if (session == NULL)
        return 1;

    unsigned const size = (unsigned)(rate * DURATION / 1000);
    for (size_t got; (got = fread(frame, sizeof *frame, size, stdin)) > 0;) {
        for (size_t i = got; i < size; ++i)
            frame[i] = 0;
        if (talvoAudioNcCleanAmbientNoiseInt16(session, frame, size, frame, size) != 0 ||
            fwrite(frame, sizeof *frame, got, sound) != got)
            return 1;
    }
    talvoAudioNcCloseSession(session);
    talvoAudioGlobalDestroy();
    return fclose(sound) == 0 ? 0 : 1;
}
