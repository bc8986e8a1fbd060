#include "media/PpmFile.h"

#include <cerrno>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include "media/PpmHeader.h"

namespace tavren {

cImage PpmFile::Parse(std::string_view bytes) {
    const PpmHeader header = PpmHeader::Parse(bytes);
    if ((bytes.size() - header.start) / header.BytesPerSample() < header.SampleCount()) {
        throw FormatError("PPM file ends before its pixels do");
    }
    cImage image(header.width, header.height);
    header.ToBytes(reinterpret_cast<const std::uint8_t*>(bytes.data() + header.start),
                   header.SampleCount(), image.DIBitsPtr());
    return image;
}

cImage PpmFile::Read(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::system_error(errno != 0 ? errno : ENOENT, std::generic_category(),
                                "cannot open \"" + path.string() + "\"");
    }
    std::string bytes;
    std::vector<char> chunk(1 << 16);
    while (file.read(chunk.data(), static_cast<std::streamsize>(chunk.size())) ||
           file.gcount() > 0) {
        bytes.append(chunk.data(), static_cast<std::size_t>(file.gcount()));
    }
    if (file.bad()) {
        throw std::system_error(EIO, std::generic_category(),
                                "cannot read \"" + path.string() + "\"");
    }
    return Parse(bytes);
}

void PpmFile::Write(const std::filesystem::path& path, const cImage& image) {
    std::ofstream file(path, std::ios::binary);
    const std::string header =
        "P6\n" + std::to_string(image.Width()) + " " + std::to_string(image.Height()) + "\n255\n";
    file.write(header.data(), static_cast<std::streamsize>(header.size()));
    file.write(reinterpret_cast<const char*>(image.DIBitsPtr()),
               static_cast<std::streamsize>(image.BytesPerScanLine() * image.Height()));
    if (!file) {
        throw std::system_error(errno != 0 ? errno : EIO, std::generic_category(),
                                "cannot write \"" + path.string() + "\"");
    }
}

}  // namespace tavren
