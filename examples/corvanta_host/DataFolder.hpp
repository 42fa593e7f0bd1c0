#pragma once

#include <filesystem>
#include <optional>
#include <string>

/// The folder in which the module keeps requests, and files while it works. Where the user's own can't be
/// written to, as in a home that is read-only, a temporary one takes its place for as long as the object
/// lives. To be made before the module is used, and before there are threads.
class DataFolder {
  public:
    DataFolder();
    DataFolder(const DataFolder&) = delete;
    DataFolder& operator=(const DataFolder&) = delete;
    ~DataFolder();

    /// Why the user's own folder can't be used, and which it is; nothing if it can.
    static const std::optional<std::string>& obstacle();

    /// Throws Refusal where requests don't outlast this run.
    static void requireLasting();

  private:
    std::filesystem::path temporary_;
};
