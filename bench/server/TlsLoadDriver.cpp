// tavrend-tls-bench: what encryption costs the server, measured against the plain protocol on
// the same server build in the same run. For each of plain and TLS, a fresh tavrend:
//   - logins per second: members log in one after another, each on a new connection;
//   - memory per idle member: the server's resident memory before and after `--idle` members
//     have logged in and joined a channel;
//   - fan-out CPU: one sender and `--members` members in one channel; the server's CPU time
//     (user + system, from /proc) per line delivered to every member.
//
//   tavrend-tls-bench [--members 1000] [--lines 400] [--idle 2000] [--logins 300]
//                     [--tavrend PATH]
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "BenchSocket.h"
#include "ChannelLoad.h"
#include "TavrendUnderTest.h"

namespace {

using tavren::bench::BenchSocket;
using tavren::bench::ChannelLoad;
using tavren::bench::TavrendUnderTest;

struct Options {
    int members = 1000;
    int lines = 400;
    int idle = 2000;
    int logins = 300;
    std::filesystem::path tavrend;
};

struct Figures {
    double loginsPerSecond = 0;
    double idleKiB = 0;           // resident memory per idle logged-in member
    double cpuMicrosPerLine = 0;  // server CPU per line delivered to every member
    double linesPerSecond = 0;
};

Options parse(int argc, char** argv) {
    Options options;
    options.tavrend = std::filesystem::canonical("/proc/self/exe").parent_path() / ".." / ".." /
                      "bin" / "tavrend";
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string option = argv[i];
        const std::string value = argv[i + 1];
        if (option == "--members") {
            options.members = std::stoi(value);
        } else if (option == "--lines") {
            options.lines = std::stoi(value);
        } else if (option == "--idle") {
            options.idle = std::stoi(value);
        } else if (option == "--logins") {
            options.logins = std::stoi(value);
        } else if (option == "--tavrend") {
            options.tavrend = value;
        } else {
            throw std::runtime_error("unknown option " + option);
        }
    }
    return options;
}

// Resident memory of a process in KiB.
double residentKiB(pid_t pid) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmRSS:", 0) == 0) {
            return std::stod(line.substr(6));
        }
    }
    throw std::runtime_error("no VmRSS for the server");
}

// User and system CPU time of a process in microseconds.
double cpuMicros(pid_t pid) {
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string text((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
    std::istringstream fields(text.substr(text.rfind(')') + 2));
    std::string field;
    double user = 0;
    double system = 0;
    for (int i = 3; i <= 15 && fields >> field; ++i) {
        if (i == 14) {
            user = std::stod(field);
        } else if (i == 15) {
            system = std::stod(field);
        }
    }
    return (user + system) * 1e6 / static_cast<double>(sysconf(_SC_CLK_TCK));
}

Figures measure(const Options& options, const std::filesystem::path& folder, bool encrypted) {
    Figures figures;
    const int accounts = std::max({options.members, options.idle, options.logins});
    {
        TavrendUnderTest server(options.tavrend, folder / "logins", accounts);
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < options.logins; ++i) {
            BenchSocket member(server.port(), encrypted);
            tavren::bench::logInToChannel(member, "m" + std::to_string(i));
        }
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        figures.loginsPerSecond = options.logins / seconds;
    }
    {
        TavrendUnderTest server(options.tavrend, folder / "idle", accounts);
        const double before = residentKiB(server.pid());
        std::vector<std::unique_ptr<BenchSocket>> idle;
        for (int i = 0; i < options.idle; ++i) {
            idle.push_back(std::make_unique<BenchSocket>(server.port(), encrypted));
            tavren::bench::logInToChannel(*idle.back(), "m" + std::to_string(i));
        }
        usleep(200000);
        figures.idleKiB = (residentKiB(server.pid()) - before) / options.idle;
    }
    {
        TavrendUnderTest server(options.tavrend, folder / "fanout", accounts);
        ChannelLoad load(server.port(), options.members, true, encrypted);
        const double cpuBefore = cpuMicros(server.pid());
        const auto round = load.blast(options.lines);
        figures.cpuMicrosPerLine = (cpuMicros(server.pid()) - cpuBefore) / options.lines;
        figures.linesPerSecond = round.linesPerSecond;
    }
    return figures;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Options options = parse(argc, argv);
        const auto folder = std::filesystem::temp_directory_path() /
                            ("tavrend-tls-bench-" + std::to_string(getpid()));
        const Figures plain = measure(options, folder / "plain", false);
        const Figures tls = measure(options, folder / "tls", true);
        std::filesystem::remove_all(folder);
        std::printf("%-34s %12s %12s %8s\n", "", "plain", "TLS", "TLS/plain");
        std::printf("%-34s %12.0f %12.0f %8.2f\n", "logins per second (one at a time)",
                    plain.loginsPerSecond, tls.loginsPerSecond,
                    tls.loginsPerSecond / plain.loginsPerSecond);
        std::printf("%-34s %12.2f %12.2f %8.2f   (+%.2f KiB)\n",
                    ("KiB per idle member (" + std::to_string(options.idle) + ")").c_str(),
                    plain.idleKiB, tls.idleKiB, tls.idleKiB / plain.idleKiB,
                    tls.idleKiB - plain.idleKiB);
        std::printf("%-34s %12.0f %12.0f %8.2f\n",
                    ("server CPU us per line to " + std::to_string(options.members)).c_str(),
                    plain.cpuMicrosPerLine, tls.cpuMicrosPerLine,
                    tls.cpuMicrosPerLine / plain.cpuMicrosPerLine);
        std::printf("%-34s %12.0f %12.0f %8.2f\n", "lines per second (blast)", plain.linesPerSecond,
                    tls.linesPerSecond, tls.linesPerSecond / plain.linesPerSecond);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tavrend-tls-bench: %s\n", error.what());
        return 1;
    }
}
