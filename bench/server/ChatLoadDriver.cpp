// tavrend-chat-bench: one sender and N members in one channel on loopback, against the real
// tavrend and against a bare fan-out peer in the same run.
//
//   tavrend-chat-bench [--members 100,1000] [--lines N] [--tavrend PATH]
//
// For each N it reports the lines per second delivered to every member when the sender writes as
// fast as it can, and the median and 99th-percentile time from the sender's write to a member's
// read at half the slower one's rate, for tavrend and for the peer (a loop of plain writes to
// every member, no login, no queues), and tavrend's figures as ratios of the peer's. The driver
// and the servers share the machine: run it when the machine is quiet.
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

#include "ChannelLoad.h"
#include "FanOutPeer.h"
#include "TavrendUnderTest.h"

namespace {

using tavren::bench::ChannelLoad;
using tavren::bench::LoadFigures;

struct Options {
    std::vector<int> members{100, 1000};
    int lines = 0;  // 0: chosen per N, so that each run takes a few seconds
    std::filesystem::path tavrend;
};

std::filesystem::path defaultTavrend() {
    if (const char* folder = std::getenv("TAVREN_BIN_DIR")) {
        return std::filesystem::path(folder) / "tavrend";
    }
    // build/bench/bin/tavrend-chat-bench -> build/bin/tavrend
    return std::filesystem::canonical("/proc/self/exe").parent_path() / ".." / ".." / "bin" /
           "tavrend";
}

Options parse(int argc, char** argv) {
    Options options;
    options.tavrend = defaultTavrend();
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string option = argv[i];
        const std::string value = argv[i + 1];
        if (option == "--members") {
            options.members.clear();
            std::stringstream list(value);
            for (std::string item; std::getline(list, item, ',');) {
                options.members.push_back(std::stoi(item));
            }
        } else if (option == "--lines") {
            options.lines = std::stoi(value);
        } else if (option == "--tavrend") {
            options.tavrend = value;
        } else {
            throw std::runtime_error("unknown option " + option);
        }
    }
    return options;
}

// Each member is a socket here and one in the server.
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

void show(const char* who, const Round& round, int members, double pacedRate) {
    std::printf(
        "  %-8s %9.0f lines/s (%10.0f deliveries/s); at %6.0f lines/s: p50 %7.0f us, p99 %7.0f "
        "us\n",
        who, round.blast.linesPerSecond, round.blast.linesPerSecond * (members + 1), pacedRate,
        round.paced.p50Micros, round.paced.p99Micros);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Options options = parse(argc, argv);
        allowManySockets();
        char pattern[] = "/tmp/tavrend-bench-XXXXXX";
        const std::filesystem::path folder = mkdtemp(pattern);
        for (const int members : options.members) {
            const int lines = options.lines > 0 ? options.lines : std::max(500, 400000 / members);
            std::printf("%d members, %d lines of about 40 bytes\n", members, lines);
            const auto round = folder / std::to_string(members);
            std::filesystem::create_directories(round);
            tavren::bench::TavrendUnderTest tavrend(options.tavrend, round, members);
            ChannelLoad tavrendLoad(tavrend.port(), members, true);
            tavren::bench::FanOutPeer peer;
            ChannelLoad peerLoad(peer.port(), members, false);
            Round server;
            Round bare;
            server.blast = tavrendLoad.blast(lines);
            bare.blast = peerLoad.blast(lines);
            // Latency is measured for both at one rate that both keep up with.
            const double rate =
                std::min(server.blast.linesPerSecond, bare.blast.linesPerSecond) / 2;
            server.paced = tavrendLoad.paced(lines / 2, rate);
            bare.paced = peerLoad.paced(lines / 2, rate);
            show("tavrend", server, members, rate);
            show("peer", bare, members, rate);
            std::printf("  tavrend/peer: throughput %.2f, p50 latency %.2f, p99 latency %.2f\n\n",
                        server.blast.linesPerSecond / bare.blast.linesPerSecond,
                        server.paced.p50Micros / bare.paced.p50Micros,
                        server.paced.p99Micros / bare.paced.p99Micros);
            std::fflush(stdout);
        }
        std::filesystem::remove_all(folder);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "tavrend-chat-bench: " << error.what() << "\n";
        return 1;
    }
}
