#pragma once

#include <span>
#include <string>
#include <string_view>

#include "holdem/TableEvent.h"
#include "server/holdem/GameTable.h"

// The payloads of the server's Hold'em messages (docs/protocol.md, "Hold'em tables"). Table
// names hold neither ":" nor ";", member names are letters and digits, so ";" separates the
// fields of the table messages and U+0001/U+0002 the fields and records of lists inside them.
namespace tavren::server::table_frames {

// (7, 1): one record per table, U+0002 between records, U+0001 between fields: name, players,
// seats, small blind, big blind, buy-in, "True" when a password is asked, "Playing"/"Waiting".
std::string TableList(std::span<const GameTable* const> tables);

// (7, 2): table;seat;seats;small blind;big blind;buy-in;turn seconds.
std::string Seated(const GameTable& table, int seat, int turnSeconds);

// (7, 4): what `viewer` (lower-case name) may see of the table now.
std::string Snapshot(const GameTable& table, std::string_view viewer, int secondsLeft);

// (7, 6): table;kind;seat;name;amount;total;timed out;cards.
std::string Event(const GameTable& table, std::string_view kind, int seat, std::string_view name,
                  long long amount, long long total, bool timedOut, std::span<const int> cards);

// The event word for a player's move ("fold", "check", "call", "bet", "raise", "allin").
std::string_view ActionWord(const holdem::TableEvent& acted);

// (7, 7): table;to call;smallest raise to (0: none);largest raise to;seconds;current bet;own bet.
std::string Turn(const GameTable& table, int seat, int seconds);

}  // namespace tavren::server::table_frames
