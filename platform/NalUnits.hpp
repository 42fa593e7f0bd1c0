#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace corvanta {

/// The NAL units of a packet of H.264 or HEVC, without start codes or lengths. `lengthSize` is the size of
/// the length before each unit, or 0 for start codes (ISO/IEC 14496-15; ITU-T H.264, annex B). What doesn't
/// fit is left out.
std::vector<std::span<const std::uint8_t>> nalUnits(std::span<const std::uint8_t> packet, int lengthSize);

/// The size of the lengths in the packets of a track with that "extradata": 0 if they have start codes.
int nalLengthSize(std::span<const std::uint8_t> extradata, bool isHEVC);

/// The lowest id above 0 that no parameter set in the "extradata" of an H.264 track has; 0 if there is none.
int freeParameterSetId(std::span<const std::uint8_t> extradata);

} // namespace corvanta
