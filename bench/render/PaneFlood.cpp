// A flood of room lines into one conversation pane on the offscreen platform: 20,000 formatted
// lines (the mix of ChatLines.h, smileys and links included).
//
// Two ways of delivering them, each reported as lines/s (from the first append until the last
// line is shown), the CPU time the user-interface thread spent per line, and the longest stall
// (the worst lateness of a 1 ms timer running alongside: how long the interface stood still):
//   burst N      N lines per turn of the event loop, as fast as the pane takes them
//   arrive R/s   lines arrive at R per second, and each turn of the event loop appends all that
//                arrived since the turn before, as a socket read does; the pane keeps up when
//                the run takes about 20,000 / R seconds
// The peer, measured in the same run, is the direct way: a plain QTextBrowser that inserts
// each line into a paragraph of its own with QTextCursor::insertHtml, scrolls to the end, and
// keeps the same 180000/125000 bound on its markup by setting the document to the kept markup
// again (setHtml).
//
// Arguments: --pane-only leaves out the peer, --peer-only the pane (for profiling either).
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QTextCursor>
#include <QTimer>
#include <QUrl>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>

#include "ChatLines.h"
#include "render/ChatLineFormatter.h"
#include "render/PaneMarkup.h"
#include "render/ui/ChatPane.h"
#include "render/ui/PaneReset.h"

namespace {

using tavren::ChatLineFormatter;
using tavren::ChatPane;

constexpr int kLineCount = 20000;

// CPU time of the user-interface thread (of the process where threads cannot be told apart).
qint64 ThreadCpuNanoseconds() {
#ifdef CLOCK_THREAD_CPUTIME_ID
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return qint64(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
#else
    return qint64(double(std::clock()) * 1e9 / CLOCKS_PER_SEC);
#endif
}

struct Delivery {
    int burst = 0;              // lines per turn, or
    double linesPerSecond = 0;  // an arrival rate
};

struct FloodResult {
    double linesPerSecond = 0;
    double cpuMicrosecondsPerLine = 0;
    double longestStallMs = 0;
};

// A pane under test: takes lines, and shows whatever is still waiting when asked.
struct Target {
    std::function<void(const QString&)> append;
    std::function<void()> settle;
};

FloodResult Flood(const QStringList& lines, const Delivery& delivery, const Target& target) {
    QElapsedTimer clock;
    clock.start();
    qint64 lastTick = clock.nsecsElapsed();
    qint64 longestStall = 0;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    ticker.setInterval(1);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        longestStall = std::max(longestStall, now - lastTick - 1'000'000);
        lastTick = now;
    });
    ticker.start();

    qsizetype next = 0;
    bool done = false;
    QTimer feeder;
    feeder.setInterval(0);
    const qint64 start = clock.nsecsElapsed();
    const qint64 cpuStart = ThreadCpuNanoseconds();
    QObject::connect(&feeder, &QTimer::timeout, [&] {
        if (next >= lines.size()) {
            feeder.stop();
            target.settle();
            done = true;
            return;
        }
        qsizetype until = next + delivery.burst;
        if (delivery.linesPerSecond > 0) {
            until = qsizetype((clock.nsecsElapsed() - start) / 1e9 * delivery.linesPerSecond);
        }
        for (until = std::min(until, lines.size()); next < until; ++next) {
            target.append(lines.at(next));
        }
    });
    feeder.start();
    while (!done) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    const double seconds = (clock.nsecsElapsed() - start) / 1e9;
    const double cpu = (ThreadCpuNanoseconds() - cpuStart) / 1e3;
    ticker.stop();
    return {lines.size() / seconds, cpu / lines.size(), longestStall / 1e6};
}

QStringList FormattedLines(const QString& dataRoot) {
    tavren::LineOptions options;
    options.dataRoot = dataRoot;
    ChatLineFormatter formatter(options);
    QStringList lines;
    const QStringList names = {"Alice:", "bob:", "Carol_77:", "dave:"};
    int index = 0;
    for (QString text : tavren::bench::ChatMessages(kLineCount)) {
        lines << formatter.formatLine(ChatLineFormatter::Variant::Room, names.at(index % 4), text,
                                      0x0000FF * (index % 2), 0x00404040, index % 7 == 0, 2);
        ++index;
    }
    return lines;
}

void Print(const char* name, const FloodResult& result) {
    std::printf("  %-22s %7.0f lines/s  %6.1f us CPU/line  longest stall %6.1f ms\n", name,
                result.linesPerSecond, result.cpuMicrosecondsPerLine, result.longestStallMs);
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const bool paneOnly = app.arguments().contains(QStringLiteral("--pane-only"));
    const bool peerOnly = app.arguments().contains(QStringLiteral("--peer-only"));

    QTemporaryDir root;
    QDir(root.path()).mkpath(QStringLiteral("smiles"));
    for (int number = 101; number <= 153; ++number) {
        const QString name = QString::number(number) + QStringLiteral(".gif");
        QFile::copy(QStringLiteral(TAVREN_SMILEY_DIR "/") + name, root.path() + "/smiles/" + name);
    }
    const QStringList lines = FormattedLines(root.path());
    // The peer gets the markup adapted for Qt free of charge: colours with their "#", and the
    // smileys as plain local file addresses, which Qt's own image handler loads and keeps.
    QStringList peerLines;
    const QString written = QStringLiteral("file:///") + root.path() + QStringLiteral("\\smiles\\");
    const QString plainAddress =
        QUrl::fromLocalFile(root.path() + QStringLiteral("/smiles/")).toString();
    for (const QString& line : lines) {
        peerLines << tavren::PaneMarkupForQt(line).replace(written, plainAddress);
    }
    std::printf("%d room lines, %.0f characters of markup each on average\n", kLineCount,
                double(lines.join(QString()).size()) / kLineCount);

    const Delivery deliveries[] = {{1, 0}, {10, 0}, {50, 0}, {0, 20000}, {0, 40000}};
    for (const Delivery& delivery : deliveries) {
        if (delivery.burst > 0) {
            std::printf("burst %d\n", delivery.burst);
        } else {
            std::printf("arrive %.0f/s\n", delivery.linesPerSecond);
        }
        FloodResult ours;
        if (!peerOnly) {
            ChatPane pane;
            pane.setDataRoot(root.path());
            pane.resize(600, 400);
            pane.show();
            tavren::ResetChatPane(pane, 0xFFFFFF);
            ours = Flood(lines, delivery,
                         {[&](const QString& line) { pane.AddChat(line); }, [&] { pane.flush(); }});
            Print("ChatPane", ours);
        }
        if (paneOnly) {
            continue;
        }
        QTextBrowser peer;
        peer.resize(600, 400);
        peer.show();
        peer.document()->setUndoRedoEnabled(false);
        QString peerBody;
        const FloodResult plain =
            Flood(peerLines, delivery,
                  {[&](const QString& line) {
                       QTextCursor cursor(peer.document());
                       cursor.movePosition(QTextCursor::End);
                       if (!peer.document()->isEmpty()) {
                           cursor.insertBlock();
                       }
                       cursor.insertHtml(line);
                       peerBody += line;
                       if (peerBody.size() > ChatPane::TrimAbove) {
                           peerBody = peerBody.right(ChatPane::TrimTo);
                           peer.setHtml(peerBody);
                       }
                       peer.verticalScrollBar()->setValue(peer.verticalScrollBar()->maximum());
                   },
                   [] {}});
        Print("QTextBrowser insertHtml", plain);
        if (peerOnly) {
            continue;
        }
        std::printf("  ChatPane: %.1f x the lines/s, %.1f x less CPU per line\n",
                    ours.linesPerSecond / plain.linesPerSecond,
                    plain.cpuMicrosecondsPerLine / ours.cpuMicrosecondsPerLine);
    }
    return 0;
}
