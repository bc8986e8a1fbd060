// The screen capture end to end, against libjpeg-turbo doing the same job the way an
// application would: from a grabbed screen (a QImage in the screen's own format, RGB32) to the
// JPEG file on disk.
//
//   ours   ScreenCapture's steps as the client runs them, one per turn of the event loop: the
//          area saved as a bitmap and read back, sampled, encoded (quality 65, 4:2:0, optimised
//          Huffman tables, threads chosen by the machine's load) and written;
//   peer   libjpeg-turbo's jpeg_* API fed the grab's own row pointers as B, G, R, X (so it
//          converts nothing either), float DCT, optimised tables, quality 65, 4:2:0, written
//          with stdio; and, for reference, tjCompress2 with its defaults (integer DCT, standard
//          tables) from the same pixels.
//
// The contenders run in turn, round after round, so that whatever else the machine is doing
// falls on all alike; the report gives each one's fastest and median round, its file size, and
// the ratios of ours to the matched peer.
//
//   tavren-capture-bench [--rounds N] [--size WxH]...

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

// jpeglib.h needs FILE and size_t declared first.
#include <jpeglib.h>
#include <turbojpeg.h>

#include "ScreenImage.h"
#include "core/Prompter.h"
#include "media/ScreenCapture.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kQuality = 65;

// The capture only speaks to the user when it fails, which the benchmark reports itself.
class SilentPrompter : public tavren::Prompter {
  public:
    void message(const QString& text, const QString&, Icon) override {
        std::fprintf(stderr, "capture: %s\n", qPrintable(text));
    }
    Answer askYesNo(const QString&, const QString&) override { return Answer::No; }
    Answer askYesNoCancel(const QString&, const QString&) override { return Answer::Cancel; }
    std::optional<QString> askText(const QString&, const QString&, const QString&) override {
        return std::nullopt;
    }
};

// The screen as a grab gives it: 32 bits a pixel, 0xffRRGGBB.
QImage GrabbedScreen(int width, int height) {
    const tavren::cImage picture = tavren::bench::MakeScreenImage(width, height);
    QImage screen(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* in = picture.ScanLine(y);
        auto* out = reinterpret_cast<QRgb*>(screen.scanLine(y));
        for (int x = 0; x < width; ++x) {
            out[x] = qRgb(in[3 * x], in[3 * x + 1], in[3 * x + 2]);
        }
    }
    return screen;
}

// Runs the capture's steps on the whole screen; the file's size, 0 when they failed.
qint64 CaptureWithTavren(tavren::ScreenCapture& capture, const QImage& screen,
                         const QString& folder) {
    QEventLoop loop;
    QString path;
    QObject::connect(&capture, &tavren::ScreenCapture::captured, &loop, [&](const QString& p) {
        path = p;
        loop.quit();
    });
    QObject::connect(&capture, &tavren::ScreenCapture::failed, &loop, &QEventLoop::quit);
    capture.start(screen, screen.rect(), QStringLiteral("bench"));
    loop.exec();
    capture.disconnect(&loop);
    const qint64 size = path.isEmpty() ? 0 : QFile(path).size();
    QDir(folder).remove(QStringLiteral("downloaded/bench_ss0.jpg"));
    return size;
}

qint64 FileSize(const std::string& path) {
    const qint64 size = QFile(QString::fromStdString(path)).size();
    std::remove(path.c_str());
    return size;
}

qint64 CaptureWithLibjpeg(const QImage& screen, const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        return 0;
    }
    jpeg_compress_struct compressor;
    jpeg_error_mgr errors;
    compressor.err = jpeg_std_error(&errors);
    jpeg_create_compress(&compressor);
    jpeg_stdio_dest(&compressor, file);
    compressor.image_width = static_cast<JDIMENSION>(screen.width());
    compressor.image_height = static_cast<JDIMENSION>(screen.height());
    compressor.input_components = 4;
    compressor.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&compressor);  // 4:2:0 sampling
    jpeg_set_quality(&compressor, kQuality, TRUE);
    compressor.dct_method = JDCT_FLOAT;
    compressor.optimize_coding = TRUE;
    jpeg_start_compress(&compressor, TRUE);
    std::vector<JSAMPROW> rows(static_cast<std::size_t>(screen.height()));
    for (int y = 0; y < screen.height(); ++y) {
        rows[static_cast<std::size_t>(y)] = const_cast<JSAMPROW>(screen.constScanLine(y));
    }
    while (compressor.next_scanline < compressor.image_height) {
        jpeg_write_scanlines(&compressor, rows.data() + compressor.next_scanline,
                             compressor.image_height - compressor.next_scanline);
    }
    jpeg_finish_compress(&compressor);
    jpeg_destroy_compress(&compressor);
    std::fclose(file);
    return FileSize(path);
}

qint64 CaptureWithTurboJpeg(const QImage& screen, const std::string& path) {
    tjhandle compressor = tjInitCompress();
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    const int failed = tjCompress2(compressor, screen.constBits(), screen.width(),
                                   static_cast<int>(screen.bytesPerLine()), screen.height(),
                                   TJPF_BGRX, &bytes, &size, TJSAMP_420, kQuality, 0);
    tjDestroy(compressor);
    if (failed != 0) {
        return 0;
    }
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file != nullptr) {
        std::fwrite(bytes, 1, size, file);
        std::fclose(file);
    }
    tjFree(bytes);
    return FileSize(path);
}

struct Contender {
    Contender(std::string n, std::function<qint64()> r) : name(std::move(n)), run(std::move(r)) {}

    std::string name;
    std::function<qint64()> run;
    std::vector<double> milliseconds;
    qint64 bytes = 0;

    double Fastest() const { return *std::min_element(milliseconds.begin(), milliseconds.end()); }
    double Median() const {
        std::vector<double> sorted = milliseconds;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() / 2];
    }
};

void Measure(int width, int height, int rounds) {
    const QImage screen = GrabbedScreen(width, height);
    QTemporaryDir folder;
    QDir(folder.path()).mkpath(QStringLiteral("downloaded"));
    SilentPrompter prompter;
    tavren::ScreenCapture capture(folder.path(), prompter);
    const std::string peerFile = folder.filePath(QStringLiteral("peer.jpg")).toStdString();
    std::vector<Contender> contenders;
    contenders.emplace_back("tavren ScreenCapture",
                            [&] { return CaptureWithTavren(capture, screen, folder.path()); });
    contenders.emplace_back("libjpeg-turbo jpeg_* (float, opt.)",
                            [&] { return CaptureWithLibjpeg(screen, peerFile); });
    contenders.emplace_back("tjCompress2 (defaults)",
                            [&] { return CaptureWithTurboJpeg(screen, peerFile); });
    // One untimed round first: page in the code and the pixels.
    for (Contender& c : contenders) {
        c.run();
    }
    for (int round = 0; round < rounds; ++round) {
        for (Contender& c : contenders) {
            const auto start = Clock::now();
            c.bytes = c.run();
            c.milliseconds.push_back(
                std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        }
    }
    std::printf(
        "\n%dx%d grabbed screen (RGB32) to a JPEG file on disk, quality %d, 4:2:0, %d rounds\n",
        width, height, kQuality, rounds);
    std::printf("  %-36s %10s %10s %10s\n", "path", "fastest", "median", "bytes");
    for (const Contender& c : contenders) {
        std::printf("  %-36s %8.2fms %8.2fms %10lld\n", c.name.c_str(), c.Fastest(), c.Median(),
                    static_cast<long long>(c.bytes));
    }
    const Contender& ours = contenders[0];
    const Contender& peer = contenders[1];
    std::printf(
        "  ratio ours / jpeg_* (float, opt.): time %.3f (median), %.3f (fastest); size %.4f\n",
        ours.Median() / peer.Median(), ours.Fastest() / peer.Fastest(),
        static_cast<double>(ours.bytes) / static_cast<double>(peer.bytes));
    if (ours.bytes == 0 || peer.bytes == 0) {
        std::printf("  WARNING: a contender wrote no file\n");
    }
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
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
            std::fprintf(stderr, "usage: tavren-capture-bench [--rounds N] [--size WxH]...\n");
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
