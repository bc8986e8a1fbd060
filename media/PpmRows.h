#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "media/PpmHeader.h"
#include "media/jpeg/PixelRows.h"

namespace tavren {

// A binary PPM (P6) file as the encoder's pixel source, read one band of lines at a time
// straight into the buffer the sampler reads from: the whole picture is never in memory, and
// a file of one byte a sample up to 255 is not converted or copied again on the way.
class PpmRows : public jpeg::PixelRows {
  public:
    // Opens the file and reads its header. Raises std::system_error when the file cannot be
    // read and PpmFormatError for a damaged header, or, when the file's size is known, for a
    // file that ends before its pixels do.
    static std::unique_ptr<PpmRows> Open(const std::filesystem::path& path);
    ~PpmRows() override;

    // Raises PpmFormatError for a file that ends early, std::system_error when reading fails.
    const std::uint8_t* Line(int y) override;
    bool RandomAccess() const override { return false; }
    void SetBand(int lines) override;

  private:
    PpmRows(std::FILE* file, const PpmHeader& header, std::string head, std::string name);
    void LoadBand(int band);
    void Read(std::uint8_t* to, std::size_t count);

    std::FILE* file_;
    PpmHeader header_;
    std::string head_;  // bytes read with the header that belong to the samples
    std::size_t headUsed_ = 0;
    std::string name_;
    int bandLines_ = 16;
    int band_ = -1;
    std::vector<std::uint8_t> lines_;   // the current band, one byte a sample
    std::vector<std::uint8_t> stored_;  // the band as stored, when it needs converting
};

}  // namespace tavren
