#include "media/jpeg/JpegSegmentWriter.h"

#include <algorithm>

#include "media/JpegError.h"

namespace tavren::jpeg {
namespace {

constexpr std::uint8_t kSoi = 0xD8;
constexpr std::uint8_t kApp0 = 0xE0;
constexpr std::uint8_t kCom = 0xFE;
constexpr std::uint8_t kDqt = 0xDB;
constexpr std::uint8_t kSof0 = 0xC0;
constexpr std::uint8_t kDht = 0xC4;
constexpr std::uint8_t kSos = 0xDA;
constexpr std::uint8_t kEoi = 0xD9;

}  // namespace

void JpegSegmentWriter::StartOfImage() {
    Marker(kSoi);
}

void JpegSegmentWriter::JfifHeader() {
    Marker(kApp0);
    out_.PutWord(16);
    out_.PutBytes(std::string_view("JFIF\0", 5));
    out_.PutByte(1);  // version 1.01
    out_.PutByte(1);
    out_.PutByte(0);  // no density units: the densities give the pixel aspect ratio
    out_.PutWord(1);
    out_.PutWord(1);
    out_.PutByte(0);  // no thumbnail
    out_.PutByte(0);
}

void JpegSegmentWriter::Comment(std::string_view text) {
    do {
        const std::size_t length = std::min(text.size(), kLongestCommentSegment);
        Marker(kCom);
        out_.PutWord(static_cast<unsigned>(2 + length));
        out_.PutBytes(text.substr(0, length));
        text.remove_prefix(length);
    } while (!text.empty());
}

void JpegSegmentWriter::QuantizationTable(int slot, const jpeg::QuantizationTable& table) {
    if (slot < 0 || slot > 3) {
        throw JpegError(JpegError::kBadQuantizationTable);
    }
    for (int k = 0; k < 64; ++k) {
        if (table[k] == 0) {
            throw JpegError(JpegError::kBadQuantizationTable);
        }
        if (table[k] > 255) {
            throw JpegError(JpegError::kIllegalQuantizationPrecision);
        }
    }
    Marker(kDqt);
    out_.PutWord(2 + 1 + 64);
    out_.PutByte(static_cast<std::uint8_t>(slot));  // 8-bit precision in the high nibble
    for (int k = 0; k < 64; ++k) {
        out_.PutByte(static_cast<std::uint8_t>(table[k]));
    }
}

void JpegSegmentWriter::FrameHeader(const BlockLayout& image) {
    Marker(kSof0);
    out_.PutWord(static_cast<unsigned>(8 + 3 * image.ComponentCount()));
    out_.PutByte(8);  // sample precision
    out_.PutWord(static_cast<unsigned>(image.Height()));
    out_.PutWord(static_cast<unsigned>(image.Width()));
    out_.PutByte(static_cast<std::uint8_t>(image.ComponentCount()));
    for (int c = 0; c < image.ComponentCount(); ++c) {
        const ComponentSampling& component = image.Component(c);
        out_.PutByte(static_cast<std::uint8_t>(c + 1));
        out_.PutByte(static_cast<std::uint8_t>(component.horizontal << 4 | component.vertical));
        out_.PutByte(static_cast<std::uint8_t>(component.table));
    }
}

void JpegSegmentWriter::HuffmanTable(TableClass tableClass, int slot,
                                     const jpeg::HuffmanTable& table) {
    const std::size_t count = table.Values().size();
    if (slot < 0 || slot > 3 || count > 256) {
        throw JpegError(JpegError::kBadHuffmanTable);
    }
    Marker(kDht);
    out_.PutWord(static_cast<unsigned>(2 + 1 + 16 + count));
    out_.PutByte(static_cast<std::uint8_t>(static_cast<int>(tableClass) << 4 | slot));
    for (int length = 1; length <= 16; ++length) {
        out_.PutByte(table.Bits()[length]);
    }
    for (std::uint8_t symbol : table.Values()) {
        out_.PutByte(symbol);
    }
}

void JpegSegmentWriter::ScanHeader(const BlockLayout& image) {
    Marker(kSos);
    out_.PutWord(static_cast<unsigned>(6 + 2 * image.ComponentCount()));
    out_.PutByte(static_cast<std::uint8_t>(image.ComponentCount()));
    for (int c = 0; c < image.ComponentCount(); ++c) {
        const int table = image.Component(c).table;
        out_.PutByte(static_cast<std::uint8_t>(c + 1));
        out_.PutByte(static_cast<std::uint8_t>(table << 4 | table));  // DC and AC table
    }
    out_.PutByte(0);   // spectral selection start
    out_.PutByte(63);  // spectral selection end
    out_.PutByte(0);   // successive approximation
}

void JpegSegmentWriter::EndOfImage() {
    Marker(kEoi);
}

}  // namespace tavren::jpeg
