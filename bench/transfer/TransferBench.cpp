// tavren-transfer-bench: one file over a direct connection between two DirectLinks, each on a
// thread of its own with its own event loop (as two clients would be), plain and inside TLS,
// against a plain TCP copy of the same file in the same run, and the process's resident memory
// while the file passes.
//
//   tavren-transfer-bench [--size-mib N] [--runs N] [--dir FOLDER]
#include <sys/resource.h>
#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <vector>

#include "PlainCopy.h"
#include "ResidentMemory.h"
#include "core/Prompter.h"
#include "pm/DirectLink.h"

namespace tavren::bench {
namespace {

class PrintingPrompter : public Prompter {
  public:
    void message(const QString& text, const QString& title, Icon) override {
        std::fprintf(stderr, "%s: %s\n", qPrintable(title), qPrintable(text));
    }
    Answer askYesNo(const QString&, const QString&) override { return Answer::No; }
    Answer askYesNoCancel(const QString&, const QString&) override { return Answer::Cancel; }
    std::optional<QString> askText(const QString&, const QString&, const QString&) override {
        return std::nullopt;
    }
};

struct Options {
    qint64 sizeMib = 512;
    int runs = 3;
    QString folder;
};

// Pseudo-random bytes: nothing in the path can take a short cut on them.
bool writeSource(const QString& path, qint64 size) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    std::vector<quint64> chunk(1 << 17);  // 1 MiB
    QRandomGenerator random(12345);
    for (qint64 left = size; left > 0;) {
        random.fillRange(chunk.data(), chunk.size());
        const qint64 now = std::min<qint64>(left, static_cast<qint64>(chunk.size() * 8));
        if (file.write(reinterpret_cast<const char*>(chunk.data()), now) != now) {
            return false;
        }
        left -= now;
    }
    return true;
}

// One member's link, made on its own thread.
struct Member {
    QThread thread;
    DirectLink* link = nullptr;
    PrintingPrompter prompter;

    Member(const QString& own, const QString& peer, const QString& folder, int lowerPort,
           bool encrypt) {
        thread.start();
        // Made on its thread, so that its timers and sockets belong there. The thread's event
        // dispatcher lives on it and serves as the place to run there.
        while (thread.eventDispatcher() == nullptr) {
            QThread::yieldCurrentThread();
        }
        QMetaObject::invokeMethod(
            thread.eventDispatcher(),
            [&] {
                link = new DirectLink(peer, folder, prompter);
                DirectLink::Options options;
                options.ownName = own;
                options.lowerPort = lowerPort;
                options.upperPort = lowerPort + 500;
                options.autoAccept = true;
                options.encrypt = encrypt;
                link->setOptions(options);
            },
            Qt::BlockingQueuedConnection);
    }
    ~Member() {
        QMetaObject::invokeMethod(
            link, [this] { delete link; }, Qt::BlockingQueuedConnection);
        thread.quit();
        thread.wait();
    }
};

// CPU time the whole process has used so far (both links' threads), in seconds.
double cpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

struct LinkResult {
    double seconds = -1;
    double cpu = 0;
    long startKb = 0;
    long peakKb = 0;
    bool encrypted = false;
};

LinkResult sendOverLinks(const QString& source, const QString& folder, bool encrypt) {
    QDir(folder).mkpath(QStringLiteral("."));
    Member alice(QStringLiteral("alice"), QStringLiteral("bob"), folder + QStringLiteral("/a"),
                 41000, encrypt);
    Member bob(QStringLiteral("bob"), QStringLiteral("alice"), folder, 42000, encrypt);
    // The handshake as the server relays it: to the other thread, with the address added.
    const auto relay = [](DirectLink* from, DirectLink* to) {
        QObject::connect(
            from, &DirectLink::handshake, to,
            [to](int kind, const QString& argument) {
                to->onHandshake(kind, argument, QStringLiteral("127.0.0.1"));
            },
            Qt::QueuedConnection);
    };
    relay(alice.link, bob.link);
    relay(bob.link, alice.link);
    QSemaphore done;
    QObject::connect(
        bob.link, &DirectLink::fileShown, bob.link, [&done] { done.release(); },
        Qt::DirectConnection);
    std::atomic<bool> encrypted = false;
    QObject::connect(
        bob.link, &DirectLink::line, bob.link,
        [&encrypted](DirectLink::Speaker, const QString& text) {
            if (text.contains(QLatin1String("Error")) || text.contains(QLatin1String("Lost"))) {
                std::fprintf(stderr, "link: %s\n", qPrintable(text));
            }
            if (text.contains(QLatin1String("connection encrypted"))) {
                encrypted = true;
            }
        });

    LinkResult result;
    ResidentMemory memory;
    QElapsedTimer clock;
    const double cpuBefore = cpuSeconds();
    clock.start();
    QMetaObject::invokeMethod(alice.link, [&] { alice.link->sendFile(source); });
    if (done.tryAcquire(1, 30 * 60 * 1000)) {
        result.seconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
        result.cpu = cpuSeconds() - cpuBefore;
    }
    result.startKb = memory.startKb();
    result.peakKb = memory.peakKb();
    result.encrypted = encrypted;
    return result;
}

double mibPerSecond(qint64 bytes, double seconds) {
    return seconds > 0 ? static_cast<double>(bytes) / (1024.0 * 1024.0) / seconds : 0;
}

int run(const Options& options) {
    QTemporaryDir scratch(
        options.folder.isEmpty()
            ? QDir::temp().filePath(QStringLiteral("tavren-transfer-XXXXXX"))
            : QDir(options.folder).filePath(QStringLiteral("tavren-transfer-XXXXXX")));
    if (!scratch.isValid()) {
        std::fprintf(stderr, "no scratch folder\n");
        return 1;
    }
    const qint64 size = options.sizeMib * 1024 * 1024;
    const QString source = scratch.filePath(QStringLiteral("source.bin"));
    std::printf("writing %lld MiB of random bytes ...\n", static_cast<long long>(options.sizeMib));
    std::fflush(stdout);
    if (!writeSource(source, size)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(source));
        return 1;
    }
    std::printf("%-4s %11s %11s %11s %10s %9s %10s %10s %12s %12s\n", "run", "copy MiB/s",
                "link MiB/s", "TLS MiB/s", "link/copy", "TLS/link", "link CPU s", "TLS CPU s",
                "link RSS+MiB", "TLS RSS+MiB");
    std::vector<double> linkRatios;
    std::vector<double> tlsRatios;
    long worstGrowthKb = 0;
    // One plain and one encrypted transfer of the same file, received whole, or nothing.
    const auto transfer = [&](bool encrypt, LinkResult& result) {
        const QString received = scratch.filePath(QStringLiteral("received"));
        result = sendOverLinks(source, received, encrypt);
        const bool whole =
            QFileInfo(QDir(received).filePath(QStringLiteral("source.bin"))).size() == size;
        QDir(received).removeRecursively();
        return result.seconds >= 0 && whole && result.encrypted == encrypt;
    };
    for (int i = 1; i <= options.runs; ++i) {
        const QString plainTarget = scratch.filePath(QStringLiteral("plain.bin"));
        const double plain = PlainCopy(source.toStdString(), plainTarget.toStdString());
        QFile::remove(plainTarget);
        LinkResult link;
        LinkResult tls;
        if (plain < 0 || !transfer(false, link) || !transfer(true, tls)) {
            std::fprintf(stderr,
                         "run %d failed (copy %.2f s, link %.2f s, TLS %.2f s encrypted %d)\n", i,
                         plain, link.seconds, tls.seconds, tls.encrypted);
            return 1;
        }
        const double plainRate = mibPerSecond(size, plain);
        const double linkRate = mibPerSecond(size, link.seconds);
        const double tlsRate = mibPerSecond(size, tls.seconds);
        const long linkGrowthKb = link.peakKb - link.startKb;
        const long tlsGrowthKb = tls.peakKb - tls.startKb;
        worstGrowthKb = std::max({worstGrowthKb, linkGrowthKb, tlsGrowthKb});
        linkRatios.push_back(linkRate / plainRate);
        tlsRatios.push_back(tlsRate / linkRate);
        std::printf("%-4d %11.1f %11.1f %11.1f %10.2f %9.2f %10.2f %10.2f %12.1f %12.1f\n", i,
                    plainRate, linkRate, tlsRate, linkRate / plainRate, tlsRate / linkRate,
                    link.cpu, tls.cpu, linkGrowthKb / 1024.0, tlsGrowthKb / 1024.0);
        std::fflush(stdout);
    }
    std::sort(linkRatios.begin(), linkRatios.end());
    std::sort(tlsRatios.begin(), tlsRatios.end());
    std::printf(
        "median link/copy: %.2f (target >= 0.50); median TLS/link: %.2f (target >= 0.70); "
        "largest RSS growth: %.1f MiB for a %lld MiB file\n",
        linkRatios[linkRatios.size() / 2], tlsRatios[tlsRatios.size() / 2], worstGrowthKb / 1024.0,
        static_cast<long long>(options.sizeMib));
    return 0;
}

}  // namespace
}  // namespace tavren::bench

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    tavren::bench::Options options;
    const QStringList arguments = app.arguments();
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        const QString value = i + 1 < arguments.size() ? arguments.at(i + 1) : QString();
        if (argument == QLatin1String("--size-mib")) {
            options.sizeMib = value.toLongLong();
            ++i;
        } else if (argument == QLatin1String("--runs")) {
            options.runs = value.toInt();
            ++i;
        } else if (argument == QLatin1String("--dir")) {
            options.folder = value;
            ++i;
        } else {
            std::fprintf(stderr,
                         "usage: tavren-transfer-bench [--size-mib N] [--runs N] [--dir FOLDER]\n");
            return 2;
        }
    }
    if (options.sizeMib < 1 || options.sizeMib > 4095 || options.runs < 1) {
        std::fprintf(stderr, "--size-mib takes 1..4095, --runs at least 1\n");
        return 2;
    }
    return tavren::bench::run(options);
}
