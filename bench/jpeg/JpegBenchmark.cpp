// Encoding time, size and quality of cJpeg against libjpeg-turbo on screen-like pictures, the
// way a screen capture is encoded (quality 65, 4:2:0, optimised Huffman tables).
//
// The two encoders run alternately, round after round, on the same pixels, so that whatever
// else the machine is doing falls on both alike; the report gives the fastest and the median
// round of each and their ratios.
//
//   tavren-jpeg-bench [--rounds N] [--size WxH]...

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "LibjpegTurboPeer.h"
#include "ScreenImage.h"
#include "media/cJpeg.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kQuality = 65;

struct Timings {
    std::vector<double> milliseconds;
    double Fastest() const { return *std::min_element(milliseconds.begin(), milliseconds.end()); }
    double Median() const {
        std::vector<double> sorted = milliseconds;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() / 2];
    }
};

template <typename Encode>
std::vector<std::uint8_t> Timed(Timings& timings, Encode&& encode) {
    const auto start = Clock::now();
    std::vector<std::uint8_t> bytes = encode();
    timings.milliseconds.push_back(
        std::chrono::duration<double, std::milli>(Clock::now() - start).count());
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

void Measure(int width, int height, int rounds) {
    const tavren::cImage image = tavren::bench::MakeScreenImage(width, height);
    const int threads = std::thread::hardware_concurrency() >= 2 ? 2 : 1;

    Timings tavren;
    Timings tavrenOneThread;
    Timings peer;
    std::vector<std::uint8_t> ours;
    std::vector<std::uint8_t> oursOneThread;
    std::vector<std::uint8_t> theirs;
    // One untimed round each first: page in the code and the pixels.
    EncodeWithTavren(image, threads);
    tavren::bench::EncodeWithLibjpegTurbo(image, kQuality);
    const double loadBefore = LoadAverage();
    for (int round = 0; round < rounds; ++round) {
        ours = Timed(tavren, [&] { return EncodeWithTavren(image, threads); });
        theirs =
            Timed(peer, [&] { return tavren::bench::EncodeWithLibjpegTurbo(image, kQuality); });
        oursOneThread = Timed(tavrenOneThread, [&] { return EncodeWithTavren(image, 1); });
    }
    const double loadAfter = LoadAverage();

    const double psnrOurs =
        tavren::bench::Psnr(image, tavren::bench::DecodeWithLibjpegTurbo(ours, width, height));
    const double psnrTheirs =
        tavren::bench::Psnr(image, tavren::bench::DecodeWithLibjpegTurbo(theirs, width, height));

    std::printf(
        "\n%dx%d screen-like picture, quality %d, 4:2:0, optimised Huffman tables, "
        "%d rounds (load average %.2f -> %.2f)\n",
        width, height, kQuality, rounds, loadBefore, loadAfter);
    std::printf("  %-28s %10s %10s %10s %9s\n", "encoder", "fastest", "median", "bytes", "PSNR");
    auto row = [](const char* name, const Timings& t, std::size_t size, double psnr) {
        std::printf("  %-28s %8.2fms %8.2fms %10zu %6.3fdB\n", name, t.Fastest(), t.Median(), size,
                    psnr);
    };
    char name[64];
    std::snprintf(name, sizeof name, "tavren cJpeg (%d threads)", threads);
    row(name, tavren, ours.size(), psnrOurs);
    row("tavren cJpeg (1 thread)", tavrenOneThread, oursOneThread.size(), psnrOurs);
    row("libjpeg-turbo (float, opt.)", peer, theirs.size(), psnrTheirs);
    std::printf(
        "  ratio tavren/libjpeg-turbo: time %.3f (median) %.3f (fastest), "
        "1 thread %.3f (median); size %.4f; PSNR %+.3f dB\n",
        tavren.Median() / peer.Median(), tavren.Fastest() / peer.Fastest(),
        tavrenOneThread.Median() / peer.Median(),
        static_cast<double>(ours.size()) / static_cast<double>(theirs.size()),
        psnrOurs - psnrTheirs);
    if (ours != oursOneThread) {
        std::printf("  WARNING: one and two threads gave different files\n");
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
        } else {
            std::fprintf(stderr, "usage: tavren-jpeg-bench [--rounds N] [--size WxH]...\n");
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
