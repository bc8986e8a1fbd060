// Encoding time, size and quality of cJpeg against libjpeg-turbo on screen-like pictures, the
// way a screen capture is encoded (quality 65, 4:2:0, optimised Huffman tables).
//
// The two encoders run alternately, round after round, on the same pixels, so that whatever
// else the machine is doing falls on both alike; the report gives the fastest and the median
// round of each and their ratios. Wall time is what a user waits; the processor time (all
// threads together) is also shown, since on a busy machine it says more about the work done.
//
//   tavren-jpeg-bench [--rounds N] [--size WxH]...
//   tavren-jpeg-bench --write-ppm FILE   (the 1920x1080 picture, for whole-process timings of
//                                         tavren-jpeg and cjpeg)

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <string>
#include <vector>

#include "LibjpegTurboPeer.h"
#include "ScreenImage.h"
#include "media/PpmFile.h"
#include "media/cJpeg.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kQuality = 65;

double ProcessorMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

struct Timings {
    std::vector<double> milliseconds;
    std::vector<double> processor;
    double FastestProcessor() const {
        return *std::min_element(processor.begin(), processor.end());
    }
    double Fastest() const { return *std::min_element(milliseconds.begin(), milliseconds.end()); }
    double Median() const {
        std::vector<double> sorted = milliseconds;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() / 2];
    }
};

template <typename Encode>
std::vector<std::uint8_t> Timed(Timings& timings, Encode&& encode) {
    const double processorStart = ProcessorMilliseconds();
    const auto start = Clock::now();
    std::vector<std::uint8_t> bytes = encode();
    timings.milliseconds.push_back(
        std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    timings.processor.push_back(ProcessorMilliseconds() - processorStart);
    return bytes;
}

std::vector<std::uint8_t> EncodeWithTavren(const tavren::cImage& image, int threads) {
    // A fresh encoder each time, as a capture makes one.
    tavren::cJpeg jpeg;
    jpeg.SetThreads(threads);
    jpeg.SetQuality(kQuality);
    jpeg.SetSamplingFrequencies(2, 2, 1, 1, 1, 1);
    jpeg.SampleHDC(image, image.Width(), image.Height());
    return jpeg.Encode();
}

double LoadAverage() {
    std::ifstream file("/proc/loadavg");
    double load = -1;
    file >> load;
    return load;
}

struct Contender {
    std::string name;
    int threads;  // for cJpeg: 0 picks by the machine's load; -1 means libjpeg-turbo
    Timings timings;
    std::vector<std::uint8_t> bytes;
};

void Measure(int width, int height, int rounds) {
    const tavren::cImage image = tavren::bench::MakeScreenImage(width, height);
    std::vector<Contender> contenders = {{"tavren cJpeg (threads: auto)", 0, {}, {}},
                                         {"tavren cJpeg (1 thread)", 1, {}, {}},
                                         {"tavren cJpeg (2 threads)", 2, {}, {}},
                                         {"libjpeg-turbo (float, opt.)", -1, {}, {}}};
    auto encode = [&](const Contender& c) {
        return c.threads < 0 ? tavren::bench::EncodeWithLibjpegTurbo(image, kQuality)
                             : EncodeWithTavren(image, c.threads);
    };
    // One untimed round first: page in the code and the pixels.
    for (const Contender& c : contenders) {
        encode(c);
    }
    const double loadBefore = LoadAverage();
    for (int round = 0; round < rounds; ++round) {
        for (Contender& c : contenders) {
            c.bytes = Timed(c.timings, [&] { return encode(c); });
        }
    }
    const double loadAfter = LoadAverage();

    std::printf(
        "\n%dx%d screen-like picture, quality %d, 4:2:0, optimised Huffman tables, "
        "%d rounds (load average %.2f -> %.2f)\n",
        width, height, kQuality, rounds, loadBefore, loadAfter);
    std::printf("  %-30s %10s %10s %10s %10s %9s\n", "encoder", "fastest", "median", "cpu time",
                "bytes", "PSNR");
    std::vector<double> psnr;
    for (const Contender& c : contenders) {
        psnr.push_back(tavren::bench::Psnr(
            image, tavren::bench::DecodeWithLibjpegTurbo(c.bytes, width, height)));
        std::printf("  %-30s %8.2fms %8.2fms %8.2fms %10zu %6.3fdB\n", c.name.c_str(),
                    c.timings.Fastest(), c.timings.Median(), c.timings.FastestProcessor(),
                    c.bytes.size(), psnr.back());
    }
    const Contender& peer = contenders.back();
    std::printf("  ratios to libjpeg-turbo        time (median)  time (fastest)  cpu time\n");
    for (std::size_t i = 0; i + 1 < contenders.size(); ++i) {
        const Timings& t = contenders[i].timings;
        std::printf("    %-28s %10.3f %15.3f %9.3f\n", contenders[i].name.c_str(),
                    t.Median() / peer.timings.Median(), t.Fastest() / peer.timings.Fastest(),
                    t.FastestProcessor() / peer.timings.FastestProcessor());
    }
    std::printf(
        "    size %.4f, PSNR %+.3f dB\n",
        static_cast<double>(contenders[0].bytes.size()) / static_cast<double>(peer.bytes.size()),
        psnr[0] - psnr.back());
    for (std::size_t i = 1; i + 1 < contenders.size(); ++i) {
        if (contenders[i].bytes != contenders[0].bytes) {
            std::printf("  WARNING: %s wrote a different file\n", contenders[i].name.c_str());
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    int rounds = 15;
    std::vector<std::pair<int, int>> sizes;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--rounds") == 0 && i + 1 < argc) {
            rounds = std::max(1, std::atoi(argv[++i]));
        } else if (std::strcmp(argv[i], "--size") == 0 && i + 1 < argc) {
            int width = 0;
            int height = 0;
            if (std::sscanf(argv[++i], "%dx%d", &width, &height) != 2 || width < 1 || height < 1 ||
                width > 65535 || height > 65535) {
                std::fprintf(stderr, "--size takes WIDTHxHEIGHT\n");
                return 2;
            }
            sizes.emplace_back(width, height);
        } else if (std::strcmp(argv[i], "--write-ppm") == 0 && i + 1 < argc) {
            tavren::PpmFile::Write(argv[++i], tavren::bench::MakeScreenImage(1920, 1080));
            return 0;
        } else {
            std::fprintf(stderr,
                         "usage: tavren-jpeg-bench [--rounds N] [--size WxH]... | --write-ppm "
                         "FILE\n");
            return 2;
        }
    }
    if (sizes.empty()) {
        sizes = {{1920, 1080}, {3840, 2160}};
    }
    for (const auto& [width, height] : sizes) {
        Measure(width, height, rounds);
    }
    return 0;
}
