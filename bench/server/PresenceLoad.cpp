#include "PresenceLoad.h"

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

// What the sender wrote, as it comes out at a receiver: the away text, the last field of a
// presence record; the text of a channel line, after its sender field. Empty for anything else.
std::string_view sentText(PresenceLoad::Kind kind, const protocol::Frame& frame) {
    const std::string_view payload = frame.payload;
    if (kind == PresenceLoad::Kind::kPresence) {
        if (frame.code != out::kBuddyPresence || payload.find(':') != std::string_view::npos) {
            return {};
        }
        return payload.substr(payload.rfind(';') + 1);
    }
    if (frame.code != out::kChannelHostMessage) {
        return {};
    }
    const std::size_t colon = payload.rfind(':');
    return colon == std::string_view::npos ? std::string_view() : payload.substr(colon + 1);
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

void logIn(BenchSocket& socket, const std::string& name) {
    socket.send(in::kVersionBeforeLogin, "1.0.0");
    socket.skipTo(out::kHello);
    socket.send(in::kCredentials, name + ":" + TavrendUnderTest::kPassword);
    socket.skipTo(out::kAccountRefresh);
    socket.send(in::kAccountRefreshOk, "OK");
    socket.skipTo(out::kFloodMeters);
}

void send(PresenceLoad::Kind kind, BenchSocket& sender, const std::string& text) {
    if (kind == PresenceLoad::Kind::kPresence) {
        sender.send(in::kAwayStatus, "/away " + text);
    } else {
        sender.send(in::kRoomLine, std::string(kChannel) + ":" + text);
    }
}

}  // namespace

PresenceLoad::PresenceLoad(std::uint16_t port, int watchers) {
    for (int i = 0; i < watchers; ++i) {
        sockets_.push_back(std::make_unique<BenchSocket>(port));
        BenchSocket& watcher = *sockets_.back();
        logIn(watcher, "m" + std::to_string(i));
        watcher.send(in::kAddBuddy, "sender");
        watcher.send(in::kJoinRoom, kChannel);
        watcher.skipTo(out::kJoinedRoom);
    }
    sockets_.push_back(std::make_unique<BenchSocket>(port));
    sender_ = sockets_.back().get();
    logIn(*sender_, "sender");
    sender_->send(in::kJoinRoom, kChannel);
    sender_->skipTo(out::kJoinedRoom);
    synchronise();
}

void PresenceLoad::synchronise() {
    for (const Kind kind : {Kind::kPresence, Kind::kChannelLine}) {
        send(kind, *sender_, std::string(kMarker));
        for (const auto& socket : sockets_) {
            if (kind == Kind::kPresence && socket.get() == sender_) {
                continue;  // nobody's watcher
            }
            while (sentText(kind, socket->next()) != kMarker) {
            }
        }
    }
}

LoadFigures PresenceLoad::blast(Kind kind, int changes) {
    return run(kind, changes, 0);
}

LoadFigures PresenceLoad::paced(Kind kind, int changes, double perSecond) {
    return run(kind, changes, perSecond);
}

LoadFigures PresenceLoad::run(Kind kind, int changes, double perSecond) {
    const std::size_t receivers = kind == Kind::kPresence ? sockets_.size() - 1 : sockets_.size();
    const std::size_t expected = receivers * static_cast<std::size_t>(changes);
    std::vector<std::int64_t> latencies;
    latencies.reserve(expected);
    std::int64_t lastRead = 0;
    std::string failure;

    // Every receiver is read on one thread, as frames arrive; the sender writes on this one.
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
                    throw std::runtime_error("nothing arrived for ten seconds");
                }
                for (int i = 0; i < count; ++i) {
                    static_cast<BenchSocket*>(ready[i].data.ptr)
                        ->drain([&](const protocol::Frame& frame) {
                            const std::string_view text = sentText(kind, frame);
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
    for (int i = 0; i < changes; ++i) {
        if (perSecond > 0) {
            std::this_thread::sleep_until(std::chrono::steady_clock::time_point(
                std::chrono::nanoseconds(start + static_cast<std::int64_t>(i * 1e9 / perSecond))));
        }
        send(kind, *sender_, std::to_string(i) + " " + std::to_string(nowNanos()));
    }
    reader.join();
    if (!failure.empty()) {
        throw std::runtime_error(failure);
    }
    LoadFigures figures;
    figures.linesPerSecond = changes / (static_cast<double>(lastRead - start) / 1e9);
    figures.p50Micros = percentile(latencies, 0.50);
    figures.p99Micros = percentile(latencies, 0.99);
    return figures;
}

}  // namespace tavren::bench
