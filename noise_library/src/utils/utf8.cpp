#include "utils/utf8.hpp"

#include "utils/talvo_exception.hpp"

#include <array>
#include <cstdint>

namespace TALVO::UTILS {
namespace {

static_assert(sizeof(wchar_t) == 4, "a wide character holds a whole code point");

bool isCodePoint(std::uint32_t value) { return value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF); }

/// Bytes that the lead byte announces; 0 for one that can't lead.
std::size_t sequenceLength(unsigned char lead) {
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead < 0xE0)
        return 2;
    if (lead >= 0xE0 && lead < 0xF0)
        return 3;
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

/// The code point at the front, or an impossible one.
std::uint32_t decode(std::string_view bytes, std::size_t length) {
    constexpr std::uint32_t bad = 0xFFFFFFFF;
    constexpr std::array<std::uint32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
    if (length == 0 || bytes.size() < length)
        return bad;
    auto const lead = static_cast<unsigned char>(bytes[0]);
    std::uint32_t value = length == 1 ? lead : lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        auto const next = static_cast<unsigned char>(bytes[i]);
        if ((next & 0xC0) != 0x80)
            return bad;
        value = value << 6 | (next & 0x3Fu);
    }
    return value >= smallest[length] ? value : bad;
}

} // namespace

std::string toUtf8(std::wstring_view wide) {
    std::string narrow;
    narrow.reserve(wide.size());
    auto const append = [&narrow](std::uint32_t byte) { narrow.push_back(static_cast<char>(byte)); };
    for (wchar_t const character : wide) {
        auto const value = static_cast<std::uint32_t>(character);
        if (!isCodePoint(value))
            TALVO_THROW("a wide text holds a value that is no character");
        if (value < 0x80) {
            append(value);
        } else if (value < 0x800) {
            append(0xC0 | value >> 6);
        } else if (value < 0x10000) {
            append(0xE0 | value >> 12);
            append(0x80 | (value >> 6 & 0x3F));
        } else {
            append(0xF0 | value >> 18);
            append(0x80 | (value >> 12 & 0x3F));
            append(0x80 | (value >> 6 & 0x3F));
        }
        if (value >= 0x80)
            append(0x80 | (value & 0x3F));
    }
    return narrow;
}

std::wstring fromUtf8(std::string_view narrow) {
    std::wstring wide;
    wide.reserve(narrow.size());
    while (!narrow.empty()) {
        std::size_t const length = sequenceLength(static_cast<unsigned char>(narrow[0]));
        std::uint32_t const value = decode(narrow, length);
        if (!isCodePoint(value))
            TALVO_THROW("a text isn't UTF-8");
        wide.push_back(static_cast<wchar_t>(value));
        narrow.remove_prefix(length);
    }
    return wide;
}

} // namespace TALVO::UTILS
