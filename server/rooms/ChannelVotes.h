#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>

namespace tavren::server {

class RoomService;
struct ActiveChannel;
struct Member;

// Yes-or-no votes in channels: "/vote QUESTION" opens one (one open vote per channel, anybody in
// it may ask), "/yes" and "/no" answer it (one answer per member, the first counts), and the
// result goes to everyone in the channel when everybody in it has answered or when the vote time
// is over, whichever comes first. Members who join while a vote is open may answer it too.
class ChannelVotes {
  public:
    static constexpr std::size_t kMaxQuestion = 200;

    ChannelVotes(RoomService& rooms, std::chrono::milliseconds voteTime,
                 asio::any_io_executor executor)
        : rooms_(rooms), voteTime_(voteTime), executor_(std::move(executor)) {}

    void ask(Member& member, ActiveChannel& channel, const std::string& question);
    void answer(Member& member, ActiveChannel& channel, bool yes);
    // Cancels the timers of open votes, so that the event loop can run out of work.
    void stop();

  private:
    struct Vote {
        std::uint64_t serial = 0;  // tells this vote's timer from an earlier vote's
        std::string channel;       // as spelled
        std::string question;
        std::set<std::string> yes;  // lower-case names
        std::set<std::string> no;
        std::unique_ptr<asio::steady_timer> timer;
    };

    // Sends the result to the channel, when anybody is still in it, and forgets the vote.
    void close(std::int64_t channelId);
    // Closes the vote once everybody in the channel has answered.
    void closeIfEveryoneAnswered(const ActiveChannel& channel);

    RoomService& rooms_;
    std::chrono::milliseconds voteTime_;
    asio::any_io_executor executor_;
    bool stopped_ = false;
    std::uint64_t nextSerial_ = 0;
    std::unordered_map<std::int64_t, Vote> open_;  // by channel id
};

}  // namespace tavren::server
