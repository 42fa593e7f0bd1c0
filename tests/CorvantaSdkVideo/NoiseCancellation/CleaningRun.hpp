#pragma once

#include "support/MediaFixtures.hpp"
#include "support/RecordedLog.hpp"
#include "support/ScopedVariable.hpp"
#include "support/UserFolders.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <platform/Directories.hpp>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace corvanta::test {

/// The folders and the login that cleaning works with.
class CleaningRun {
  public:
    /// Cleans with an engine of the public interface and gives the output's path.
    std::string clean(const std::string& input, const std::string& output) const {
        return clean(CorvantaSdkVideo->engine(), input, output);
    }
    std::string clean(const std::shared_ptr<CorvantaSdkVideoNoiseCancellationEngine>& engine,
                      const std::string& input, const std::string& output) const {
        const ScopedVariable temporary("TMPDIR", scratch_.path());
        return runBlocking(engine->clearNoiseForFile(CorvantaSdkVideoFile(URL::fromFilePath(input)),
                                                     CorvantaSdkVideoFileDescriptor::custom(output)))
            .fileURL.path();
    }

    /// The names of the files that runs have left in the temporary and the documents directory.
    std::vector<std::string> leftOver() const {
        std::vector<std::string> names;
        for (const std::filesystem::path& folder :
             {scratch_.path(), std::filesystem::path(Directories::documents().path())}) {
            for (const auto& entry : std::filesystem::directory_iterator(folder)) {
                names.push_back(entry.path().filename());
            }
        }
        return names;
    }

    std::string file(const std::string& name) const { return user_.file(name); }
    const std::filesystem::path& scratch() const { return scratch_.path(); }
    RecordedLog& log() { return log_; }

  private:
    UserFolders user_;
    TemporaryDirectory scratch_;
    RecordedLog log_;
};

} // namespace corvanta::test
