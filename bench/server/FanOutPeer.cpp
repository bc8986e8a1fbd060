#include "FanOutPeer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <map>
#include <stdexcept>
#include <string>

#include "core/protocol/Catalogue.h"
#include "core/protocol/FrameCutter.h"

namespace tavren::bench {

namespace {

void writeAll(int fd, const std::string& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t sent = ::send(fd, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (sent <= 0) {
            return;  // the client went away; the run is over for it
        }
        done += static_cast<std::size_t>(sent);
    }
}

}  // namespace

FanOutPeer::FanOutPeer() {
    listener_ = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener_, 4096) != 0 ||
        getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        close(listener_);
        throw std::runtime_error("the fan-out peer cannot listen");
    }
    port_ = ntohs(address.sin_port);
    stopEvent_ = eventfd(0, 0);
    thread_ = std::thread([this] { run(); });
}

FanOutPeer::~FanOutPeer() {
    const std::uint64_t one = 1;
    (void)!write(stopEvent_, &one, sizeof one);
    thread_.join();
    for (const int fd : connections_) {
        close(fd);
    }
    close(listener_);
    close(stopEvent_);
}

void FanOutPeer::run() {
    const int poller = epoll_create1(0);
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = stopEvent_;
    epoll_ctl(poller, EPOLL_CTL_ADD, stopEvent_, &event);
    event.data.fd = listener_;
    epoll_ctl(poller, EPOLL_CTL_ADD, listener_, &event);
    std::map<int, protocol::FrameCutter> cutters;
    epoll_event ready[256];
    for (;;) {
        const int count = epoll_wait(poller, ready, 256, -1);
        for (int i = 0; i < count; ++i) {
            const int fd = ready[i].data.fd;
            if (fd == stopEvent_) {
                close(poller);
                return;
            }
            if (fd == listener_) {
                const int client = accept(listener_, nullptr, nullptr);
                if (client < 0) {
                    continue;
                }
                const int on = 1;
                setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
                connections_.push_back(client);
                event.data.fd = client;
                epoll_ctl(poller, EPOLL_CTL_ADD, client, &event);
                continue;
            }
            char buffer[65536];
            const ssize_t got = recv(fd, buffer, sizeof buffer, MSG_DONTWAIT);
            if (got <= 0) {
                epoll_ctl(poller, EPOLL_CTL_DEL, fd, nullptr);
                continue;
            }
            protocol::FrameCutter& cutter = cutters[fd];
            cutter.Append(std::string_view(buffer, static_cast<std::size_t>(got)));
            for (auto cut = cutter.Next(); cut.kind == protocol::CutResult::Kind::kFrame;
                 cut = cutter.Next()) {
                if (cut.frame.code != protocol::client_to_server::kRoomLine) {
                    continue;
                }
                // "channel:text" becomes "channel:sender:text", as tavrend relays it.
                std::string payload = cut.frame.payload;
                payload.insert(payload.find(':') + 1, "sender:");
                const std::string frame =
                    protocol::EncodeFrame(protocol::server_to_client::kChannelHostMessage, payload);
                for (const int client : connections_) {
                    writeAll(client, frame);
                }
            }
        }
    }
}

}  // namespace tavren::bench
