#pragma once

#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>

#include <string>
#include <vector>

namespace corvanta {

/// Whether a path stands in a list file, or as a bare word in a command, as it is: both end it at a blank,
/// and the list's reader takes quotes and backslashes away.
bool isBarePath(const std::string& path);

/// Gives files whose paths can't stand in a list file a second name that can: a symbolic link in the
/// documents directory, removed with this object.
class ConcatInputLinks {
  public:
    /// Throws std::system_error if a link can't be made.
    explicit ConcatInputLinks(std::vector<CorvantaSdkVideoInformation> inputs);
    ConcatInputLinks(const ConcatInputLinks&) = delete;
    ConcatInputLinks& operator=(const ConcatInputLinks&) = delete;
    ~ConcatInputLinks();

    /// The files in their order, each under a name that can be listed.
    const std::vector<CorvantaSdkVideoInformation>& inputs() const { return inputs_; }

  private:
    void removeLinks() noexcept;

    std::vector<CorvantaSdkVideoInformation> inputs_;
    std::vector<std::string> links_;
};

} // namespace corvanta
