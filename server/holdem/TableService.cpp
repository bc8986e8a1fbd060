#include "server/holdem/TableService.h"

#include <sodium.h>

#include <algorithm>
#include <asio/this_coro.hpp>
#include <cctype>
#include <charconv>

#include "core/protocol/Catalogue.h"
#include "core/protocol/Fields.h"
#include "core/protocol/HoldemCodes.h"
#include "server/base/Log.h"
#include "server/holdem/ChipBank.h"
#include "server/holdem/TableFrames.h"
#include "server/net/PresenceHub.h"
#include "server/session/Member.h"

namespace tavren::server {

namespace in = protocol::client_to_server;
namespace out = protocol::holdem_to_client;
using holdem::ActionKind;
using holdem::TableEvent;

namespace {

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

std::optional<long long> Number(std::string_view text) {
    long long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) {
        return std::nullopt;
    }
    return value;
}

int Clamp(long long value) {
    return static_cast<int>(std::clamp<long long>(value, -1, 2'000'000'000));
}

holdem::Deck SecureDeck() {
    return holdem::ShuffledDeck([](std::uint32_t n) { return randombytes_uniform(n); });
}

}  // namespace

TableService::TableService(ChipBank& bank, PresenceHub& hub, const HoldemLimits& limits,
                           std::size_t maxChatLine, asio::any_io_executor executor, DeckSource deck)
    : bank_(bank),
      hub_(hub),
      limits_(limits),
      maxChatLine_(maxChatLine),
      executor_(std::move(executor)),
      deck_(deck ? std::move(deck) : DeckSource(SecureDeck)) {
    if (sodium_init() < 0) {
        throw std::runtime_error("libsodium cannot start: no secure random source for the cards");
    }
}

TableService::~TableService() = default;

std::vector<protocol::CodePair> TableService::requests() const {
    return {in::kCreateTable,  in::kJoinTable,  in::kLeaveTable,
            in::kAskTableList, in::kTableChat,  in::kBettingAction,
            in::kTableRequest, in::kTurnAnswer, in::kInviteToTable};
}

void TableService::start() {
    bank_.returnAllStakes();
}

void TableService::stop() {
    stopped_ = true;
    for (auto& [key, table] : tables_) {
        table->turnTimer.cancel();
        table->pauseTimer.cancel();
        for (auto& [name, timer] : table->away) {
            timer->cancel();
        }
    }
}

std::string TableService::checkTableName(std::string_view name) {
    if (name.empty() || name.size() > kMaxTableName) {
        return "A table's name is 1 to " + std::to_string(kMaxTableName) + " characters long.";
    }
    if (name.front() == ' ' || name.back() == ' ') {
        return "A table's name does not start or end with a space.";
    }
    for (char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 32 || byte == 127 || c == ':' || c == ';') {
            return "A table's name holds neither \":\" nor \";\".";
        }
    }
    return {};
}

asio::awaitable<void> TableService::handle(Member& member, protocol::CodePair code,
                                           std::string payload) {
    if (code == in::kCreateTable) {
        create(member, payload);
    } else if (code == in::kJoinTable) {
        join(member, payload);
    } else if (code == in::kLeaveTable) {
        leave(member, payload);
    } else if (code == in::kAskTableList) {
        std::vector<const GameTable*> list;
        for (const auto& [key, table] : tables_) {
            list.push_back(table.get());
        }
        member.link.send(out::kTableList, table_frames::TableList(list));
    } else if (code == in::kTableChat) {
        chat(member, payload);
    } else if (code == in::kBettingAction) {
        act(member, payload);
    } else if (code == in::kTableRequest) {
        tableRequest(member, payload);
    } else if (code == in::kTurnAnswer) {
        declineInvitation(member, payload);
    } else if (code == in::kInviteToTable) {
        invite(member, payload);
    }
    co_return;
}

GameTable* TableService::find(std::string_view name) {
    const auto found = tables_.find(Lower(name));
    return found == tables_.end() ? nullptr : found->second.get();
}

void TableService::notice(Member& member, std::string_view table, const std::string& text) {
    member.link.send(out::kTableNotice, std::string(table) + ":" + text);
}

void TableService::tellScore(const std::string& name) {
    if (const auto chips = bank_.balance(name)) {
        const std::string names[] = {name};
        hub_.sendTo(names, protocol::server_to_client::kScore, std::to_string(*chips));
    }
}

void TableService::create(Member& member, const std::string& payload) {
    const auto fields = protocol::SplitFields(payload, protocol::kFieldSeparator, 6);
    const std::string name(protocol::FieldAt(fields, 0));
    if (const std::string why = checkTableName(name); !why.empty()) {
        notice(member, "", why);
        return;
    }
    holdem::TableRules rules;
    const auto seats = Number(protocol::FieldAt(fields, 1));
    const auto small = Number(protocol::FieldAt(fields, 2));
    const auto big = Number(protocol::FieldAt(fields, 3));
    const auto buyIn = Number(protocol::FieldAt(fields, 4));
    if (!seats || !small || !big || !buyIn) {
        notice(member, name, "The table's seats, blinds and buy-in must be numbers.");
        return;
    }
    rules.seats = Clamp(*seats);
    rules.smallBlind = Clamp(*small);
    rules.bigBlind = Clamp(*big);
    rules.buyIn = Clamp(*buyIn);
    if (!rules.valid()) {
        notice(member, name,
               "A table has 2 to 10 seats, a small blind no bigger than the big blind, and a "
               "buy-in of at least two big blinds.");
        return;
    }
    if (find(name)) {
        notice(member, name, "A table named " + name + " is open already.");
        return;
    }
    if (tables_.size() >= limits_.maxTables) {
        notice(member, name, "No more tables can be opened right now.");
        return;
    }
    const std::string password(protocol::FieldAt(fields, 5));
    auto table = std::make_unique<GameTable>(++nextId_, name, password, rules, executor_);
    GameTable& created = *table;
    tables_.emplace(Lower(name), std::move(table));
    Log::info(member.name() + " opened the table " + name);
    if (!sitDown(member, created)) {
        removeIfEmpty(Lower(name));
    }
}

bool TableService::sitDown(Member& member, GameTable& table) {
    const holdem::TableRules& rules = table.game.rules();
    if (table.game.occupiedSeats() >= rules.seats) {
        notice(member, table.name, "The table " + table.name + " is full.");
        return false;
    }
    const std::string& name = member.name();
    auto chips = bank_.balance(name).value_or(0);
    if (chips < rules.buyIn) {
        const bool seatedElsewhere = std::any_of(tables_.begin(), tables_.end(), [&](auto& t) {
            return t.second->game.seatOf(name).has_value();
        });
        if (!seatedElsewhere) {
            bank_.grantUpTo(name, limits_.startingStake);
            chips = bank_.balance(name).value_or(0);
        }
    }
    if (chips < rules.buyIn || !bank_.buyIn(name, table.name, rules.buyIn)) {
        notice(member, table.name,
               "You need " + std::to_string(rules.buyIn) + " chips to sit at " + table.name +
                   "; you have " + std::to_string(chips) + ".");
        return false;
    }
    const auto seat = table.game.sit(name, rules.buyIn);
    if (!seat) {
        bank_.cashOut(name, table.name, rules.buyIn);  // cannot happen: checked above
        return false;
    }
    member.account.score = chips - rules.buyIn;
    tellScore(name);
    member.link.send(
        out::kSeated,
        table_frames::Seated(table, *seat, static_cast<int>(limits_.turnTime.count() / 1000)));
    toTable(table, out::kTableEvent,
            table_frames::Event(table, "join", *seat, name, rules.buyIn, 0, false, {}));
    pump(table);
    return true;
}

void TableService::join(Member& member, const std::string& payload) {
    const auto fields = protocol::SplitFields(payload, protocol::kFieldSeparator, 2);
    const std::string name(protocol::FieldAt(fields, 0));
    GameTable* table = find(name);
    if (!table) {
        notice(member, name, "There is no table named " + name + ".");
        return;
    }
    if (const auto seat = table->game.seatOf(member.name())) {
        comeBack(member, *table, *seat);
        return;
    }
    if (!table->password.empty() && protocol::FieldAt(fields, 1) != table->password) {
        member.link.send(
            out::kTablePassword,
            table->name + ":" +
                (fields.size() < 2 ? "This table asks for a password." : "Wrong password."));
        return;
    }
    sitDown(member, *table);
}

void TableService::comeBack(Member& member, GameTable& table, int seat) {
    const std::string key = Lower(member.name());
    const bool wasAway = table.away.erase(key) > 0;
    if (!table.sittingOutByChoice.count(key)) {
        table.game.setSittingOut(seat, false);
    }
    member.link.send(
        out::kSeated,
        table_frames::Seated(table, seat, static_cast<int>(limits_.turnTime.count() / 1000)));
    if (wasAway) {
        toTable(table, out::kTableEvent,
                table_frames::Event(table, "back", seat, member.name(), 0, 0, false, {}));
    }
    sendSnapshots(table);
    if (table.game.toAct() == seat) {
        sendTurn(table, member.name());
    }
    scheduleHand(table);
}

void TableService::leave(Member& member, const std::string& payload) {
    GameTable* table = find(payload);
    if (!table) {
        return;
    }
    const auto seat = table->game.seatOf(member.name());
    if (!seat) {
        return;
    }
    table->away.erase(Lower(member.name()));
    table->game.leave(*seat);
    if (table->game.seat(*seat).occupied) {
        // Dealt into the hand: the seat folds and goes when the hand is over.
        member.link.send(out::kLeftTable,
                         table->name + ";Your chips come back when this hand is over.");
    }
    pump(*table);
}

void TableService::chat(Member& member, const std::string& payload) {
    const auto fields = protocol::SplitFields(payload, protocol::kFieldSeparator, 2);
    GameTable* table = find(protocol::FieldAt(fields, 0));
    std::string text(protocol::FieldAt(fields, 1));
    if (!table || !table->game.seatOf(member.name()) || text.empty() ||
        text.size() > maxChatLine_) {
        return;
    }
    if (!member.lines.take(LineBucket::Clock::now())) {
        notice(member, table->name, "You are typing too fast.");
        return;
    }
    toTable(*table, out::kTableChat, table->name + ":" + member.name() + ":" + text);
}

void TableService::act(Member& member, const std::string& payload) {
    const auto fields = protocol::SplitFields(payload, protocol::kFieldSeparator, 3);
    GameTable* table = find(protocol::FieldAt(fields, 0));
    if (!table) {
        return;
    }
    const auto seat = table->game.seatOf(member.name());
    if (!seat) {
        return;
    }
    const std::string word = Lower(protocol::FieldAt(fields, 1));
    holdem::Action action;
    if (word == "fold") {
        action.kind = ActionKind::Fold;
    } else if (word == "check") {
        action.kind = ActionKind::Check;
    } else if (word == "call") {
        action.kind = ActionKind::Call;
    } else if (word == "allin") {
        action.kind = ActionKind::AllIn;
    } else if (word == "bet" || word == "raise") {
        const auto amount = Number(protocol::FieldAt(fields, 2));
        if (!amount) {
            notice(member, table->name, "How much?");
            return;
        }
        action = {ActionKind::Raise, Clamp(*amount)};
    } else {
        return;
    }
    const auto outcome = table->game.act(*seat, action);
    if (!outcome.accepted) {
        notice(member, table->name, outcome.refusal);
        return;
    }
    pump(*table);
}

void TableService::tableRequest(Member& member, const std::string& payload) {
    const auto fields = protocol::SplitFields(payload, protocol::kFieldSeparator, 2);
    GameTable* table = find(protocol::FieldAt(fields, 0));
    if (!table) {
        return;
    }
    const auto seat = table->game.seatOf(member.name());
    if (!seat) {
        return;
    }
    const std::string what = Lower(protocol::FieldAt(fields, 1));
    const std::string key = Lower(member.name());
    if (what == "sitout" || what == "sitin") {
        const bool out = what == "sitout";
        table->game.setSittingOut(*seat, out);
        if (out) {
            table->sittingOutByChoice.insert(key);
        } else {
            table->sittingOutByChoice.erase(key);
        }
        toTable(*table, out::kTableEvent,
                table_frames::Event(*table, out ? "sitout" : "sitin", *seat, member.name(), 0, 0,
                                    false, {}));
        sendSnapshots(*table);
        scheduleHand(*table);
    } else if (what == "state") {
        sendSnapshot(*table, member.name());
        if (table->game.toAct() == *seat) {
            sendTurn(*table, member.name());
        }
    }
}

void TableService::declineInvitation(Member& member, const std::string& payload) {
    const auto fields = protocol::SplitFields(payload, protocol::kFieldSeparator, 3);
    const std::string table(protocol::FieldAt(fields, 0));
    const std::string inviter(protocol::FieldAt(fields, 1));
    if (checkTableName(table).empty() && !inviter.empty() && hub_.isOnline(inviter) &&
        member.lines.take(LineBucket::Clock::now())) {
        const std::string names[] = {inviter};
        hub_.sendTo(names, out::kTableNotice,
                    table + ":" + member.name() + " declined your invitation to " + table + ".");
    }
}

void TableService::invite(Member& member, const std::string& payload) {
    const auto fields = protocol::SplitFields(payload, protocol::kFieldSeparator, 2);
    const std::string user(protocol::FieldAt(fields, 0));
    GameTable* table = find(protocol::FieldAt(fields, 1));
    if (!table || !table->game.seatOf(member.name())) {
        notice(member, "", "Sit at a table first, then invite somebody to it.");
        return;
    }
    if (Lower(user) == Lower(member.name())) {
        notice(member, table->name, "You cannot invite yourself.");
        return;
    }
    if (user.empty() || !hub_.isOnline(user)) {
        notice(member, table->name, user + " is not online.");
        return;
    }
    if (!member.lines.take(LineBucket::Clock::now())) {
        notice(member, table->name, "You are inviting too fast.");
        return;
    }
    const std::string names[] = {user};
    hub_.sendTo(
        names, out::kTableInvitation,
        member.name() + ":" + table->name + ":" + (table->password.empty() ? "False" : "True"));
    notice(member, table->name, "Invitation sent to " + user + ".");
}

void TableService::memberLeft(Member& member) {
    std::vector<GameTable*> seatedAt;
    for (auto& [key, table] : tables_) {
        if (table->game.seatOf(member.name())) {
            seatedAt.push_back(table.get());
        }
    }
    for (GameTable* table : seatedAt) {
        markAway(*table, member.name());
    }
}

void TableService::markAway(GameTable& table, const std::string& name) {
    const auto seat = table.game.seatOf(name);
    if (!seat || stopped_) {
        return;
    }
    const std::string key = Lower(name);
    auto timer = std::make_unique<asio::steady_timer>(executor_, limits_.awayTime);
    timer->async_wait([this, id = table.id, tableKey = Lower(table.name), key,
                       raw = timer.get()](const asio::error_code& error) {
        if (error || stopped_) {
            return;
        }
        const auto found = tables_.find(tableKey);
        if (found == tables_.end() || found->second->id != id) {
            return;
        }
        GameTable& t = *found->second;
        const auto kept = t.away.find(key);
        if (kept == t.away.end() || kept->second.get() != raw) {
            return;
        }
        t.away.erase(kept);
        if (const auto s = t.game.seatOf(key)) {
            Log::info(t.game.seat(*s).name + " lost the seat at " + t.name + " after a drop");
            t.game.leave(*s);
            pump(t);
        }
    });
    table.away[key] = std::move(timer);
    table.game.setSittingOut(*seat, true);  // from the next hand on, until the member is back
    toTable(
        table, out::kTableEvent,
        table_frames::Event(table, "away", *seat, table.game.seat(*seat).name, 0, 0, false, {}));
    sendSnapshots(table);
}

void TableService::pump(GameTable& table) {
    const std::string key = Lower(table.name);
    for (const TableEvent& e : table.game.takeEvents()) {
        const std::string& seatName = e.name;
        switch (e.kind) {
            case TableEvent::Kind::HandStarted:
                toTable(table, out::kTableEvent,
                        table_frames::Event(table, "deal", e.seat, seatName,
                                            table.game.handNumber(), 0, false, {}));
                break;
            case TableEvent::Kind::BlindPosted:
                toTable(table, out::kTableEvent,
                        table_frames::Event(table, "blind", e.seat, seatName, e.amount, e.total,
                                            false, {}));
                break;
            case TableEvent::Kind::HoleCards:
                break;  // in the owner's own view of the table only
            case TableEvent::Kind::Acted:
                toTable(table, out::kTableEvent,
                        table_frames::Event(table, table_frames::ActionWord(e), e.seat, seatName,
                                            e.amount, e.total, e.timedOut, {}));
                break;
            case TableEvent::Kind::BoardDealt: {
                const char* word = e.street == holdem::Street::Flop   ? "flop"
                                   : e.street == holdem::Street::Turn ? "turn"
                                                                      : "river";
                toTable(table, out::kTableEvent,
                        table_frames::Event(table, word, -1, "", 0, 0, false, e.cards));
                break;
            }
            case TableEvent::Kind::TurnToAct:
                armTurnClock(table);
                break;
            case TableEvent::Kind::Shown:
                toTable(table, out::kTableEvent,
                        table_frames::Event(table, "show", e.seat, seatName, 0, 0, false, e.cards));
                break;
            case TableEvent::Kind::Mucked:
                toTable(table, out::kTableEvent,
                        table_frames::Event(table, "muck", e.seat, seatName, 0, 0, false, {}));
                break;
            case TableEvent::Kind::Returned:
                toTable(
                    table, out::kTableEvent,
                    table_frames::Event(table, "return", e.seat, seatName, e.amount, 0, false, {}));
                break;
            case TableEvent::Kind::PotWon:
                for (std::size_t i = 0; i < e.award.winners.size(); ++i) {
                    const int winner = e.award.winners[i];
                    toTable(table, out::kTableEvent,
                            table_frames::Event(table, "win", winner, e.award.names[i],
                                                e.award.shares[i], e.award.pot, false, {}));
                }
                break;
            case TableEvent::Kind::HandEnded: {
                table.turnTimer.cancel();
                ++table.turnSerial;
                std::vector<std::pair<std::string, std::int64_t>> stakes;
                for (int s = 0; s < table.game.seatCount(); ++s) {
                    if (table.game.seat(s).occupied) {
                        stakes.emplace_back(table.game.seat(s).name, table.game.seat(s).chips);
                    }
                }
                bank_.setStakes(table.name, stakes);
                toTable(table, out::kTableEvent,
                        table_frames::Event(table, "end", -1, "", table.game.handNumber(), 0, false,
                                            {}));
                break;
            }
            case TableEvent::Kind::SeatEmptied: {
                bank_.cashOut(e.name, table.name, e.amount);
                table.away.erase(Lower(e.name));
                table.sittingOutByChoice.erase(Lower(e.name));
                toTable(
                    table, out::kTableEvent,
                    table_frames::Event(table, "leave", e.seat, e.name, e.amount, 0, false, {}));
                const std::string names[] = {e.name};
                hub_.sendTo(
                    names, out::kLeftTable,
                    table.name + ";" +
                        (e.amount == 0 ? std::string("You have no chips left at this table.")
                                       : std::string()));
                tellScore(e.name);
                break;
            }
        }
    }
    sendSnapshots(table);
    if (table.turnToTell && table.game.toAct() >= 0) {
        sendTurn(table, table.game.seat(table.game.toAct()).name);
    }
    table.turnToTell = false;
    if (table.game.occupiedSeats() == 0) {
        removeIfEmpty(key);
        return;
    }
    scheduleHand(table);
}

void TableService::armTurnClock(GameTable& table) {
    const int seat = table.game.toAct();
    if (seat < 0 || stopped_) {
        return;
    }
    const std::uint64_t serial = ++table.turnSerial;
    table.turnDeadline = GameTable::Clock::now() + limits_.turnTime;
    table.turnTimer.expires_at(table.turnDeadline);
    table.turnTimer.async_wait(
        [this, id = table.id, key = Lower(table.name), serial](const asio::error_code& error) {
            if (error || stopped_) {
                return;
            }
            const auto found = tables_.find(key);
            if (found == tables_.end() || found->second->id != id ||
                found->second->turnSerial != serial) {
                return;
            }
            found->second->game.timeOut();
            pump(*found->second);
        });
    table.turnToTell = true;  // after the table's new state, so the prompt meets a fresh view
}

void TableService::scheduleHand(GameTable& table) {
    if (stopped_ || table.pausing || table.game.handInProgress() || !table.game.canStartHand()) {
        return;
    }
    table.pausing = true;
    table.pauseTimer.expires_after(limits_.handPause);
    table.pauseTimer.async_wait(
        [this, id = table.id, key = Lower(table.name)](const asio::error_code& error) {
            if (!error && !stopped_) {
                startHand(id, key);
            }
        });
}

void TableService::startHand(std::uint64_t tableId, const std::string& key) {
    const auto found = tables_.find(key);
    if (found == tables_.end() || found->second->id != tableId) {
        return;
    }
    GameTable& table = *found->second;
    table.pausing = false;
    if (table.game.startHand(deck_())) {
        pump(table);
    }
}

void TableService::removeIfEmpty(const std::string& key) {
    const auto found = tables_.find(key);
    if (found != tables_.end() && found->second->game.occupiedSeats() == 0) {
        Log::info("the table " + found->second->name + " closed");
        tables_.erase(found);  // its timers are cancelled with it; their handlers look it up
    }
}

std::vector<std::string> TableService::seatedNames(const GameTable& table) const {
    std::vector<std::string> names;
    for (int s = 0; s < table.game.seatCount(); ++s) {
        if (table.game.seat(s).occupied) {
            names.push_back(table.game.seat(s).name);
        }
    }
    return names;
}

void TableService::toTable(const GameTable& table, protocol::CodePair code,
                           const std::string& payload) {
    hub_.sendTo(seatedNames(table), code, payload);
}

int TableService::secondsLeft(const GameTable& table) const {
    if (table.game.toAct() < 0) {
        return 0;
    }
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        table.turnDeadline - GameTable::Clock::now());
    return static_cast<int>(std::max<long long>(0, (left.count() + 999) / 1000));
}

void TableService::sendSnapshot(const GameTable& table, const std::string& name) {
    const std::string names[] = {name};
    hub_.sendTo(names, out::kTableState,
                table_frames::Snapshot(table, Lower(name), secondsLeft(table)));
}

void TableService::sendSnapshots(const GameTable& table) {
    for (const std::string& name : seatedNames(table)) {
        sendSnapshot(table, name);
    }
}

void TableService::sendTurn(const GameTable& table, const std::string& name) {
    const auto seat = table.game.seatOf(name);
    if (!seat) {
        return;
    }
    const std::string names[] = {name};
    hub_.sendTo(names, out::kYourTurn, table_frames::Turn(table, *seat, secondsLeft(table)));
}

}  // namespace tavren::server
