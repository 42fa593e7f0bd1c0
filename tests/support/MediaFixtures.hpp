#pragma once

#include "support/TemporaryDirectory.hpp"

#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>

/// Small media files made by ffmpeg, and what a test reads back from the files that the module wrote.
namespace corvanta::test {

/// One video stream. `source` is a lavfi source without size, rate and duration: "testsrc2", "smptebars",
/// "color=c=red".
struct Picture {
    std::string source = "testsrc2";
    int width = 160;
    int height = 120;
    std::string rate = "30";
    /// Absent: as long as the clip.
    std::optional<double> seconds = {};
};

/// One audio stream, a sine tone.
struct Sound {
    double frequency = 440;
    int sampleRate = 48000;
    std::string layout = "stereo";
    /// Absent: as long as the clip.
    std::optional<double> seconds = {};
    /// An ISO 639-2 code, such as "fra".
    std::string language = {};
};

/// What a clip is made of. The streams stand in the file as they stand here, pictures first.
struct Clip {
    double seconds = 1;
    std::vector<Picture> pictures = {Picture{}};
    std::vector<Sound> sounds = {Sound{}};
    /// The extension, which chooses the container.
    std::string container = "mp4";
    /// Output options, separated by blanks.
    std::string codecs =
        "-c:v libx264 -preset ultrafast -crf 16 -bf 0 -g 30 -pix_fmt yuv420p -c:a aac -b:a 96k";
    /// Whether an upright cover image stands behind the streams.
    bool cover = false;
    /// Degrees of the display matrix as ffprobe states them: a phone held upright writes -90.
    int rotation = 0;
};

/// The file of that clip, made at the first call in this process and kept until the process ends; don't
/// change it. Throws std::runtime_error if ffmpeg refuses.
std::string makeClip(const Clip& clip);

/// Runs "ffmpeg" or "ffprobe" and gives its standard output. Throws std::runtime_error with the tool's log if
/// it fails.
std::string runTool(std::string_view tool, const std::vector<std::string>& arguments);

/// What ffprobe tells of a file's streams "v", "a:0" and so on, such as each "packet=pts_time"; NaN where it
/// knows none.
std::vector<double> ffprobeNumbers(const std::string& path, const std::string& stream,
                                   const std::string& entries);

/// Words between blanks.
std::vector<std::string> wordsOf(std::string_view text);

/// The module's own probe of a file.
CorvantaSdkVideoInformation probed(const std::string& path);

/// 0 to 255 each.
struct Colour {
    double red = 0;
    double green = 0;
    double blue = 0;
};

/// Whether no component differs by more than `tolerance`.
bool isNear(const Colour& left, const Colour& right, double tolerance = 24);
std::ostream& operator<<(std::ostream& stream, const Colour& colour);

/// A part of a picture, in fractions of its sides.
struct Region {
    double left = 0;
    double top = 0;
    double right = 1;
    double bottom = 1;
};

/// A decoded frame as it is shown: the display matrix is applied.
struct Frame {
    int width = 0;
    int height = 0;
    std::string rgb;

    Colour mean(const Region& region = {}) const;
};

/// Reads the PPM image at `offset`, which is moved behind it. Throws std::runtime_error if there is none.
Frame frameFromPPM(std::string_view images, std::size_t& offset);

/// The first frame at or after `seconds`. Throws std::runtime_error if there is none.
Frame frameAt(const std::string& path, double seconds, int videoTrack = 0);

/// The mean colour of that frame.
Colour meanColour(const std::string& path, double seconds, const Region& region = {}, int videoTrack = 0);

} // namespace corvanta::test
