#include "games/TableState.h"

#include <QStringList>
#include <vector>

#include "holdem/Cards.h"
#include "holdem/HandDescription.h"

namespace tavren {

namespace {

int Int(const QString& text, bool* ok = nullptr) {
    bool fine = false;
    const int value = text.toInt(&fine);
    if (ok) {
        *ok = fine;
    }
    return fine ? value : 0;
}

int Card(const QString& text) {
    const int card = Int(text);
    return holdem::IsCardNumber(card) ? card : 0;
}

}  // namespace

QString TableOfPayload(const QString& payload, QChar separator) {
    return payload.section(separator, 0, 0);
}

bool TableState::applySeated(const QString& payload) {
    const QStringList f = payload.split(QLatin1Char(';'));
    if (f.size() < 7) {
        return false;
    }
    name = f[0];
    ownSeat = Int(f[1]);
    seats = Int(f[2]);
    smallBlind = Int(f[3]);
    bigBlind = Int(f[4]);
    buyIn = Int(f[5]);
    turnSeconds = Int(f[6]);
    return true;
}

bool TableState::applySnapshot(const QString& payload) {
    const QStringList f = payload.split(QLatin1Char(';'));
    if (f.size() < 9 || f[0].compare(name, Qt::CaseInsensitive) != 0) {
        return false;
    }
    hand = Int(f[1]);
    street = f[2];
    button = Int(f[3]);
    toAct = Int(f[4]);
    secondsLeft = Int(f[5]);
    board = {};
    const QStringList cards = f[6].split(QLatin1Char(','));
    for (int i = 0; i < qMin(5, static_cast<int>(cards.size())); ++i) {
        board[static_cast<std::size_t>(i)] = Card(cards[i]);
    }
    pots.clear();
    for (const QString& pot : f[7].split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        pots.push_back(Int(pot));
    }
    players.clear();
    for (const QString& record : f[8].split(QChar(2), Qt::SkipEmptyParts)) {
        const QStringList p = record.split(QChar(1));
        if (p.size() < 8) {
            continue;
        }
        TablePlayer player;
        bool ok = false;
        player.seat = Int(p[0], &ok);
        if (!ok || player.seat < 0 || player.seat >= 10) {
            continue;
        }
        player.name = p[1];
        player.chips = Int(p[2]);
        player.bet = Int(p[3]);
        player.state = p[4];
        player.away = p[5] == QLatin1String("True");
        player.cards = {Card(p[6]), Card(p[7])};
        players.push_back(player);
    }
    if (toAct < 0 || toAct != ownSeat) {
        ownTurn = false;
    }
    return true;
}

bool TableState::applyTurn(const QString& payload) {
    const QStringList f = payload.split(QLatin1Char(';'));
    if (f.size() < 7) {
        return false;
    }
    offer.toCall = Int(f[1]);
    offer.minRaiseTo = Int(f[2]);
    offer.maxRaiseTo = Int(f[3]);
    offer.seconds = Int(f[4]);
    offer.currentBet = Int(f[5]);
    offer.ownBet = Int(f[6]);
    ownTurn = true;
    return true;
}

const TablePlayer* TableState::player(int seat) const {
    for (const TablePlayer& p : players) {
        if (p.seat == seat) {
            return &p;
        }
    }
    return nullptr;
}

const TablePlayer* TableState::playerNamed(const QString& who) const {
    for (const TablePlayer& p : players) {
        if (p.name.compare(who, Qt::CaseInsensitive) == 0) {
            return &p;
        }
    }
    return nullptr;
}

int TableState::boardCount() const {
    int count = 0;
    for (int card : board) {
        count += card != 0 ? 1 : 0;
    }
    return count;
}

int TableState::potTotal() const {
    int total = 0;
    for (int pot : pots) {
        total += pot;
    }
    return total;  // the pots hold the bets of the current round already
}

QString ShortCardName(int card) {
    if (!holdem::IsCardNumber(card)) {
        return {};
    }
    static const char kRanks[] = "A23456789TJQK";
    static const char kSuits[] = "scdh";
    return QString(QLatin1Char(kRanks[holdem::ShortCardNum(card) - 1])) +
           QLatin1Char(kSuits[holdem::SuitIndexOfCard(card)]);
}

QString SeatLabel(const QString& name) {
    return QStringLiteral("player: ") + name;
}

QString BestHand(const TableState& table, const QString& name) {
    const QString wanted = SeatLabel(name);
    for (const TablePlayer& p : table.players) {
        if (SeatLabel(p.name).compare(wanted, Qt::CaseInsensitive) != 0) {
            continue;
        }
        if (p.cards[0] == 0 || p.cards[1] == 0) {
            return {};
        }
        std::vector<int> cards = {p.cards[0], p.cards[1]};
        for (int card : table.board) {
            if (card != 0) {
                cards.push_back(card);
            }
        }
        const auto shown = holdem::BestHand(cards);
        return shown ? QString::fromStdString(shown->description) : QString();
    }
    return {};
}

}  // namespace tavren
