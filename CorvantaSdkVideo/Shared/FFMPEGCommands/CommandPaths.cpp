#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandPaths.hpp>

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/CommandFormatting.hpp>
#include <platform/Directories.hpp>
#include <platform/FileManager.hpp>
#include <platform/UUID.hpp>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <system_error>

#include <sys/stat.h>

namespace corvanta {

namespace fs = std::filesystem;

namespace {

bool holdsAny(std::string_view text, std::initializer_list<std::string_view> parts) {
    return std::ranges::any_of(parts, [text](std::string_view part) { return text.find(part) != text.npos; });
}

bool namesProtocol(std::string_view path) { return path.substr(0, path.find('/')).find(':') != path.npos; }

// Whether ffmpeg reads a word as the name of a file, and as no option.
bool isFileName(std::string_view path) { return path.front() != '-' && !namesProtocol(path); }

bool isQuotable(const std::string& path) {
    return isFileName(path) && path.find('"') == path.npos &&
           removingPercentEncoding(path).value_or(path) == path;
}

bool isPlainImageName(std::string_view path) {
    for (std::size_t percent = path.find('%'); percent != path.npos; percent = path.find('%', percent + 1)) {
        const std::size_t conversion = path.find_first_not_of("0123456789", percent + 1);
        if (conversion != path.npos && path[conversion] == 'd') {
            return false;
        }
    }
    return path.size() < 1024;
}

bool isQuotableURL(const URL& file, const std::string& path) {
    const auto written = removingPercentEncoding(file.absoluteString());
    return written && written->find('"') == written->npos &&
           ((*written == path && !namesProtocol(path)) || *written == "file:" + path ||
            *written == "file://" + path);
}

// What a word, and a line of a list, would end at or take away.
bool isBare(std::string_view path) { return path.find_first_of(" \t\r\n'\"\\") == path.npos; }

bool canHold(PathForm form, const URL& file, const std::string& path) {
    switch (form) {
    case PathForm::quoted:
        return isQuotable(path);
    case PathForm::quotedInTemplate:
        return isQuotable(path) && !holdsAny(path, {"{trimStart}", "{trimEnd}", "{rotationMetadata}",
                                                    "{volumeCommand}", "{outputFile}"});
    case PathForm::quotedImage:
        return isQuotable(path) && isPlainImageName(path);
    case PathForm::quotedURL:
        return isQuotableURL(file, path);
    case PathForm::bareURL:
        return isFileName(path) && (file.isFileURL() || file.absoluteString() == path);
    case PathForm::listFile:
        return isFileName(path) && isBare(path) && !holdsAny(path, {"{output}"});
    case PathForm::listed:
        // A relative path would be taken from the list's folder.
        return path.starts_with('/') && isBare(path);
    }
    return false;
}

bool isPlain(std::string_view path) {
    return std::ranges::all_of(path, [](unsigned char character) {
        return std::isalnum(character) != 0 ||
               std::string_view("/._-").find(static_cast<char>(character)) != std::string_view::npos;
    });
}

// ffmpeg chooses the container by it.
std::string plainExtension(const URL& file) {
    const std::string extension = file.pathExtension();
    constexpr std::size_t longest = 16;
    return extension.empty() || extension.size() > longest || !isPlain(extension) ? "" : "." + extension;
}

std::string checkedPath(const URL& file) {
    std::string path = file.path();
    if (path.empty() || path.find('\0') != path.npos) {
        throw std::system_error(std::make_error_code(std::errc::invalid_argument),
                                "\"" + path.substr(0, path.find('\0')) +
                                    "\": this name can't be written into a command");
    }
    return path;
}

// A new folder of this user's alone whose path every text can hold.
fs::path makeLinkFolder() {
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    std::error_code ignored;
    for (const fs::path& base :
         {fs::path(runtime != nullptr ? runtime : ""), fs::temp_directory_path(ignored),
          fs::path(Directories::documents().path()), fs::path("/tmp")}) {
        fs::path folder = base / uuidString(makeUUID());
        if (folder.is_absolute() && isPlain(folder.native()) && mkdir(folder.c_str(), S_IRWXU) == 0) {
            return folder;
        }
    }
    throw std::system_error(errno, std::generic_category(), "a folder for links");
}

} // namespace

CommandPaths::~CommandPaths() {
    std::error_code ignored;
    if (!target_.empty()) {
        if (fs::exists(fs::symlink_status(target_, ignored))) {
            fs::remove(written_, ignored);
        } else {
            fs::rename(written_, target_, ignored);
        }
    }
    if (!linkFolder_.empty()) {
        fs::remove_all(linkFolder_, ignored);
    }
}

URL CommandPaths::input(const URL& file, PathForm form) {
    const std::string path = checkedPath(file);
    inputs_.push_back(path);
    return canHold(form, file, path)
               ? file
               : URL::fromFilePath(makeLink(fs::absolute(path), plainExtension(file)).native());
}

std::vector<CorvantaSdkVideoInformation> CommandPaths::inputs(std::vector<CorvantaSdkVideoInformation> files,
                                                              PathForm form) {
    for (CorvantaSdkVideoInformation& file : files) {
        file.url = input(file.url, form);
        file.path = file.url.absoluteString();
    }
    return files;
}

URL CommandPaths::output(const URL& file, PathForm form) {
    const std::string path = checkedPath(file);
    if (std::ranges::any_of(inputs_,
                            [&](const std::string& input) { return FileManager::isSameFile(input, path); })) {
        throw std::system_error(std::make_error_code(std::errc::invalid_argument),
                                "the output is the input " + path);
    }
    if (canHold(form, file, path)) {
        return file;
    }
    target_ = fs::absolute(path);
    written_ = target_.parent_path() / (uuidString(makeUUID()) + plainExtension(file));
    return URL::fromFilePath((makeLink(target_.parent_path(), "") / written_.filename()).native());
}

URL CommandPaths::temporary(const URL& file, PathForm form) {
    const fs::path path = checkedPath(file);
    return canHold(form, file, path)
               ? file
               : URL::fromFilePath((makeLink(path.parent_path(), "") / path.filename()).native());
}

void CommandPaths::finish() {
    if (!target_.empty()) {
        fs::rename(written_, target_);
        target_.clear();
    }
}

fs::path CommandPaths::makeLink(const fs::path& to, const std::string& extension) {
    if (linkFolder_.empty()) {
        linkFolder_ = makeLinkFolder();
    }
    fs::path link = linkFolder_ / (std::to_string(links_++) + extension);
    fs::create_symlink(to, link);
    return link;
}

} // namespace corvanta
