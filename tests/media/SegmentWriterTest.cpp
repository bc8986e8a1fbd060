#include <gtest/gtest.h>

#include "media/jpeg/JpegConstants.h"
#include "media/jpeg/JpegSegmentWriter.h"
#include "media/support/TestHelpers.h"

using namespace tavren::jpeg;
using tavren::test::JpegErrorText;

TEST(JpegSegmentWriter, UnusableTablesRaiseTheirErrors) {
    OutputBuffer out;
    JpegSegmentWriter writer(out);
    const QuantizationTable good = QuantizationTable::FromBase(kLuminanceBase, 75);
    std::array<std::uint16_t, 64> entries{};
    entries.fill(16);
    entries[5] = 0;
    const QuantizationTable zero(entries);
    entries[5] = 256;
    const QuantizationTable wide(entries);
    EXPECT_EQ(JpegErrorText([&] { writer.QuantizationTable(3, good); }), "");
    EXPECT_EQ(JpegErrorText([&] { writer.QuantizationTable(4, good); }), "Bad Quantization Table");
    EXPECT_EQ(JpegErrorText([&] { writer.QuantizationTable(-1, good); }), "Bad Quantization Table");
    EXPECT_EQ(JpegErrorText([&] { writer.QuantizationTable(0, zero); }), "Bad Quantization Table");
    EXPECT_EQ(JpegErrorText([&] { writer.QuantizationTable(0, wide); }),
              "Illegal precission in Quantization Table");

    HuffmanTable::Frequencies frequencies{};
    frequencies[0] = 1;
    const HuffmanTable huffman = HuffmanTable::Optimal(frequencies);
    using Class = JpegSegmentWriter::TableClass;
    EXPECT_EQ(JpegErrorText([&] { writer.HuffmanTable(Class::kDc, 1, huffman); }), "");
    EXPECT_EQ(JpegErrorText([&] { writer.HuffmanTable(Class::kAc, 4, huffman); }),
              "Bad Huffman Table");
}
