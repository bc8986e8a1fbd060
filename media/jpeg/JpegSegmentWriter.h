#pragma once

#include <string_view>

#include "media/jpeg/BlockLayout.h"
#include "media/jpeg/HuffmanTable.h"
#include "media/jpeg/OutputBuffer.h"
#include "media/jpeg/QuantizationTable.h"

namespace tavren::jpeg {

// Writes the marker segments of a baseline JFIF file around the entropy-coded data.
class JpegSegmentWriter {
  public:
    enum class TableClass { kDc = 0, kAc = 1 };

    // A COM segment holds at most this many bytes; longer comments continue in further ones.
    static constexpr std::size_t kLongestCommentSegment = 65533;

    explicit JpegSegmentWriter(OutputBuffer& out) : out_(out) {}

    void StartOfImage();
    void JfifHeader();
    void Comment(std::string_view text);
    // Raises "Bad Quantization Table" for a slot outside 0..3 or a zero entry, and
    // "Illegal precission in Quantization Table" for an entry above 255.
    void QuantizationTable(int slot, const jpeg::QuantizationTable& table);
    void FrameHeader(const BlockLayout& image);
    // Raises "Bad Huffman Table" for a slot outside 0..3 or impossible counts.
    void HuffmanTable(TableClass tableClass, int slot, const jpeg::HuffmanTable& table);
    void ScanHeader(const BlockLayout& image);
    void EndOfImage();

  private:
    void Marker(std::uint8_t code) {
        out_.PutByte(0xFF);
        out_.PutByte(code);
    }

    OutputBuffer& out_;
};

}  // namespace tavren::jpeg
