#pragma once

#include <platform/Errors.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace corvanta {

/// Every failure that the module's own operations raise. A value: compare two with `==`. `details()` tells
/// which file, limit or line of ffmpeg's log it was about; a comparison doesn't look at them.
class CorvantaSdkVideoError : public CodedError {
  public:
    enum class Case {
        /// The videos don't fit the operation; `reason()` tells why.
        invalidInputFiles,
        /// The noise library session can't be started or ended.
        configurationError,
        /// The sound can't be extracted.
        unableToProcessInput,
        /// The output location gives no URL, or the sound can't be put back on the video.
        unableToProcessOutput,
        /// The noise engine is busy.
        processingInProgress,
        /// Nobody is logged in.
        userNotAuthenticated,
        /// A path is no URL, or a file is not audiovisual.
        invalidFile,
        /// The sound can't be cleaned.
        unableToProcessFile,
        /// The display transform can't be read: no video track, or the load failed.
        missingVideoTrackToMerge,
        unknownVideoCodec,
        unknownAudioCodec,
        mergeFailed,
        concatFailed,
        encodingFailed,
        /// A probe failed.
        getInformationFailed,
        /// A video is not there.
        notFoundVideo,
        unableToDeleteExistingThumbnail,
        invalidThumbnailWidth,
        invalidThumbnailHeight,
        /// A requested size is below the minimum.
        invalidResolution,
        invalidPositionInVideo,
        thumbnailGenerationFailed,
        invalidTrimRange,
        trimFailed,
        /// The request is being processed already.
        operationStillsInProgress,
        /// The request is complete.
        operationAlreadyCompleted,
        /// The request isn't stored, or has no running command to cancel.
        operationNotFound,
        /// Only a processing request can be cancelled.
        operationMustBeProcessingToBeCancelled,
    };
    using enum Case;

    enum class InvalidInputFilesReason {
        differentResolutions,
        differentAudioLayers,
        differentCodecs,
        inputContainsNonExistingFiles,
        noMetadataGenerated,
        notEnoughVideos,
        differentFrameRates,
        differentVideoTracks,
        differentAudioTracks,
        differentFormats,
    };

    /// A case without a reason: any but `invalidInputFiles`.
    explicit CorvantaSdkVideoError(Case plain, std::string details = {});
    /// The case `invalidInputFiles` with its reason.
    explicit CorvantaSdkVideoError(InvalidInputFilesReason reason, std::string details = {});

    Case kind() const { return case_; }
    /// Present exactly for `invalidInputFiles`.
    std::optional<InvalidInputFilesReason> reason() const { return reason_; }

    /// A text for people.
    std::string_view description() const;

    /// The name of the case, with its reason: "concatFailed", "invalidInputFiles(notEnoughVideos)".
    const char* what() const noexcept override { return name_.c_str(); }

    std::string domain() const override { return "CorvantaSdkVideoError"; }
    /// The reasons of `invalidInputFiles` are numbered from 0, the other cases in their order from 10.
    int code() const override;

    friend bool operator==(const CorvantaSdkVideoError& left, const CorvantaSdkVideoError& right) {
        return left.case_ == right.case_ && left.reason_ == right.reason_;
    }

  private:
    Case case_;
    std::optional<InvalidInputFilesReason> reason_;
    std::string name_;
};

} // namespace corvanta
