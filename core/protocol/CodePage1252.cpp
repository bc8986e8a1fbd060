#include "core/protocol/CodePage1252.h"

#include <array>
#include <cstdint>

namespace tavren::protocol {
namespace {

// Code points of the bytes 0x80..0x9F; the rest of the code page equals Latin-1. The undefined
// bytes map to themselves as C1 controls so that nothing is lost in a round trip.
constexpr std::array<char32_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80..87
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  // 88..8F
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90..97
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  // 98..9F
};

constexpr char kReplacement = '?';

char32_t CodePointOfByte(unsigned char byte) {
    return byte >= 0x80 && byte <= 0x9F ? kHighControls[byte - 0x80] : char32_t{byte};
}

// The byte for a code point, or -1 when the code page has none.
int ByteOfCodePoint(char32_t codePoint) {
    if (codePoint < 0x80 || (codePoint >= 0xA0 && codePoint <= 0xFF)) {
        return static_cast<int>(codePoint);
    }
    for (std::size_t i = 0; i < kHighControls.size(); ++i) {
        if (kHighControls[i] == codePoint) {
            return static_cast<int>(0x80 + i);
        }
    }
    return -1;
}

void AppendUtf8(std::string& out, char32_t codePoint) {
    if (codePoint < 0x80) {
        out += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        out += static_cast<char>(0xC0 | (codePoint >> 6));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else {
        // Every code point of the table is below U+10000.
        out += static_cast<char>(0xE0 | (codePoint >> 12));
        out += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (codePoint & 0x3F));
    }
}

// Decodes one UTF-8 sequence starting at `pos`. Returns its length (0 when the bytes there are not
// a valid, shortest-form sequence of a scalar value) and stores the code point.
std::size_t DecodeUtf8(std::string_view text, std::size_t pos, char32_t& codePoint) {
    const auto lead = static_cast<unsigned char>(text[pos]);
    std::size_t length = 0;
    char32_t minimum = 0;
    if (lead < 0x80) {
        codePoint = lead;
        return 1;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        minimum = 0x80;
        codePoint = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        minimum = 0x800;
        codePoint = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        minimum = 0x10000;
        codePoint = lead & 0x07;
    } else {
        return 0;
    }
    if (text.size() - pos < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[pos + i]);
        if ((next & 0xC0) != 0x80) {
            return 0;
        }
        codePoint = (codePoint << 6) | (next & 0x3F);
    }
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (codePoint < minimum || codePoint > 0x10FFFF || surrogate) {
        return 0;
    }
    return length;
}

}  // namespace

std::string Cp1252ToUtf8(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        AppendUtf8(text, CodePointOfByte(static_cast<unsigned char>(byte)));
    }
    return text;
}

std::string Utf8ToCp1252(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    std::size_t pos = 0;
    while (pos < text.size()) {
        char32_t codePoint = 0;
        const std::size_t length = DecodeUtf8(text, pos, codePoint);
        if (length == 0) {
            bytes += kReplacement;
            ++pos;
            continue;
        }
        const int byte = ByteOfCodePoint(codePoint);
        bytes += byte < 0 ? kReplacement : static_cast<char>(byte);
        pos += length;
    }
    return bytes;
}

}  // namespace tavren::protocol
