#include "server/rooms/ChannelVotes.h"

#include <algorithm>

#include "server/base/AsciiText.h"
#include "server/base/Log.h"
#include "server/rooms/ActiveChannel.h"
#include "server/rooms/ChannelRules.h"
#include "server/rooms/RoomService.h"
#include "server/session/Member.h"

namespace tavren::server {

void ChannelVotes::ask(Member& member, ActiveChannel& channel, const std::string& question) {
    const std::int64_t id = channel.channel.id;
    if (const auto open = open_.find(id); open != open_.end()) {
        rooms_.tellMember(
            member, channel,
            "A vote is open already: " + open->second.question + " Answer it with /yes or /no.");
        return;
    }
    if (question.empty()) {
        rooms_.tellMember(member, channel,
                          "What shall the channel vote on? Type /vote and a yes-or-no question.");
        return;
    }
    if (const std::string problem = ChannelRules::checkTopic(question, kMaxQuestion);
        !problem.empty()) {
        rooms_.tellMember(member, channel,
                          "Your vote was not started: a question holds at most " +
                              std::to_string(kMaxQuestion) +
                              " characters and no control "
                              "characters.");
        return;
    }
    Vote& vote = open_[id];
    vote.serial = ++nextSerial_;
    vote.channel = channel.channel.name;
    vote.question = question;
    vote.timer = std::make_unique<asio::steady_timer>(executor_, voteTime_);
    vote.timer->async_wait([this, id, serial = vote.serial](const asio::error_code& error) {
        const auto open = open_.find(id);
        if (error || stopped_ || open == open_.end() || open->second.serial != serial) {
            return;
        }
        close(id);
    });
    // Whole seconds, rounded up: a vote never ends before the time it announces.
    const auto seconds =
        std::max<std::int64_t>(1, std::chrono::ceil<std::chrono::seconds>(voteTime_).count());
    Log::info(member.name() + " opened a vote in " + Log::quoted(channel.channel.name));
    rooms_.tellChannel(channel, member.name() + " asks: " + question +
                                    " Answer with /yes or /no within " + std::to_string(seconds) +
                                    (seconds == 1 ? " second." : " seconds."));
}

void ChannelVotes::answer(Member& member, ActiveChannel& channel, bool yes) {
    const auto open = open_.find(channel.channel.id);
    if (open == open_.end()) {
        rooms_.tellMember(member, channel,
                          "There is no vote open in this channel. Start one with /vote and a "
                          "question.");
        return;
    }
    Vote& vote = open->second;
    const std::string key = AsciiText::lower(member.name());
    if (vote.yes.contains(key) || vote.no.contains(key)) {
        rooms_.tellMember(member, channel, "You have answered this vote already.");
        return;
    }
    (yes ? vote.yes : vote.no).insert(key);
    rooms_.tellMember(member, channel,
                      std::string("Your answer is counted: ") + (yes ? "yes." : "no."));
    closeIfEveryoneAnswered(channel);
}

void ChannelVotes::closeIfEveryoneAnswered(const ActiveChannel& channel) {
    const Vote& vote = open_.at(channel.channel.id);
    const bool everyone =
        std::all_of(channel.members.begin(), channel.members.end(), [&](const auto& entry) {
            return vote.yes.contains(entry.first) || vote.no.contains(entry.first);
        });
    if (everyone) {
        close(channel.channel.id);
    }
}

void ChannelVotes::close(std::int64_t channelId) {
    const auto open = open_.find(channelId);
    if (open == open_.end()) {
        return;
    }
    const Vote vote = std::move(open->second);
    open_.erase(open);
    if (vote.timer) {
        vote.timer->cancel();
    }
    ActiveChannel* channel = rooms_.active(vote.channel);
    if (channel == nullptr || channel->channel.id != channelId) {
        return;  // everybody left meanwhile
    }
    rooms_.tellChannel(*channel, "Vote result: " + vote.question +
                                     " Yes: " + std::to_string(vote.yes.size()) +
                                     ", No: " + std::to_string(vote.no.size()) + ".");
}

void ChannelVotes::stop() {
    stopped_ = true;
    for (auto& [id, vote] : open_) {
        vote.timer->cancel();
    }
}

}  // namespace tavren::server
