// tavren-jpeg: encodes a binary PPM picture as JPEG with the client's own encoder, with the
// settings a screen capture uses unless told otherwise.

#include <charconv>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "media/PpmRows.h"
#include "media/cJpeg.h"

namespace {

constexpr int kUsageError = 2;
constexpr int kEncodingError = 1;

int Usage(const char* problem) {
    if (problem != nullptr) {
        std::fprintf(stderr, "tavren-jpeg: %s\n", problem);
    }
    std::fprintf(stderr,
                 "usage: tavren-jpeg [-q QUALITY] [-s H1,V1,H2,V2,H3,V3] [-c COMMENT] IN.ppm "
                 "OUT.jpg\n"
                 "  -q  quality 1..100 (default 65)\n"
                 "  -s  sampling factors of Y, Cb, Cr (default 2,2,1,1,1,1; 1,1,0,0,0,0 is grey)\n"
                 "  -c  text for the picture's comment segment\n");
    return kUsageError;
}

bool ParseInt(std::string_view text, int& value) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    return result.ec == std::errc() && result.ptr == end;
}

bool ParseSampling(std::string_view text, std::vector<int>& values) {
    values.clear();
    while (true) {
        const std::size_t comma = text.find(',');
        int value = 0;
        if (!ParseInt(text.substr(0, comma), value)) {
            return false;
        }
        values.push_back(value);
        if (comma == std::string_view::npos) {
            break;
        }
        text.remove_prefix(comma + 1);
    }
    return values.size() == 6;
}

}  // namespace

int main(int argc, char** argv) {
    int quality = 65;
    std::vector<int> sampling = {2, 2, 1, 1, 1, 1};
    std::string comment;
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        const bool hasValue = i + 1 < argc;
        if (arg == "-q") {
            if (!hasValue || !ParseInt(argv[++i], quality) || quality < 1 || quality > 100) {
                return Usage("-q takes a quality from 1 to 100");
            }
        } else if (arg == "-s") {
            if (!hasValue || !ParseSampling(argv[++i], sampling)) {
                return Usage("-s takes six whole numbers separated by commas");
            }
        } else if (arg == "-c") {
            if (!hasValue) {
                return Usage("-c takes the comment text");
            }
            comment = argv[++i];
        } else if (arg == "-h" || arg == "--help") {
            Usage(nullptr);
            return 0;
        } else if (arg.size() > 1 && arg[0] == '-') {
            return Usage("unknown option");
        } else {
            files.emplace_back(arg);
        }
    }
    if (files.size() != 2) {
        return Usage("give one input and one output file");
    }

    try {
        tavren::cJpeg jpeg;
        jpeg.SetQuality(quality);
        jpeg.SetSamplingFrequencies(sampling[0], sampling[1], sampling[2], sampling[3], sampling[4],
                                    sampling[5]);
        jpeg.SetComment(comment);
        // The file is read band by band as the encoder samples it, never held whole.
        const std::unique_ptr<tavren::PpmRows> picture = tavren::PpmRows::Open(files[0]);
        jpeg.Sample(*picture);
        jpeg.SaveFile(files[1]);
    } catch (const tavren::JpegError& error) {
        std::fprintf(stderr, "tavren-jpeg: error %d: %s\n", error.Number(), error.what());
        return kEncodingError;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tavren-jpeg: %s\n", error.what());
        return kEncodingError;
    }
    return 0;
}
