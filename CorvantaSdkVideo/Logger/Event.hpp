#pragma once

#include <string_view>

namespace corvanta {

/// What a log record is about; its name is the record's tag.
enum class Event {
    initVideo,
    initEditVideoScreen,
    getAllRequest,
    clearNoise,
    compareVideo,
    getInfo,
    createThumbnail,
    editVideo,
    createMergeBuilder,
    createConcatBuilder,
    createEncodeBuilder,
    validateAuth,
    insertRequest,
    updateRequest,
    getRequestById,
    processRequest,
    cancelRequest,
    mergeRequest,
    mergeVideoAndAudioFailed,
    streamRequestWithStatus,
    streamRequestWithID,
    deleteRequest,
};

std::string_view name(Event event);

} // namespace corvanta
