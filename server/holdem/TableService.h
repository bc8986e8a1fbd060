#pragma once

#include <asio/any_io_executor.hpp>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "holdem/Deck.h"
#include "server/base/ServerConfig.h"
#include "server/holdem/GameTable.h"
#include "server/session/FeatureHandler.h"

namespace tavren::server {

class ChipBank;
class PresenceHub;

// The Hold'em tables (7, 1..9): members create tables, list, join and leave them, chat at them,
// invite others, and play no-limit hands that the server deals from a cryptographically secure
// shuffle and settles itself. The clock of the player to act, the pause between hands and the
// seats kept for dropped players run here; the game itself is holdem::HoldemTable.
//
// Chips: a seat is bought with the table's buy-in from the member's bank (the score of (1, 13));
// a member who cannot pay it and has no chips on any table is first given the starting stake.
// Leaving, being dropped for good, or going broke sends the seat's chips back to the bank. The
// bank notes each seat's chips at the end of every hand, so chips outlive a server stop.
class TableService : public FeatureHandler {
  public:
    static constexpr std::size_t kMaxTableName = 30;

    using DeckSource = std::function<holdem::Deck()>;

    // `deck` deals every hand; by default a shuffle from the system's secure random source.
    TableService(ChipBank& bank, PresenceHub& hub, const HoldemLimits& limits,
                 std::size_t maxChatLine, asio::any_io_executor executor, DeckSource deck = {});
    ~TableService() override;

    std::vector<protocol::CodePair> requests() const override;
    asio::awaitable<void> handle(Member& member, protocol::CodePair code,
                                 std::string payload) override;
    void memberLeft(Member& member) override;

    // Chips left on tables by an earlier run go back to their banks.
    void start();
    // Cancels every clock so that the event loop can run out of work.
    void stop();

    // Empty when the name may be a table's name, else why not.
    static std::string checkTableName(std::string_view name);

  private:
    void create(Member& member, const std::string& payload);
    void join(Member& member, const std::string& payload);
    void leave(Member& member, const std::string& payload);
    void chat(Member& member, const std::string& payload);
    void act(Member& member, const std::string& payload);
    void tableRequest(Member& member, const std::string& payload);
    void declineInvitation(Member& member, const std::string& payload);
    void invite(Member& member, const std::string& payload);

    GameTable* find(std::string_view name);
    bool sitDown(Member& member, GameTable& table);
    void comeBack(Member& member, GameTable& table, int seat);
    void markAway(GameTable& table, const std::string& name);
    void pump(GameTable& table);
    void armTurnClock(GameTable& table);
    void scheduleHand(GameTable& table);
    void startHand(std::uint64_t tableId, const std::string& key);
    void removeIfEmpty(const std::string& key);

    std::vector<std::string> seatedNames(const GameTable& table) const;
    void toTable(const GameTable& table, protocol::CodePair code, const std::string& payload);
    void sendSnapshots(const GameTable& table);
    void sendSnapshot(const GameTable& table, const std::string& name);
    void sendTurn(const GameTable& table, const std::string& name);
    void notice(Member& member, std::string_view table, const std::string& text);
    void tellScore(const std::string& name);
    int secondsLeft(const GameTable& table) const;

    ChipBank& bank_;
    PresenceHub& hub_;
    const HoldemLimits& limits_;
    std::size_t maxChatLine_;
    asio::any_io_executor executor_;
    DeckSource deck_;
    std::uint64_t nextId_ = 0;
    bool stopped_ = false;
    std::map<std::string, std::unique_ptr<GameTable>> tables_;  // by lower-case name
};

}  // namespace tavren::server
