#include <platform/NalUnits.hpp>

#include <algorithm>
#include <array>
#include <bitset>

namespace corvanta {

namespace {

using Bytes = std::span<const std::uint8_t>;

std::vector<Bytes> withLengths(Bytes packet, std::size_t lengthSize) {
    std::vector<Bytes> units;
    while (packet.size() > lengthSize) {
        std::size_t length = 0;
        for (const std::uint8_t byte : packet.first(lengthSize)) {
            length = length << 8U | byte;
        }
        packet = packet.subspan(lengthSize);
        if (length == 0 || length > packet.size()) {
            break;
        }
        units.push_back(packet.first(length));
        packet = packet.subspan(length);
    }
    return units;
}

std::vector<Bytes> withStartCodes(Bytes packet) {
    constexpr std::array<std::uint8_t, 3> startCode{0, 0, 1};
    std::vector<Bytes> units;
    auto found = std::ranges::search(packet, startCode);
    while (!found.empty()) {
        const auto rest = std::ranges::subrange(found.end(), packet.end());
        found = std::ranges::search(rest, startCode);
        Bytes unit(rest.begin(), found.begin());
        // The fourth byte of the next start code.
        while (!unit.empty() && unit.back() == 0) {
            unit = unit.first(unit.size() - 1);
        }
        if (!unit.empty()) {
            units.push_back(unit);
        }
    }
    return units;
}

// The number that begins a parameter set's own bits, written as an Exp-Golomb code (ITU-T H.264, 9.1).
unsigned leadingNumber(Bytes bits) {
    const auto bit = [&](std::size_t place) -> unsigned {
        return place / 8 < bits.size() ? bits[place / 8] >> (7 - place % 8) & 1U : 1U;
    };
    std::size_t zeros = 0;
    while (zeros < 8 && bit(zeros) == 0) {
        ++zeros;
    }
    unsigned number = 0;
    for (std::size_t place = zeros; place <= 2 * zeros; ++place) {
        number = number << 1U | bit(place);
    }
    return number - 1;
}

// The parameter sets of a configuration record (ISO/IEC 14496-15, 5.3.3.1): a count, then each behind its
// length; first the sequence's, then the pictures'.
std::vector<Bytes> parameterSets(Bytes extradata) {
    if (nalLengthSize(extradata, false) == 0) {
        return nalUnits(extradata, 0);
    }
    std::vector<Bytes> sets;
    Bytes rest = extradata.subspan(5);
    for (const unsigned countMask : {0x1FU, 0xFFU}) {
        unsigned count = rest.empty() ? 0 : rest[0] & countMask;
        rest = rest.subspan(std::min<std::size_t>(1, rest.size()));
        for (; count > 0 && rest.size() > 2; --count) {
            const std::size_t length = static_cast<std::size_t>(rest[0]) << 8U | rest[1];
            rest = rest.subspan(2);
            sets.push_back(rest.first(std::min(length, rest.size())));
            rest = rest.subspan(sets.back().size());
        }
    }
    return sets;
}

} // namespace

std::vector<Bytes> nalUnits(Bytes packet, int lengthSize) {
    return lengthSize > 0 ? withLengths(packet, static_cast<std::size_t>(lengthSize))
                          : withStartCodes(packet);
}

int nalLengthSize(Bytes extradata, bool isHEVC) {
    // The place of lengthSizeMinusOne in the configuration records, which begin with their version, 1.
    const std::size_t place = isHEVC ? 21 : 4;
    return extradata.size() > place && extradata[0] == 1 ? (extradata[place] & 3) + 1 : 0;
}

int freeParameterSetId(Bytes extradata) {
    constexpr int highestId = 31;
    std::bitset<highestId + 1> taken(1);
    for (const Bytes set : parameterSets(extradata)) {
        constexpr unsigned sequence = 7;
        constexpr unsigned picture = 8;
        const unsigned type = set.empty() ? 0 : set[0] & 0x1FU;
        if (type == sequence || type == picture) {
            // A sequence's begins with three bytes of profile and level.
            const std::size_t place = type == sequence ? 4 : 1;
            const unsigned id = leadingNumber(set.subspan(std::min(place, set.size())));
            if (id <= highestId) {
                taken.set(id);
            }
        }
    }
    for (int id = 1; id <= highestId; ++id) {
        if (!taken[static_cast<std::size_t>(id)]) {
            return id;
        }
    }
    return 0;
}

} // namespace corvanta
