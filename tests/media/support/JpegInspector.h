#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tavren::test {

// Reads a baseline JPEG file the way a strict decoder would, without making pixels: the marker
// segments in order, the frame header, the quantisation tables, and every block of the
// entropy-coded data, which must end in one-bits padding the last byte. Anything malformed sets
// `error`; libjpeg-turbo forgives much of what this rejects.
struct JpegInspection {
    struct Component {
        int horizontal = 0;
        int vertical = 0;
        int quantizationTable = 0;
        bool operator==(const Component&) const = default;
    };

    std::string error;                  // empty when the file is sound
    std::vector<std::uint8_t> markers;  // in file order, SOI and EOI included
    std::vector<std::uint8_t> jfif;     // the APP0 payload
    std::vector<std::string> comments;  // the COM payloads, in order
    int width = 0;
    int height = 0;
    std::vector<Component> components;
    std::array<std::vector<std::uint8_t>, 4> quantizationTables;  // zig-zag order, empty if absent
    long blocks = 0;                                              // decoded from the scan
};

JpegInspection InspectJpeg(const std::vector<std::uint8_t>& file);

// The codes a decoder assigns from a Huffman table's counts per length 1..16 and its symbols:
// (length, code) -> symbol. Raises std::runtime_error when the counts overflow, leave a code of
// all ones, or do not match the symbols.
using HuffmanCodes = std::map<std::pair<int, int>, int>;
HuffmanCodes AssignHuffmanCodes(const std::uint8_t* counts,
                                const std::vector<std::uint8_t>& symbols);

}  // namespace tavren::test
