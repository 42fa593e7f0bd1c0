#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>

#include <array>
#include <utility>

namespace corvanta {

namespace {

constexpr auto caseNames = std::to_array<std::string_view>({
    "invalidInputFiles",
    "configurationError",
    "unableToProcessInput",
    "unableToProcessOutput",
    "processingInProgress",
    "userNotAuthenticated",
    "invalidFile",
    "unableToProcessFile",
    "missingVideoTrackToMerge",
    "unknownVideoCodec",
    "unknownAudioCodec",
    "mergeFailed",
    "concatFailed",
    "encodingFailed",
    "getInformationFailed",
    "notFoundVideo",
    "unableToDeleteExistingThumbnail",
    "invalidThumbnailWidth",
    "invalidThumbnailHeight",
    "invalidResolution",
    "invalidPositionInVideo",
    "thumbnailGenerationFailed",
    "invalidTrimRange",
    "trimFailed",
    "operationStillsInProgress",
    "operationAlreadyCompleted",
    "operationNotFound",
    "operationMustBeProcessingToBeCancelled",
});

constexpr auto reasonNames = std::to_array<std::string_view>({
    "differentResolutions",
    "differentAudioLayers",
    "differentCodecs",
    "inputContainsNonExistingFiles",
    "noMetadataGenerated",
    "notEnoughVideos",
    "differentFrameRates",
    "differentVideoTracks",
    "differentAudioTracks",
    "differentFormats",
});

constexpr int firstPlainCode = static_cast<int>(reasonNames.size());

} // namespace

CorvantaSdkVideoError::CorvantaSdkVideoError(Case plain, std::string details)
    : CodedError(std::move(details)), case_(plain), name_(caseNames.at(static_cast<std::size_t>(plain))) {}

CorvantaSdkVideoError::CorvantaSdkVideoError(InvalidInputFilesReason reason, std::string details)
    : CodedError(std::move(details)), case_(Case::invalidInputFiles), reason_(reason), name_(caseNames[0]) {
    name_ += '(';
    name_ += reasonNames.at(static_cast<std::size_t>(reason));
    name_ += ')';
}

std::string_view CorvantaSdkVideoError::description() const {
    return case_ == Case::trimFailed ? "An error occurred while editing the video. Please try again."
                                     : "An error occurred. Please try again.";
}

int CorvantaSdkVideoError::code() const {
    return reason_ ? static_cast<int>(*reason_) : firstPlainCode - 1 + static_cast<int>(case_);
}

} // namespace corvanta
