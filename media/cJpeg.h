#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "media/JpegError.h"
#include "media/JpegFileError.h"
#include "media/cImage.h"
#include "media/jpeg/BlockLayout.h"
#include "media/jpeg/FrameEncoder.h"
#include "media/jpeg/OutputBuffer.h"
#include "media/jpeg/PixelRows.h"
#include "media/jpeg/QuantizationTable.h"
#include "media/jpeg/QuantizedBlocks.h"

namespace tavren {

// Encodes a picture as a baseline, sequential JPEG file with a JFIF header: colour conversion,
// sub-sampling, DCT, quantisation and Huffman tables optimised for each picture are all done
// here. Screen captures use it to send pictures small over a direct connection.
//
// Use: set the quality and the sampling, SampleHDC a rectangle of a picture, then SaveFile (or
// Encode for the bytes). Bad arguments raise JpegError (number 1) and leave earlier settings.
class cJpeg {
  public:
    static constexpr int kDefaultQuality = 75;
    // The text of the second comment segment, naming the encoder.
    static constexpr const char* kIdentification = "JPEG Encoder Class\r\nTavren";
    static constexpr std::size_t kLongestComment = 65535;

    cJpeg();

    int Quality() const { return quality_; }
    // 1..100; other values are ignored and the old quality and tables stay.
    void SetQuality(int quality);

    // Sampling factors (1..4) of Y, Cb and Cr; H2, V2, H3 and V3 all 0 means grey (one
    // component, 1x1). Raises "Invalid Sampling Value" for the first value out of range.
    void SetSamplingFrequencies(int h1, int v1, int h2, int v2, int h3, int v3);

    // Converts the width x height rectangle of `source` whose top-left corner is (x, y) into
    // sample blocks, extended to whole MCUs by repeating the last column and row, and takes
    // them through the DCT and quantisation at once: the quality and sampling in force now are
    // the ones SaveFile will write. A rectangle that is empty, larger than 65535 or not inside
    // the source raises std::out_of_range.
    void SampleHDC(const cImage& source, int width, int height, int x = 0, int y = 0);
    // The same for a whole picture given line by line (a file read as it goes, a screen grab
    // in its own pixel layout). Whatever the source raises leaves nothing sampled.
    void Sample(jpeg::PixelRows& source);

    const std::string& Comment() const { return comment_; }
    // Raises "Illegal Comment Length" above 65535 characters.
    void SetComment(std::string comment);

    // The file for the sampled picture. Raises std::logic_error if nothing was sampled.
    std::vector<std::uint8_t> Encode();
    // Encodes and writes the whole file with one write. A file that cannot be written raises
    // JpegFileError and leaves no file behind.
    void SaveFile(const std::filesystem::path& path);

    // Threads the encoder uses. 0, the default, picks by itself: as many as there are cores
    // that other programs leave free. A positive number is used as given.
    int Threads() const { return threads_; }
    void SetThreads(int threads);

    int ComponentCount() const { return static_cast<int>(sampling_.size()); }
    const jpeg::QuantizationTable& QuantizationTable(int slot) const { return quantization_[slot]; }
    const jpeg::HuffmanTable& DcHuffmanTable(int slot) const { return encoder_.DcTable(slot); }
    const jpeg::HuffmanTable& AcHuffmanTable(int slot) const { return encoder_.AcTable(slot); }

  private:
    void EncodeIntoBuffer();
    int ThreadsNow() const;

    int quality_ = kDefaultQuality;
    std::array<jpeg::QuantizationTable, 2> quantization_;
    std::vector<jpeg::ComponentSampling> sampling_;
    std::string comment_;
    int threads_ = 0;
    jpeg::BlockLayout layout_;      // the sampled picture's geometry
    jpeg::QuantizedBlocks blocks_;  // and its blocks, quantised
    jpeg::FrameEncoder encoder_;
    jpeg::OutputBuffer output_;
};

}  // namespace tavren
