#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "holdem/HoldemTable.h"

namespace tavren::server {

// One table the server hosts: its name and password, the game, and the clocks that drive it (the
// player to act, the pause between hands, and one per dropped player whose seat is kept).
struct GameTable {
    using Clock = std::chrono::steady_clock;

    GameTable(std::uint64_t tableId, std::string tableName, std::string tablePassword,
              holdem::TableRules rules, const asio::any_io_executor& executor)
        : id(tableId),
          name(std::move(tableName)),
          password(std::move(tablePassword)),
          game(rules),
          turnTimer(executor),
          pauseTimer(executor) {}

    const std::uint64_t id;  // tells this table's timers from those of an earlier one
    const std::string name;  // as the creator spelled it
    const std::string password;
    holdem::HoldemTable game;

    asio::steady_timer turnTimer;
    std::uint64_t turnSerial = 0;
    Clock::time_point turnDeadline{};
    bool turnToTell = false;
    asio::steady_timer pauseTimer;
    bool pausing = false;

    // Seated members whose connection dropped (lower-case name): their seat waits until the
    // timer runs out, they are not dealt in meanwhile, and their turns run out on the clock.
    std::map<std::string, std::unique_ptr<asio::steady_timer>> away;
    // Seated members who chose to sit out (lower-case), so that coming back after a drop does
    // not deal them in against their wish.
    std::set<std::string> sittingOutByChoice;
};

}  // namespace tavren::server
