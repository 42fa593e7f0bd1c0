#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoMergeTracks.hpp>

#include <string>

/// Texts of the command line that select streams. All throw std::invalid_argument for a text of another form.

/// "FILE:STREAM,FILE:STREAM[@WxH]"; a side left out keeps the aspect.
corvanta::CorvantaSdkVideoMergeVideoTrack videoTrackFrom(const std::string& text);

/// "FILE:STREAM,FILE:STREAM"
corvanta::CorvantaSdkVideoMergeAudioTrack audioTrackFrom(const std::string& text);

/// "STREAM[@WxH]"
corvanta::CorvantaSdkVideoEncodeVideoEntry encodeEntryFrom(const std::string& text);
