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
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
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

// A contender's run: it hands the file's size (0 when it failed) to `done`, at once or, for the
// capture, once its steps have run in the event loop.
using Done = std::function<void(qint64)>;

// The capture's steps on the whole screen, as the client runs them: one step per turn of the
// application's own event loop, the result told by its signals.
class TavrenCapture {
  public:
    TavrenCapture(const QString& folder, tavren::Prompter& prompter)
        : folder_(folder), capture_(folder, prompter) {
        QObject::connect(&capture_, &tavren::ScreenCapture::captured, &capture_,
                         [this](const QString& path) { finish(QFile(path).size()); });
        QObject::connect(&capture_, &tavren::ScreenCapture::failed, &capture_,
                         [this] { finish(0); });
    }

    void run(const QImage& screen, Done done) {
        done_ = std::move(done);
        capture_.start(screen, screen.rect(), QStringLiteral("bench"));
    }

  private:
    void finish(qint64 size) {
        QDir(folder_).remove(QStringLiteral("downloaded/bench_ss0.jpg"));
        Done done = std::move(done_);
        done(size);
    }

    QString folder_;
    tavren::ScreenCapture capture_;
    Done done_;
};

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
    Contender(std::string n, std::function<void(Done)> r) : name(std::move(n)), run(std::move(r)) {}

    std::string name;
    std::function<void(Done)> run;
    std::vector<double> milliseconds;
    qint64 bytes = 0;

    double Fastest() const { return *std::min_element(milliseconds.begin(), milliseconds.end()); }
    double Median() const {
        std::vector<double> sorted = milliseconds;
        std::sort(sorted.begin(), sorted.end());
        return sorted[sorted.size() / 2];
    }
};

// One picture size: the contenders in turn, round after round (an untimed round first, to page
// in the code and the pixels), each run started from the event loop once the one before it has
// finished; then the report, and `finished`.
class Measurement {
  public:
    Measurement(int width, int height, int rounds, std::function<void()> finished)
        : width_(width),
          height_(height),
          rounds_(rounds),
          finished_(std::move(finished)),
          screen_(GrabbedScreen(width, height)),
          capture_(folder_.path(), prompter_),
          peerFile_(folder_.filePath(QStringLiteral("peer.jpg")).toStdString()) {
        QDir(folder_.path()).mkpath(QStringLiteral("downloaded"));
        contenders_.emplace_back("tavren ScreenCapture",
                                 [this](Done done) { capture_.run(screen_, std::move(done)); });
        contenders_.emplace_back("libjpeg-turbo jpeg_* (float, opt.)", [this](Done done) {
            done(CaptureWithLibjpeg(screen_, peerFile_));
        });
        contenders_.emplace_back("tjCompress2 (defaults)", [this](Done done) {
            done(CaptureWithTurboJpeg(screen_, peerFile_));
        });
    }

    void start() { runNext(); }

  private:
    void runNext() {
        if (round_ > rounds_) {
            report();
            finished_();
            return;
        }
        Contender& contender = contenders_[index_];
        const auto start = Clock::now();
        contender.run([this, &contender, start](qint64 bytes) {
            const double elapsed =
                std::chrono::duration<double, std::milli>(Clock::now() - start).count();
            if (round_ > 0) {
                contender.bytes = bytes;
                contender.milliseconds.push_back(elapsed);
            }
            if (++index_ == contenders_.size()) {
                index_ = 0;
                ++round_;
            }
            QTimer::singleShot(0, [this] { runNext(); });
        });
    }

    void report() const {
        std::printf(
            "\n%dx%d grabbed screen (RGB32) to a JPEG file on disk, quality %d, 4:2:0, %d rounds\n",
            width_, height_, kQuality, rounds_);
        std::printf("  %-36s %10s %10s %10s\n", "path", "fastest", "median", "bytes");
        for (const Contender& c : contenders_) {
            std::printf("  %-36s %8.2fms %8.2fms %10lld\n", c.name.c_str(), c.Fastest(), c.Median(),
                        static_cast<long long>(c.bytes));
        }
        const Contender& ours = contenders_[0];
        const Contender& peer = contenders_[1];
        std::printf(
            "  ratio ours / jpeg_* (float, opt.): time %.3f (median), %.3f (fastest); size %.4f\n",
            ours.Median() / peer.Median(), ours.Fastest() / peer.Fastest(),
            static_cast<double>(ours.bytes) / static_cast<double>(peer.bytes));
        if (ours.bytes == 0 || peer.bytes == 0) {
            std::printf("  WARNING: a contender wrote no file\n");
        }
    }

    int width_;
    int height_;
    int rounds_;
    std::function<void()> finished_;
    QImage screen_;
    QTemporaryDir folder_;
    SilentPrompter prompter_;
    TavrenCapture capture_;
    std::string peerFile_;
    std::vector<Contender> contenders_;
    std::size_t index_ = 0;
    int round_ = 0;  // 0: the untimed round
};

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
    // The sizes one after another, all in the one event loop the capture runs in.
    std::unique_ptr<Measurement> current;
    std::size_t next = 0;
    std::function<void()> measureNext = [&] {
        if (next == sizes.size()) {
            QCoreApplication::quit();
            return;
        }
        const auto [width, height] = sizes[next++];
        QTimer::singleShot(0, [&, width, height] {
            current = std::make_unique<Measurement>(width, height, rounds, measureNext);
            current->start();
        });
    };
    measureNext();
    return QCoreApplication::exec();
}
