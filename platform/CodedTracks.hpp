#pragma once

#include <platform/MediaOpening.hpp>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace corvanta {

/// How a container describes one of its picture or sound tracks to a decoder. What two files' tracks differ
/// in here keeps their packets from standing in one track. Covers are no tracks.
struct CodedTrack {
    /// Among all the file's tracks.
    int number = 0;
    bool isPicture = false;
    /// ffmpeg's name of the codec, and libav's number of it.
    std::string codec = {};
    int codecId = 0;
    /// libav's number of the codec's profile.
    int profile = -1;
    /// Parameter sets and the like, as the codec defines them.
    std::vector<std::uint8_t> parameters = {};
    /// Pictures: a pixel's width by its height, in lowest terms; 1:1 if nothing is stated.
    int aspectWidth = 1;
    int aspectHeight = 1;
    bool isInterlaced = false;
    /// Pictures a second on average; 0 if that isn't known.
    double rate = 0;
};

/// The tracks in the file's order. Reads the file's beginning. Throws PlatformError.
std::vector<CodedTrack> codedTracks(const std::string& path, OpenMedia::Options options = {});

/// When each picture or sound track ends, by its number: seconds from the file's start. Reads what a
/// container doesn't state: the file's end, or all of it if that doesn't tell of every track. A track without
/// packets is missing. Throws PlatformError.
std::map<int, double> trackEnds(const std::string& path, OpenMedia::Options options = {});

} // namespace corvanta
