// Room lines per second through ChatLineFormatter::formatLine (smileys and links on) against the
// plain formatter the tests compare it with, which runs the 69 smiley passes one after another
// and splits and joins the words. Both format the same mix of messages with the same clock and
// must produce the same bytes; the run stops if they do not.
#include <benchmark/benchmark.h>

#include <QTime>
#include <algorithm>
#include <cstdio>
#include <map>
#include <string>

#include "ChatLines.h"
#include "render/ChatLineFormatter.h"
#include "render/PlainLineFormatter.h"

namespace {

using tavren::ChatLineFormatter;
using tavren::LineOptions;

const QStringList& Messages() {
    static const QStringList messages = tavren::bench::ChatMessages(4096);
    return messages;
}

LineOptions Options() {
    LineOptions options;
    options.dataRoot = QStringLiteral("C:\\Program Files\\Chat");
    return options;
}

QTime Clock() {
    return QTime::currentTime();
}

void Formatter(benchmark::State& state) {
    ChatLineFormatter formatter(Options());
    formatter.setClock(Clock);
    qsizetype bytes = 0;
    for (auto _ : state) {
        for (const QString& message : Messages()) {
            QString text = message;
            bytes += formatter
                         .formatLine(ChatLineFormatter::Variant::Room, QStringLiteral("Alice:"),
                                     text, 255, 0, false, 2)
                         .size();
        }
    }
    benchmark::DoNotOptimize(bytes);
    state.SetItemsProcessed(state.iterations() * Messages().size());
}
BENCHMARK(Formatter)->Unit(benchmark::kMillisecond);

void PlainFormatter(benchmark::State& state) {
    const tavren::plain::PlainLineFormatter formatter(Options(), Clock);
    qsizetype bytes = 0;
    for (auto _ : state) {
        for (const QString& message : Messages()) {
            QString text = message;
            bytes += formatter
                         .formatLine(ChatLineFormatter::Variant::Room, QStringLiteral("Alice:"),
                                     text, 255, 0, false, 2)
                         .size();
        }
    }
    benchmark::DoNotOptimize(bytes);
    state.SetItemsProcessed(state.iterations() * Messages().size());
}
BENCHMARK(PlainFormatter)->Unit(benchmark::kMillisecond);

bool SameOutput() {
    const auto fixed = [] { return QTime(15, 7, 9); };
    ChatLineFormatter formatter(Options());
    formatter.setClock(fixed);
    const tavren::plain::PlainLineFormatter plain(Options(), fixed);
    for (const QString& message : Messages()) {
        QString ours = message;
        QString theirs = message;
        if (formatter.formatLine(ChatLineFormatter::Variant::Room, "Alice:", ours, 255, 0, false,
                                 2) != plain.formatLine(ChatLineFormatter::Variant::Room,
                                                        "Alice:", theirs, 255, 0, false, 2)) {
            std::fprintf(stderr, "different output for: %s\n", qPrintable(message));
            return false;
        }
    }
    return true;
}

// The usual table, then each benchmark's best rate over its repetitions (run with
// --benchmark_repetitions=5 on a shared machine) against the plain formatter of this run.
class RatioReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            const auto rate = run.counters.find("items_per_second");
            if (run.run_type != Run::RT_Iteration || run.error_occurred ||
                rate == run.counters.end()) {
                continue;
            }
            double& best = rates_[run.run_name.str()];
            best = std::max(best, rate->second.value);
        }
    }
    void Finalize() override {
        ConsoleReporter::Finalize();
        const auto peer = rates_.find("PlainFormatter");
        for (const auto& [name, rate] : rates_) {
            std::printf("%-16s %9.0f lines/s", name.c_str(), rate);
            if (peer != rates_.end() && peer->second > 0) {
                std::printf("  %5.2f x PlainFormatter", rate / peer->second);
            }
            std::printf("\n");
        }
    }

  private:
    std::map<std::string, double> rates_;
};

}  // namespace

int main(int argc, char** argv) {
    if (!SameOutput()) {
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
