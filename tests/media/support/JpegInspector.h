#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace tavren::test {

// Reads a baseline JPEG file the way a strict decoder would, without pixels: the marker
// segments in order, the frame and scan headers, the tables, and every block's quantised
// coefficients decoded from the entropy-coded data. Anything malformed sets `error`.
struct JpegInspection {
    struct Segment {
        std::uint8_t marker = 0;
        std::vector<std::uint8_t> payload;  // without the length field
    };
    struct Component {
        int id = 0;
        int horizontal = 0;
        int vertical = 0;
        int quantizationTable = 0;
    };

    std::string error;              // empty when the file is sound
    std::vector<Segment> segments;  // in file order, SOI and EOI included
    int width = 0;
    int height = 0;
    int precision = 0;
    std::vector<Component> components;
    std::array<std::vector<std::uint8_t>, 4> quantizationTables;  // zig-zag order, empty if absent
    // Coefficients (zig-zag order, DC undifferenced) of every block, in scan order.
    std::vector<std::array<int, 64>> blocks;
    std::vector<int> blockComponent;  // component index of each block

    std::vector<std::uint8_t> Markers() const;
    // The COM segments' payloads, in order.
    std::vector<std::string> Comments() const;
};

JpegInspection InspectJpeg(const std::vector<std::uint8_t>& file);

}  // namespace tavren::test
