#include "games/GameSession.h"

#include "config/SoundPlayer.h"
#include "config/SoundSlots.h"
#include "core/LoginFlow.h"
#include "core/ServerSession.h"
#include "core/protocol/Catalogue.h"
#include "core/protocol/HoldemCodes.h"
#include "render/ChatLineFormatter.h"
#include "render/FormatLines.h"

namespace tavren {

namespace in = protocol::holdem_to_client;
namespace out = protocol::client_to_server;

namespace {

const QString kDealerLabel = QStringLiteral("Dealer:");

QString Key(const QString& name) {
    return name.toLower();
}

QString Cards(const QString& list) {
    QStringList names;
    for (const QString& card : list.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        names << ShortCardName(card.toInt());
    }
    return names.join(QLatin1Char(' '));
}

}  // namespace

// Catches the one line a formatter call produces.
class GameSession::Pane : public TableLineTarget {
  public:
    void AddChat2(const QString& html) override { html_ = html; }
    QString html_;
};

GameSession::GameSession(ServerSession& server, SoundPlayer& sounds,
                         const ChatLineFormatter& formatter, QObject* parent)
    : QObject(parent), server_(server), sounds_(sounds), formatter_(formatter) {
    // The dispatcher gives the whole group (7, 1..16) one row: the pairs are told apart here.
    server_.dispatcher().route(in::kTableList, [this](const ServerMessage& m) { onMessage(m); });
    connect(&server_.login(), &LoginFlow::loginAccepted, this, &GameSession::onLoginAccepted);
}

GameSession::~GameSession() = default;

QString GameSession::ownName() const {
    return server_.login().userName();
}

QStringList GameSession::tables() const {
    QStringList names;
    for (const TableState& t : tables_) {
        names << t.name;
    }
    names.sort(Qt::CaseInsensitive);
    return names;
}

const TableState* GameSession::table(const QString& name) const {
    const auto found = tables_.constFind(Key(name));
    return found == tables_.constEnd() ? nullptr : &found.value();
}

TableState* GameSession::find(const QString& name) {
    const auto found = tables_.find(Key(name));
    return found == tables_.end() ? nullptr : &found.value();
}

QString GameSession::checkTableName(const QString& name) {
    if (name.isEmpty() || name.size() > 30) {
        return QStringLiteral("A table's name is 1 to 30 characters long.");
    }
    if (name.front() == QLatin1Char(' ') || name.back() == QLatin1Char(' ')) {
        return QStringLiteral("A table's name does not start or end with a space.");
    }
    for (QChar c : name) {
        if (c.unicode() < 32 || c == QLatin1Char(':') || c == QLatin1Char(';')) {
            return QStringLiteral("A table's name holds neither \":\" nor \";\".");
        }
    }
    return {};
}

bool GameSession::send(const QString& payload, protocol::CodePair code) {
    if (!server_.online()) {
        return false;
    }
    server_.link().SendPacket(payload, code);
    return true;
}

bool GameSession::askList() {
    return send(QStringLiteral("Get"), out::kAskTableList);
}

bool GameSession::create(const QString& name, int seats, int smallBlind, int bigBlind, int buyIn,
                         const QString& password) {
    if (!checkTableName(name).isEmpty()) {
        return false;
    }
    return send(name + QLatin1Char(':') + QString::number(seats) + QLatin1Char(':') +
                    QString::number(smallBlind) + QLatin1Char(':') + QString::number(bigBlind) +
                    QLatin1Char(':') + QString::number(buyIn) + QLatin1Char(':') + password,
                out::kCreateTable);
}

bool GameSession::join(const QString& name, const QString& password) {
    const QString trimmed = name.trimmed();
    if (!checkTableName(trimmed).isEmpty()) {
        return false;
    }
    return send(password.isEmpty() ? trimmed : trimmed + QLatin1Char(':') + password,
                out::kJoinTable);
}

bool GameSession::leave(const QString& name) {
    const bool sent = send(name, out::kLeaveTable);
    // The window goes at once; the server answers with (7, 3) all the same.
    if (tables_.remove(Key(name)) > 0) {
        emit leftTable(name, QString());
    }
    return sent;
}

bool GameSession::say(const QString& table, const QString& text) {
    if (text.trimmed().isEmpty() || !find(table)) {
        return false;
    }
    return send(table + QLatin1Char(':') + text, out::kTableChat);
}

bool GameSession::act(const QString& table, const QString& move, int amount) {
    TableState* state = find(table);
    if (!state) {
        return false;
    }
    QString payload = table + QLatin1Char(':') + move;
    if (move == QLatin1String("bet") || move == QLatin1String("raise")) {
        payload += QLatin1Char(':') + QString::number(amount);
    }
    if (!send(payload, out::kBettingAction)) {
        return false;
    }
    state->ownTurn = false;
    emit tableChanged(state->name);
    return true;
}

bool GameSession::sitOut(const QString& table, bool outOfPlay) {
    return find(table) &&
           send(table + (outOfPlay ? QStringLiteral(":sitout") : QStringLiteral(":sitin")),
                out::kTableRequest);
}

bool GameSession::invite(const QString& user, const QString& table) {
    const QString name = user.trimmed();
    if (name.isEmpty() || name.contains(QLatin1Char(':')) || !find(table)) {
        return false;
    }
    return send(name + QLatin1Char(':') + table, out::kInviteToTable);
}

bool GameSession::decline(const QString& table, const QString& inviter) {
    return send(table + QLatin1Char(':') + inviter + QStringLiteral(":no"), out::kTurnAnswer);
}

void GameSession::onMessage(const ServerMessage& m) {
    if (m.code == in::kTableList) {
        onList(m);
    } else if (m.code == in::kSeated) {
        onSeated(m);
    } else if (m.code == in::kLeftTable) {
        onLeft(m);
    } else if (m.code == in::kTableState) {
        onState(m);
    } else if (m.code == in::kTableChat) {
        onChat(m);
    } else if (m.code == in::kTableEvent) {
        onEvent(m);
    } else if (m.code == in::kYourTurn) {
        onTurn(m);
    } else if (m.code == in::kTableNotice) {
        onNotice(m);
    } else if (m.code == in::kTablePassword) {
        onPassword(m);
    } else if (m.code == in::kTableInvitation) {
        onInvitation(m);
    }
}

void GameSession::onList(const ServerMessage& m) {
    listing_.clear();
    for (const QString& record : m.payload.split(QChar(2), Qt::SkipEmptyParts)) {
        const QStringList f = record.split(QChar(1));
        if (f.size() < 8 || f[0].isEmpty()) {
            continue;
        }
        TableListing entry;
        entry.name = f[0];
        entry.players = f[1].toInt();
        entry.seats = f[2].toInt();
        entry.smallBlind = f[3].toInt();
        entry.bigBlind = f[4].toInt();
        entry.buyIn = f[5].toInt();
        entry.locked = f[6] == QLatin1String("True");
        entry.playing = f[7] == QLatin1String("Playing");
        listing_.push_back(entry);
    }
    emit listChanged();
}

void GameSession::onSeated(const ServerMessage& m) {
    TableState fresh;
    if (!fresh.applySeated(m.payload)) {
        return;
    }
    TableState& state = tables_[Key(fresh.name)];
    const bool opened = state.name.isEmpty();
    state.name = fresh.name;
    state.ownSeat = fresh.ownSeat;
    state.seats = fresh.seats;
    state.smallBlind = fresh.smallBlind;
    state.bigBlind = fresh.bigBlind;
    state.buyIn = fresh.buyIn;
    state.turnSeconds = fresh.turnSeconds;
    emit seated(state.name);
    if (opened) {
        dealerLine(state.name, QStringLiteral("Welcome to ") + state.name +
                                   QStringLiteral(": blinds ") + QString::number(state.smallBlind) +
                                   QLatin1Char('/') + QString::number(state.bigBlind) +
                                   QStringLiteral(", buy-in ") + QString::number(state.buyIn) +
                                   QLatin1Char('.'));
    }
}

void GameSession::onLeft(const ServerMessage& m) {
    const QString name = TableOfPayload(m.payload);
    const QString why = m.payload.section(QLatin1Char(';'), 1);
    TableState* state = find(name);
    if (!state) {
        return;
    }
    if (state->playerNamed(ownName()) && why.startsWith(QLatin1String("Your chips"))) {
        return;  // still seated until the hand is over
    }
    const QString spelled = state->name;
    tables_.remove(Key(name));
    emit leftTable(spelled, why);
}

void GameSession::onState(const ServerMessage& m) {
    TableState* state = find(TableOfPayload(m.payload));
    if (state && state->applySnapshot(m.payload)) {
        emit tableChanged(state->name);
    }
}

void GameSession::onTurn(const ServerMessage& m) {
    TableState* state = find(TableOfPayload(m.payload));
    if (state && state->applyTurn(m.payload)) {
        sounds_.play(SoundSlots::HoldemYourTurn);
        emit turnOffered(state->name);
        emit tableChanged(state->name);
    }
}

void GameSession::onChat(const ServerMessage& m) {
    // table ":" name ":" text; the text may hold ":" itself.
    const QString name = m.payload.section(QLatin1Char(':'), 0, 0);
    const QString sender = m.payload.section(QLatin1Char(':'), 1, 1);
    const QString text = m.payload.section(QLatin1Char(':'), 2);
    TableState* state = find(name);
    if (!state || sender.isEmpty()) {
        return;
    }
    const bool own = sender.compare(ownName(), Qt::CaseInsensitive) == 0;
    if (!own) {
        sounds_.play(SoundSlots::HoldemChat);
    }
    showLine(state->name, sender + QLatin1Char(':'), text, own ? kOwnNameColor : kNameColor,
             kTextColor);
}

void GameSession::onEvent(const ServerMessage& m) {
    const QStringList f = m.payload.split(QLatin1Char(';'));
    if (f.size() < 8) {
        return;
    }
    TableState* state = find(f[0]);
    if (!state) {
        return;
    }
    const QString table = state->name;
    const QString& kind = f[1];
    const QString& who = f[3];
    const int amount = f[4].toInt();
    const int total = f[5].toInt();
    const bool timedOut = f[6] == QLatin1String("True");
    const bool own = who.compare(ownName(), Qt::CaseInsensitive) == 0;
    const QString late = timedOut ? QStringLiteral(" (time ran out)") : QString();
    auto play = [&](SoundSlots::Slot slot) {
        if (!own) {
            sounds_.play(slot);
        }
    };
    if (kind == QLatin1String("deal")) {
        blindsSeen_[Key(table)] = 0;
        state->winner.clear();
        sounds_.play(SoundSlots::HoldemDeal);
        dealerLine(table, QStringLiteral("Hand #") + QString::number(amount) +
                              QStringLiteral(": the button is with ") + who + QLatin1Char('.'));
    } else if (kind == QLatin1String("blind")) {
        const int n = blindsSeen_[Key(table)]++;
        dealerLine(table, who +
                              (n == 0 ? QStringLiteral(" posts the small blind of ")
                                      : QStringLiteral(" posts the big blind of ")) +
                              QString::number(amount) + QLatin1Char('.'));
    } else if (kind == QLatin1String("fold")) {
        play(SoundSlots::HoldemFold);
        dealerLine(table, who + QStringLiteral(" folds") + late + QLatin1Char('.'));
    } else if (kind == QLatin1String("check")) {
        play(SoundSlots::HoldemCheck);
        dealerLine(table, who + QStringLiteral(" checks") + late + QLatin1Char('.'));
    } else if (kind == QLatin1String("call")) {
        play(SoundSlots::HoldemCheck);
        dealerLine(table,
                   who + QStringLiteral(" calls ") + QString::number(amount) + QLatin1Char('.'));
    } else if (kind == QLatin1String("bet")) {
        play(SoundSlots::HoldemBet);
        dealerLine(table,
                   who + QStringLiteral(" bets ") + QString::number(total) + QLatin1Char('.'));
    } else if (kind == QLatin1String("raise")) {
        play(SoundSlots::HoldemBet);
        dealerLine(table,
                   who + QStringLiteral(" raises to ") + QString::number(total) + QLatin1Char('.'));
    } else if (kind == QLatin1String("allin")) {
        play(SoundSlots::HoldemBet);
        dealerLine(table, who + QStringLiteral(" is all in for ") + QString::number(total) +
                              QLatin1Char('.'));
    } else if (kind == QLatin1String("flop") || kind == QLatin1String("turn") ||
               kind == QLatin1String("river")) {
        const QStringList cards = f[7].split(QLatin1Char(','), Qt::SkipEmptyParts);
        const int first = kind == QLatin1String("flop") ? 0 : kind == QLatin1String("turn") ? 3 : 4;
        for (int i = 0; i < cards.size() && first + i < 5; ++i) {
            state->board[static_cast<std::size_t>(first + i)] = cards[i].toInt();
        }
        sounds_.play(SoundSlots::HoldemDeal);
        QString word = kind;
        word[0] = word[0].toUpper();
        dealerLine(table, word + QStringLiteral(": ") + Cards(f[7]));
    } else if (kind == QLatin1String("show")) {
        const QStringList cards = f[7].split(QLatin1Char(','));
        for (TablePlayer& p : state->players) {
            if (p.name.compare(who, Qt::CaseInsensitive) == 0 && cards.size() == 2) {
                p.cards = {cards[0].toInt(), cards[1].toInt()};
            }
        }
        const QString words = BestHand(*state, who);
        dealerLine(table, who + QStringLiteral(" shows ") + Cards(f[7]) +
                              (words.isEmpty() ? QString() : QStringLiteral(": ") + words));
    } else if (kind == QLatin1String("muck")) {
        dealerLine(table, who + QStringLiteral(" mucks."));
    } else if (kind == QLatin1String("return")) {
        dealerLine(table, QString::number(amount) + QStringLiteral(" uncalled chips go back to ") +
                              who + QLatin1Char('.'));
    } else if (kind == QLatin1String("win")) {
        const QString pot = total == 0 ? QStringLiteral("the main pot")
                                       : QStringLiteral("side pot ") + QString::number(total);
        const QString words = BestHand(*state, who);
        QString line = who + QStringLiteral(" wins ") + QString::number(amount) +
                       QStringLiteral(" from ") + pot;
        if (!words.isEmpty()) {
            line += QStringLiteral(" with ") + words;
        }
        state->winner = line;
        dealerLine(table, line + QLatin1Char('.'));
        emit tableChanged(table);
    } else if (kind == QLatin1String("join")) {
        dealerLine(table, who + QStringLiteral(" sits down with ") + QString::number(amount) +
                              QStringLiteral(" chips."));
    } else if (kind == QLatin1String("leave")) {
        dealerLine(table, who + QStringLiteral(" leaves the table."));
    } else if (kind == QLatin1String("away")) {
        dealerLine(table, who + QStringLiteral(" lost the connection; the seat is kept."));
    } else if (kind == QLatin1String("back")) {
        dealerLine(table, who + QStringLiteral(" is back."));
    } else if (kind == QLatin1String("sitout")) {
        dealerLine(table, who + QStringLiteral(" sits out."));
    } else if (kind == QLatin1String("sitin")) {
        dealerLine(table, who + QStringLiteral(" is back in the game."));
    }
}

void GameSession::onNotice(const ServerMessage& m) {
    const QString name = m.payload.section(QLatin1Char(':'), 0, 0);
    const QString text = m.payload.section(QLatin1Char(':'), 1);
    if (const TableState* state = find(name)) {
        dealerLine(state->name, text);
        return;
    }
    emit noticeArrived(name, text);
}

void GameSession::onPassword(const ServerMessage& m) {
    emit passwordRequested(m.payload.section(QLatin1Char(':'), 0, 0),
                           m.payload.section(QLatin1Char(':'), 1));
}

void GameSession::onInvitation(const ServerMessage& m) {
    const QStringList f = m.payload.split(QLatin1Char(':'));
    if (f.size() < 3 || f[0].isEmpty() || !checkTableName(f[1]).isEmpty()) {
        return;
    }
    emit invited(f[0], f[1], f[2] == QLatin1String("True"));
}

void GameSession::onLoginAccepted() {
    // After a lost link the seats are still ours: asking for each table again brings it back.
    for (const TableState& state : std::as_const(tables_)) {
        server_.link().SendPacket(state.name, out::kJoinTable);
    }
}

void GameSession::dealerLine(const QString& table, const QString& text) {
    showLine(table, kDealerLabel, text, kDealerColor, kDealerColor);
}

void GameSession::showLine(const QString& table, const QString& label, QString text,
                           WinColor nameColor, WinColor textColor) {
    Pane pane;
    FormatTableLine(formatter_, pane, label, text, nameColor, textColor, false, kLineSize);
    emit lineAdded(table, pane.html_);
}

}  // namespace tavren
