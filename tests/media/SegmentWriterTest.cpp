#include <gtest/gtest.h>

#include "media/JpegError.h"
#include "media/jpeg/JpegConstants.h"
#include "media/jpeg/JpegSegmentWriter.h"

using tavren::JpegError;
using tavren::jpeg::HuffmanTable;
using tavren::jpeg::JpegSegmentWriter;
using tavren::jpeg::OutputBuffer;
using tavren::jpeg::QuantizationTable;

namespace {

template <typename Write>
std::string ErrorOf(Write&& write) {
    OutputBuffer out;
    out.Reset(16);
    JpegSegmentWriter writer(out);
    try {
        write(writer);
    } catch (const JpegError& e) {
        EXPECT_EQ(e.Number(), 1);
        return e.what();
    }
    return "";
}

}  // namespace

TEST(JpegSegmentWriter, UnusableTablesRaiseTheirErrors) {
    const QuantizationTable good = QuantizationTable::FromBase(tavren::jpeg::kLuminanceBase, 75);
    EXPECT_EQ(ErrorOf([&](JpegSegmentWriter& w) { w.QuantizationTable(4, good); }),
              "Bad Quantization Table");
    EXPECT_EQ(ErrorOf([&](JpegSegmentWriter& w) { w.QuantizationTable(-1, good); }),
              "Bad Quantization Table");
    std::array<std::uint16_t, 64> entries{};
    entries.fill(16);
    entries[5] = 0;
    EXPECT_EQ(
        ErrorOf([&](JpegSegmentWriter& w) { w.QuantizationTable(0, QuantizationTable(entries)); }),
        "Bad Quantization Table");
    entries[5] = 256;
    EXPECT_EQ(
        ErrorOf([&](JpegSegmentWriter& w) { w.QuantizationTable(0, QuantizationTable(entries)); }),
        "Illegal precission in Quantization Table");

    HuffmanTable::Frequencies frequencies{};
    frequencies[0] = 1;
    const HuffmanTable huffman = HuffmanTable::Optimal(frequencies);
    EXPECT_EQ(ErrorOf([&](JpegSegmentWriter& w) {
                  w.HuffmanTable(JpegSegmentWriter::TableClass::kAc, 4, huffman);
              }),
              "Bad Huffman Table");
    EXPECT_EQ(ErrorOf([&](JpegSegmentWriter& w) {
                  w.HuffmanTable(JpegSegmentWriter::TableClass::kDc, 1, huffman);
              }),
              "");
}

TEST(JpegSegmentWriter, LongCommentsContinueInFurtherSegments) {
    OutputBuffer out;
    out.Reset(4);
    JpegSegmentWriter writer(out);
    const std::string text(65535, 'x');
    writer.Comment(text);
    // FF FE, length 65535 (2 + 65533 bytes), then FF FE, length 4 (2 + 2 bytes).
    ASSERT_EQ(out.Size(), 4 + 65533 + 4 + 2u);
    EXPECT_EQ(out.Data()[2], 0xFF);
    EXPECT_EQ(out.Data()[3], 0xFF);
    const std::uint8_t* second = out.Data() + 4 + 65533;
    EXPECT_EQ(second[0], 0xFF);
    EXPECT_EQ(second[1], 0xFE);
    EXPECT_EQ(second[2] << 8 | second[3], 4);
}
