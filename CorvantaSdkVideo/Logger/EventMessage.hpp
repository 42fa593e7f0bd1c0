#pragma once

#include <platform/URL.hpp>
#include <platform/UUID.hpp>

#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvanta {

/// The text of a log record. A URL prints as its absolute text, an error as its default description, a status
/// by the name of its case.
class EventMessage {
  public:
    static EventMessage getRequestsBy(std::string_view status);
    static EventMessage clearNoise(const URL& videoPath, const URL& resultPath);
    static EventMessage clearNoiseFailed(const URL& videoPath, const std::exception& error);
    static EventMessage compare(const std::vector<URL>& videoPaths);
    static EventMessage compareFailed(const std::exception& error);
    static EventMessage getInfo(const URL& videoPath);
    static EventMessage getInfoFailed(const URL& videoPath, const std::exception& error);
    static EventMessage createThumbnail(const URL& videoPath);
    static EventMessage createThumbnailFailed(const URL& videoPath, const std::exception& error);
    static EventMessage editVideo(const URL& videoPath);
    static EventMessage editVideoFailed(const std::exception& error);
    static EventMessage insertRequest(const UUID& id);
    static EventMessage updateRequest(const UUID& id);
    static EventMessage deleteRequest(const UUID& id);
    static EventMessage getRequestBy(const UUID& id);
    static EventMessage streamRequestsBy(std::optional<std::string_view> status);
    static EventMessage streamRequest(const UUID& id);
    static EventMessage processRequest(const UUID& id);
    static EventMessage cancelRequest(const UUID& id);
    static EventMessage mergeRequestFailed(const std::exception& error);
    static EventMessage mergeVideoAndAudioFailed(const std::exception& error);
    static EventMessage insertRequestFailed(const std::exception& error);
    /// Prints the error's own text instead of its description.
    static EventMessage processRequestFailed(const std::exception& error);
    static EventMessage encoderFailed(std::string_view encoder, std::string_view next,
                                      const std::exception& error);
    static EventMessage encoderChosen(const UUID& id, std::string_view encoder);
    static EventMessage initVideoModule();
    /// Prints the reason as it is given.
    static EventMessage openStoreFailed(const URL& storeURL, std::string_view reason);
    static EventMessage initEditVideoScreen();
    static EventMessage closeEditVideoScreen();
    static EventMessage createMergeBuilder();
    static EventMessage createConcatBuilder();
    static EventMessage createEncodeBuilder();
    static EventMessage notAuthenticated();

    const std::string& message() const { return text_; }
    /// What the error that the text tells of was about; empty for a text without one.
    const std::string& details() const { return details_; }

  private:
    explicit EventMessage(std::string text, std::string details = {})
        : text_(std::move(text)), details_(std::move(details)) {}

    std::string text_;
    std::string details_;
};

} // namespace corvanta
