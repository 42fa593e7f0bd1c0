#pragma once

#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>
#include <platform/URL.hpp>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace corvanta {

/// How a command text writes a path. The texts are fixed and protect little.
enum class PathForm {
    /// `ffmpegFormatted(path)`
    quoted,
    /// The same, in a template that is filled in from left to right: "{trimStart}" would be replaced in it.
    quotedInTemplate,
    /// The same, for the image writer, which reads "%d" as a frame number and cuts a name of 1024 bytes.
    quotedImage,
    /// `ffmpegFormatted(absoluteString)`
    quotedURL,
    /// The URL's text as a word; of a "file" URL the runner makes the path.
    bareURL,
    /// The path of the list file as a word.
    listFile,
    /// The path as it is, behind "file " in a list file.
    listed,
};

/// The paths of one command. A path that its text can hold goes into it as it is; any other file gets a
/// second name that can be held: a link for what is read, and for what is written a plain name beside the
/// target, reached through a link of the folder. The links live as long as this object.
///
/// All operations throw std::system_error for a path that names no file (empty, or with a NUL byte in it) and
/// for a link that can't be made.
class CommandPaths {
  public:
    CommandPaths() = default;
    CommandPaths(const CommandPaths&) = delete;
    CommandPaths& operator=(const CommandPaths&) = delete;
    /// An output that hasn't got its name by `finish` gets it if nothing has that name, as ffmpeg itself
    /// leaves what a failed run has written; an older file stays.
    ~CommandPaths();

    /// A file that the command reads.
    URL input(const URL& file, PathForm form);
    /// Probed files, whose records the command is made from.
    std::vector<CorvantaSdkVideoInformation> inputs(std::vector<CorvantaSdkVideoInformation> files,
                                                    PathForm form);

    /// The one file that the command is run for; to be asked for after all inputs. Throws also if it is one
    /// of them, links included: ffmpeg would empty it before it has read it.
    URL output(const URL& file, PathForm form);

    /// A temporary file with a plain name, in whatever folder. Whoever runs the command removes it.
    URL temporary(const URL& file, PathForm form);

    /// The run has succeeded: gives the output its name, in place of an older file. Throws std::system_error.
    void finish();

  private:
    std::filesystem::path makeLink(const std::filesystem::path& to, const std::string& extension);

    std::vector<std::string> inputs_;
    /// Made at the first use.
    std::filesystem::path linkFolder_;
    std::size_t links_ = 0;
    /// Of an output with a second name; `target_` is empty otherwise.
    std::filesystem::path written_;
    std::filesystem::path target_;
};

} // namespace corvanta
