#include "media/BmpFile.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace tavren {
namespace {

constexpr std::size_t kFileHeaderBytes = 14;
constexpr std::size_t kInfoHeaderBytes = 40;
constexpr std::size_t kHeaderBytes = kFileHeaderBytes + kInfoHeaderBytes;
constexpr std::uint32_t kUncompressed = 0;  // BI_RGB
constexpr std::uint32_t kBitFields = 3;     // BI_BITFIELDS: channel masks follow the header

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

File OpenFile(const std::filesystem::path& path, bool write) {
#ifdef _WIN32
    return File(_wfopen(path.c_str(), write ? L"wb" : L"rb"));
#else
    return File(std::fopen(path.c_str(), write ? "wb" : "rb"));
#endif
}

void Put16(std::uint8_t* at, std::uint32_t value) {
    at[0] = static_cast<std::uint8_t>(value);
    at[1] = static_cast<std::uint8_t>(value >> 8);
}
void Put32(std::uint8_t* at, std::uint32_t value) {
    Put16(at, value);
    Put16(at + 2, value >> 16);
}
std::uint32_t Get16(const std::uint8_t* at) {
    return at[0] | static_cast<std::uint32_t>(at[1]) << 8;
}
std::uint32_t Get32(const std::uint8_t* at) {
    return Get16(at) | Get16(at + 2) << 16;
}

std::system_error FileError(int code, const char* what, const std::filesystem::path& path) {
    return std::system_error(code != 0 ? code : EIO, std::generic_category(),
                             std::string(what) + " \"" + path.string() + "\"");
}

}  // namespace

void BmpFile::WriteBgrx(const std::filesystem::path& path, const std::uint8_t* first,
                        std::ptrdiff_t stride, int width, int height) {
    const std::size_t lineBytes = 4 * static_cast<std::size_t>(width);
    const std::size_t pixelBytes = lineBytes * static_cast<std::size_t>(height);
    std::array<std::uint8_t, kHeaderBytes> header{};
    header[0] = 'B';
    header[1] = 'M';
    Put32(&header[2], static_cast<std::uint32_t>(kHeaderBytes + pixelBytes));
    Put32(&header[10], kHeaderBytes);
    Put32(&header[14], kInfoHeaderBytes);
    Put32(&header[18], static_cast<std::uint32_t>(width));
    // A negative height says the rows run top-down, the order a grab holds them in.
    Put32(&header[22], static_cast<std::uint32_t>(-height));
    Put16(&header[26], 1);   // planes
    Put16(&header[28], 32);  // bits a pixel
    Put32(&header[30], kUncompressed);
    Put32(&header[34], static_cast<std::uint32_t>(pixelBytes));

    File file = OpenFile(path, true);
    if (!file) {
        throw FileError(errno, "cannot create", path);
    }
    bool written = std::fwrite(header.data(), 1, header.size(), file.get()) == header.size();
    if (stride == static_cast<std::ptrdiff_t>(lineBytes)) {
        written = written && std::fwrite(first, 1, pixelBytes, file.get()) == pixelBytes;
    } else {
        for (int y = 0; y < height && written; ++y) {
            written = std::fwrite(first + stride * y, 1, lineBytes, file.get()) == lineBytes;
        }
    }
    const int writeError = written ? 0 : (errno != 0 ? errno : EIO);
    const int closeError = std::fclose(file.release()) == 0 ? 0 : errno;
    if (writeError != 0 || closeError != 0) {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
        throw FileError(writeError != 0 ? writeError : closeError, "cannot write", path);
    }
}

cImage BmpFile::Read(const std::filesystem::path& path) {
    File file = OpenFile(path, false);
    if (!file) {
        throw FileError(errno, "cannot open", path);
    }
    // The headers, and the three channel masks that may follow the information header.
    std::array<std::uint8_t, kHeaderBytes + 12> header{};
    const std::size_t got = std::fread(header.data(), 1, header.size(), file.get());
    if (got < kHeaderBytes || header[0] != 'B' || header[1] != 'M') {
        throw FormatError("not a bitmap file");
    }
    const std::uint32_t pixelsAt = Get32(&header[10]);
    const std::uint32_t infoBytes = Get32(&header[14]);
    const auto width = static_cast<std::int32_t>(Get32(&header[18]));
    const auto signedHeight = static_cast<std::int32_t>(Get32(&header[22]));
    const std::uint32_t bits = Get16(&header[28]);
    const std::uint32_t compression = Get32(&header[30]);
    const bool bottomUp = signedHeight > 0;
    const std::int64_t height = bottomUp ? signedHeight : -static_cast<std::int64_t>(signedHeight);
    if (infoBytes < kInfoHeaderBytes || Get16(&header[26]) != 1) {
        throw FormatError("damaged bitmap header");
    }
    if (width < 1 || width > 65535 || height < 1 || height > 65535) {
        throw FormatError("bitmap size outside 1..65535");
    }
    const bool standardMasks = got == header.size() && Get32(&header[54]) == 0x00FF0000 &&
                               Get32(&header[58]) == 0x0000FF00 && Get32(&header[62]) == 0x000000FF;
    const bool bgrx = bits == 32 && (compression == kUncompressed ||
                                     (compression == kBitFields && standardMasks));
    if (!bgrx && !(bits == 24 && compression == kUncompressed)) {
        throw FormatError("only uncompressed 24 and 32-bit bitmaps are read");
    }
    // Stored rows are padded to whole four-byte words.
    const std::size_t storedLine = ((static_cast<std::size_t>(width) * bits + 31) / 32) * 4;
    const std::size_t pixelBytes = storedLine * static_cast<std::size_t>(height);
    std::error_code sizeError;
    const std::uintmax_t fileBytes = std::filesystem::file_size(path, sizeError);
    if (sizeError || pixelsAt < kFileHeaderBytes + infoBytes || fileBytes < pixelsAt ||
        fileBytes - pixelsAt < pixelBytes) {
        throw FormatError("bitmap file ends before its pixels do");
    }
    if (std::fseek(file.get(), static_cast<long>(pixelsAt), SEEK_SET) != 0) {
        throw FileError(errno, "cannot read", path);
    }

    cImage image;
    if (bgrx) {
        image.CreateUnfilled(width, static_cast<int>(height), jpeg::PixelLayout::kBgrx32, bottomUp);
        if (std::fread(image.DIBitsPtr(), 1, pixelBytes, file.get()) != pixelBytes) {
            throw FileError(errno, "cannot read", path);
        }
        return image;
    }
    image.CreateUnfilled(width, static_cast<int>(height), jpeg::PixelLayout::kRgb24, false);
    std::vector<std::uint8_t> line(storedLine);
    for (std::int64_t stored = 0; stored < height; ++stored) {
        if (std::fread(line.data(), 1, storedLine, file.get()) != storedLine) {
            throw FileError(errno, "cannot read", path);
        }
        const int y = static_cast<int>(bottomUp ? height - 1 - stored : stored);
        std::uint8_t* out = image.ScanLine(y);
        for (int x = 0; x < width; ++x) {
            out[3 * x] = line[3 * x + 2];
            out[3 * x + 1] = line[3 * x + 1];
            out[3 * x + 2] = line[3 * x];
        }
    }
    return image;
}

}  // namespace tavren
