#pragma once

#include "support/MediaFixtures.hpp"
#include "support/RecordedLog.hpp"
#include "support/UserFolders.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <platform/Directories.hpp>

namespace corvanta::test {

/// The folders and the login that cleaning works with.
class CleaningRun {
  public:
    /// Cleans with an engine of the public interface and gives the output's path.
    std::string clean(const std::string& input, const std::string& output,
                      const CorvantaSdkVideoNoiseCancellationOptions& options = {}) const {
        return clean(CorvantaSdkVideo->engine(), input, output, options);
    }
    std::string clean(const std::shared_ptr<CorvantaSdkVideoNoiseCancellationEngine>& engine,
                      const std::string& input, const std::string& output,
                      const CorvantaSdkVideoNoiseCancellationOptions& options = {}) const {
        const ScopedVariable temporary("TMPDIR", scratch_.path());
        return runBlocking(engine->clearNoiseForFile(CorvantaSdkVideoFile(URL::fromFilePath(input)),
                                                     CorvantaSdkVideoFileDescriptor::custom(output), options))
            .fileURL.path();
    }

    /// The names of the files that runs have left in the temporary and the documents directory.
    std::vector<std::string> leftOver() const {
        return namesIn({scratch_.path(), Directories::documents().path()});
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
