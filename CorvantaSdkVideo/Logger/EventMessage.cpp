#include <CorvantaSdkVideo/Logger/EventMessage.hpp>

#include <platform/Errors.hpp>

namespace corvanta {

namespace {

std::string joined(const std::vector<URL>& urls) {
    std::string text;
    for (const URL& url : urls) {
        text += (text.empty() ? "" : ", ") + url.absoluteString();
    }
    return '[' + text + ']';
}

} // namespace

EventMessage EventMessage::getRequestsBy(std::string_view status) {
    return EventMessage("Get all requests called with status: " + std::string(status));
}

EventMessage EventMessage::clearNoise(const URL& videoPath, const URL& resultPath) {
    return EventMessage("Clear noise called with videoPath: " + videoPath.absoluteString() +
                        ", resultPath: " + resultPath.absoluteString());
}

EventMessage EventMessage::clearNoiseFailed(const URL& videoPath, const std::exception& error) {
    return EventMessage("Error clearing noise. " + videoPath.absoluteString() + ". " +
                            localizedDescription(error),
                        detailsOf(error));
}

EventMessage EventMessage::compare(const std::vector<URL>& videoPaths) {
    return EventMessage("Compare called with videoPaths: " + joined(videoPaths));
}

EventMessage EventMessage::compareFailed(const std::exception& error) {
    return EventMessage("Error comparing videos. " + localizedDescription(error), detailsOf(error));
}

EventMessage EventMessage::getInfo(const URL& videoPath) {
    return EventMessage("Get info called with videoPath: " + videoPath.absoluteString());
}

EventMessage EventMessage::getInfoFailed(const URL& videoPath, const std::exception& error) {
    return EventMessage("Error getting video info: " + videoPath.absoluteString() + ". " +
                            localizedDescription(error),
                        detailsOf(error));
}

EventMessage EventMessage::createThumbnail(const URL& videoPath) {
    return EventMessage("Create thumbnail called with videoPath: " + videoPath.absoluteString());
}

EventMessage EventMessage::createThumbnailFailed(const URL& videoPath, const std::exception& error) {
    return EventMessage("Error creating thumbnail: " + videoPath.absoluteString() + ". " +
                            localizedDescription(error),
                        detailsOf(error));
}

EventMessage EventMessage::editVideo(const URL& videoPath) {
    return EventMessage("Edit called with videoPath: " + videoPath.absoluteString());
}

EventMessage EventMessage::editVideoFailed(const std::exception& error) {
    return EventMessage("Error editing video. " + localizedDescription(error), detailsOf(error));
}

EventMessage EventMessage::insertRequest(const UUID& id) {
    return EventMessage("Insert called with video request: " + uuidString(id));
}

EventMessage EventMessage::updateRequest(const UUID& id) {
    return EventMessage("Update called with video request: " + uuidString(id));
}

EventMessage EventMessage::deleteRequest(const UUID& id) {
    return EventMessage("Delete called with video request: " + uuidString(id));
}

EventMessage EventMessage::getRequestBy(const UUID& id) {
    return EventMessage("Get called with id: " + uuidString(id));
}

EventMessage EventMessage::streamRequestsBy(std::optional<std::string_view> status) {
    return EventMessage("Stream requests with " +
                        (status ? "Optional(" + std::string(*status) + ")" : "nil"));
}

EventMessage EventMessage::streamRequest(const UUID& id) {
    return EventMessage("Stream requests with id " + uuidString(id));
}

EventMessage EventMessage::processRequest(const UUID& id) {
    return EventMessage("Process request with id: " + uuidString(id));
}

EventMessage EventMessage::cancelRequest(const UUID& id) {
    return EventMessage("Cancel request with id: " + uuidString(id));
}

EventMessage EventMessage::mergeRequestFailed(const std::exception& error) {
    return EventMessage("Merge requeset failed. " + localizedDescription(error), detailsOf(error));
}

EventMessage EventMessage::mergeVideoAndAudioFailed(const std::exception& error) {
    return EventMessage("Merge video and audio failed. " + localizedDescription(error), detailsOf(error));
}

EventMessage EventMessage::insertRequestFailed(const std::exception& error) {
    return EventMessage("Insert request failed. " + localizedDescription(error), detailsOf(error));
}

EventMessage EventMessage::processRequestFailed(const std::exception& error) {
    return EventMessage(std::string("Process request failed. ") + error.what(), detailsOf(error));
}

EventMessage EventMessage::encoderFailed(std::string_view encoder, std::string_view next,
                                         const std::exception& error) {
    return EventMessage("Encoding with " + std::string(encoder) + " failed, going on with " +
                            std::string(next),
                        detailsOf(error));
}

EventMessage EventMessage::encoderChosen(const UUID& id, std::string_view encoder) {
    return EventMessage("Request " + uuidString(id) + " was encoded with " + std::string(encoder));
}

EventMessage EventMessage::initVideoModule() { return EventMessage("Init video module"); }

EventMessage EventMessage::openStoreFailed(const URL& storeURL, std::string_view reason) {
    return EventMessage("Open store failed. " + storeURL.path() + ": " + std::string(reason));
}

EventMessage EventMessage::initEditVideoScreen() { return EventMessage("Init edit screen called"); }

EventMessage EventMessage::closeEditVideoScreen() { return EventMessage("Close Edit Video Screen"); }

EventMessage EventMessage::createMergeBuilder() { return EventMessage("Building merge builder"); }

EventMessage EventMessage::createConcatBuilder() { return EventMessage("Building concat builder"); }

EventMessage EventMessage::createEncodeBuilder() { return EventMessage("Building encode builder"); }

EventMessage EventMessage::notAuthenticated() {
    return EventMessage("Validate authentication failed: SDK not authenticated");
}

} // namespace corvanta
