// tavrend-presence-bench: one member and N watchers who have that member on their buddy lists,
// all in one channel, on the real tavrend over loopback.
//
//   tavrend-presence-bench [--watchers 100,1000] [--changes N] [--tavrend PATH]
//
// For each N it measures the presence fan-out (the member changes its away text; each change is
// one record to every watcher, found through the server's reverse index) against the channel
// fan-out of the same server to the same members (the member talks in the channel), which is the
// peer: the changes per second delivered to everyone when the member writes as fast as it can,
// and the median and 99th-percentile time from write to read at half the slower rate, and the
// ratios presence/channel. The driver and the server share the machine: run it when it is quiet.
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "PresenceLoad.h"
#include "TavrendUnderTest.h"

namespace {

using tavren::bench::LoadFigures;
using tavren::bench::PresenceLoad;

struct Options {
    std::vector<int> watchers{100, 1000};
    int changes = 0;  // 0: chosen per N, so that each run takes a few seconds
    std::filesystem::path tavrend;
};

std::filesystem::path defaultTavrend() {
    if (const char* folder = std::getenv("TAVREN_BIN_DIR")) {
        return std::filesystem::path(folder) / "tavrend";
    }
    return std::filesystem::canonical("/proc/self/exe").parent_path() / ".." / ".." / "bin" /
           "tavrend";
}

Options parse(int argc, char** argv) {
    Options options;
    options.tavrend = defaultTavrend();
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string option = argv[i];
        const std::string value = argv[i + 1];
        if (option == "--watchers") {
            options.watchers.clear();
            std::stringstream list(value);
            for (std::string item; std::getline(list, item, ',');) {
                options.watchers.push_back(std::stoi(item));
            }
        } else if (option == "--changes") {
            options.changes = std::stoi(value);
        } else if (option == "--tavrend") {
            options.tavrend = value;
        } else {
            throw std::runtime_error("unknown option " + option);
        }
    }
    return options;
}

void allowManySockets() {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

struct Round {
    LoadFigures blast;
    LoadFigures paced;
};

void show(const char* what, const Round& round, double pacedRate) {
    std::printf("  %-9s %9.0f changes/s; at %6.0f changes/s: p50 %7.0f us, p99 %7.0f us\n", what,
                round.blast.linesPerSecond, pacedRate, round.paced.p50Micros,
                round.paced.p99Micros);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Options options = parse(argc, argv);
        allowManySockets();
        char pattern[] = "/tmp/tavrend-presence-bench-XXXXXX";
        const std::filesystem::path folder = mkdtemp(pattern);
        for (const int watchers : options.watchers) {
            const int changes =
                options.changes > 0 ? options.changes : std::max(500, 400000 / watchers);
            std::printf("%d watchers, %d changes\n", watchers, changes);
            const auto round = folder / std::to_string(watchers);
            std::filesystem::create_directories(round);
            tavren::bench::TavrendUnderTest tavrend(options.tavrend, round, watchers,
                                                    {"--presence-interval", "0"});
            PresenceLoad load(tavrend.port(), watchers);
            Round presence;
            Round channel;
            presence.blast = load.blast(PresenceLoad::Kind::kPresence, changes);
            channel.blast = load.blast(PresenceLoad::Kind::kChannelLine, changes);
            const double rate =
                std::min(presence.blast.linesPerSecond, channel.blast.linesPerSecond) / 2;
            presence.paced = load.paced(PresenceLoad::Kind::kPresence, changes / 2, rate);
            channel.paced = load.paced(PresenceLoad::Kind::kChannelLine, changes / 2, rate);
            show("presence", presence, rate);
            show("channel", channel, rate);
            std::printf(
                "  presence/channel: throughput %.2f, p50 latency %.2f, p99 latency %.2f\n\n",
                presence.blast.linesPerSecond / channel.blast.linesPerSecond,
                presence.paced.p50Micros / channel.paced.p50Micros,
                presence.paced.p99Micros / channel.paced.p99Micros);
            std::fflush(stdout);
        }
        std::filesystem::remove_all(folder);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "tavrend-presence-bench: " << error.what() << "\n";
        return 1;
    }
}
