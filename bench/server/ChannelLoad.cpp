#include "ChannelLoad.h"

#include <sys/epoll.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

#include "TavrendUnderTest.h"
#include "core/protocol/Catalogue.h"

namespace tavren::bench {

namespace {

namespace in = protocol::client_to_server;
namespace out = protocol::server_to_client;

constexpr const char* kChannel = "Bench Room";
constexpr std::string_view kMarker = "sync";

std::int64_t nowNanos() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// The text of a relayed line: what follows the sender field.
std::string_view lineText(const std::string& payload) {
    const std::size_t colon = payload.rfind(':');
    return colon == std::string::npos ? std::string_view()
                                      : std::string_view(payload).substr(colon + 1);
}

double percentile(std::vector<std::int64_t>& samples, double fraction) {
    if (samples.empty()) {
        return 0;
    }
    const auto rank = static_cast<std::size_t>(fraction * static_cast<double>(samples.size() - 1));
    std::nth_element(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(rank),
                     samples.end());
    return static_cast<double>(samples[rank]) / 1000.0;
}

}  // namespace

void logInToChannel(BenchSocket& socket, const std::string& name) {
    socket.send(in::kVersionBeforeLogin, "1.0.0");
    socket.skipTo(out::kHello);
    socket.send(in::kCredentials, name + ":" + TavrendUnderTest::kPassword);
    socket.skipTo(out::kAccountRefresh);
    socket.send(in::kAccountRefreshOk, "OK");
    socket.skipTo(out::kFloodMeters);
    socket.send(in::kJoinRoom, kChannel);
    socket.skipTo(out::kJoinedRoom);
}

ChannelLoad::ChannelLoad(std::uint16_t port, int members, bool logIn, bool encrypted) {
    for (int i = 0; i <= members; ++i) {
        sockets_.push_back(std::make_unique<BenchSocket>(port, encrypted));
        if (logIn) {
            logInToChannel(*sockets_.back(), i < members ? "m" + std::to_string(i) : "sender");
        }
    }
    sender_ = sockets_.back().get();
    synchronise();
}

void ChannelLoad::synchronise() {
    sender_->send(in::kRoomLine, std::string(kChannel) + ":" + std::string(kMarker));
    for (const auto& socket : sockets_) {
        while (true) {
            const protocol::Frame frame = socket->skipTo(out::kChannelHostMessage);
            if (lineText(frame.payload) == kMarker) {
                break;
            }
        }
    }
}

LoadFigures ChannelLoad::blast(int lines) {
    return run(lines, 0);
}

LoadFigures ChannelLoad::paced(int lines, double perSecond) {
    return run(lines, perSecond);
}

LoadFigures ChannelLoad::run(int lines, double perSecond) {
    const std::size_t expected = sockets_.size() * static_cast<std::size_t>(lines);
    std::vector<std::int64_t> latencies;
    latencies.reserve(expected);
    std::int64_t lastRead = 0;
    std::string failure;

    // Every member is read on one thread, as they arrive; the sender writes on this one.
    std::thread reader([&] {
        const int poller = epoll_create1(0);
        for (const auto& socket : sockets_) {
            epoll_event event{};
            event.events = EPOLLIN;
            event.data.ptr = socket.get();
            epoll_ctl(poller, EPOLL_CTL_ADD, socket->fd(), &event);
        }
        epoll_event ready[1024];
        try {
            while (latencies.size() < expected) {
                const int count = epoll_wait(poller, ready, 1024, 10000);
                if (count <= 0) {
                    throw std::runtime_error("no lines for ten seconds");
                }
                for (int i = 0; i < count; ++i) {
                    static_cast<BenchSocket*>(ready[i].data.ptr)
                        ->drain([&](const protocol::Frame& frame) {
                            if (frame.code != out::kChannelHostMessage) {
                                return;
                            }
                            const std::string_view text = lineText(frame.payload);
                            const std::size_t blank = text.find(' ');
                            std::int64_t sentAt = 0;
                            if (blank == std::string_view::npos ||
                                std::from_chars(text.data() + blank + 1, text.data() + text.size(),
                                                sentAt)
                                        .ec != std::errc{}) {
                                return;
                            }
                            lastRead = nowNanos();
                            latencies.push_back(lastRead - sentAt);
                        });
                }
            }
        } catch (const std::exception& error) {
            failure = error.what();
        }
        close(poller);
    });

    const std::int64_t start = nowNanos();
    const std::string prefix = std::string(kChannel) + ":";
    for (int i = 0; i < lines; ++i) {
        if (perSecond > 0) {
            std::this_thread::sleep_until(std::chrono::steady_clock::time_point(
                std::chrono::nanoseconds(start + static_cast<std::int64_t>(i * 1e9 / perSecond))));
        }
        sender_->send(in::kRoomLine, prefix + std::to_string(i) + " " + std::to_string(nowNanos()));
    }
    reader.join();
    if (!failure.empty()) {
        throw std::runtime_error(failure);
    }
    LoadFigures figures;
    figures.linesPerSecond = lines / (static_cast<double>(lastRead - start) / 1e9);
    figures.p50Micros = percentile(latencies, 0.50);
    figures.p99Micros = percentile(latencies, 0.99);
    return figures;
}

}  // namespace tavren::bench
