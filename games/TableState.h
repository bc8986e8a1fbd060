#pragma once

#include <QString>
#include <QVector>
#include <array>

namespace tavren {

// One player at a table as the latest table state (7, 4) shows it.
struct TablePlayer {
    int seat = -1;
    QString name;
    int chips = 0;
    int bet = 0;        // put in on the current betting round
    QString state;      // "in", "folded", "allin", "waiting" (not dealt in), "out" (sitting out)
    bool away = false;  // the connection dropped; the seat is kept for a while
    std::array<int, 2> cards{};  // 0 = face down or none

    bool dealtIn() const {
        return state == QLatin1String("in") || state == QLatin1String("folded") ||
               state == QLatin1String("allin");
    }
    bool inHand() const { return state == QLatin1String("in") || state == QLatin1String("allin"); }
};

// What the member may do when the server says it is their turn (7, 7).
struct TurnOffer {
    int toCall = 0;
    int minRaiseTo = 0;  // 0: no raise possible
    int maxRaiseTo = 0;
    int seconds = 0;
    int currentBet = 0;
    int ownBet = 0;
};

// Everything the table window shows of one table, kept up to date from the server's messages.
struct TableState {
    QString name;
    int ownSeat = -1;
    int seats = 0;
    int smallBlind = 0;
    int bigBlind = 0;
    int buyIn = 0;
    int turnSeconds = 0;

    int hand = 0;
    QString street = QStringLiteral("waiting");
    int button = -1;
    int toAct = -1;
    int secondsLeft = 0;
    std::array<int, 5> board{};
    QVector<int> pots;
    QVector<TablePlayer> players;

    bool ownTurn = false;
    TurnOffer offer;
    // The words of the last hand's winner ("alice wins 390 with Flush - Ace High").
    QString winner;

    // (7, 2) table;seat;seats;small blind;big blind;buy-in;turn seconds. False when malformed.
    bool applySeated(const QString& payload);
    // (7, 4): false (nothing changed) when the payload is not this table's or malformed.
    bool applySnapshot(const QString& payload);
    // (7, 7) for this table.
    bool applyTurn(const QString& payload);

    const TablePlayer* player(int seat) const;
    const TablePlayer* playerNamed(const QString& name) const;
    int boardCount() const;
    int potTotal() const;
};

// The first field of a table message (the table's name), whatever separator follows it.
QString TableOfPayload(const QString& payload, QChar separator = QLatin1Char(';'));

// "As", "Td", "2c": the short name of a card 1..52; empty for anything else.
QString ShortCardName(int card);

// The words for the best hand of the player whose seat label reads "player: " + name (letter
// case aside): that seat's two cards and the community cards shown so far. Empty when the
// player's cards are not known.
QString BestHand(const TableState& table, const QString& name);

// The label of a seat: "player: " + name.
QString SeatLabel(const QString& name);

}  // namespace tavren
