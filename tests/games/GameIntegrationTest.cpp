// Three clients' session layers at one table of the real tavrend: they sit down, chat, play a
// hand to a showdown with a side pot, and one of them drops and comes back to the same seat.
#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>
#include <memory>

#include "connection/TavrendProcess.h"
#include "connection/Wait.h"
#include "core/ServerSession.h"
#include "games/GameSession.h"
#include "tests/rooms/RoomClient.h"

namespace tavren {
namespace {

using test::RoomClient;
using test::waitUntil;

const QString kTable = QStringLiteral("Green Felt");
// See RoomIntegrationTest: fast pings need a large flood meter.
const QStringList kServerOptions = {QStringLiteral("--ping-interval"),    QStringLiteral("0.2"),
                                    QStringLiteral("--flood-lines"),      QStringLiteral("100"),
                                    QStringLiteral("--flood-interval"),   QStringLiteral("0.05"),
                                    QStringLiteral("--holdem-turn-time"), QStringLiteral("5"),
                                    QStringLiteral("--holdem-pause"),     QStringLiteral("0.3"),
                                    QStringLiteral("--holdem-stake"),     QStringLiteral("1000")};

// A client with its game session, and a strategy answering every turn it is offered.
struct Player {
    explicit Player(const char* who) : name(QString::fromLatin1(who)) {
        games = std::make_unique<GameSession>(client.session->server(), client.session->sounds(),
                                              client.session->formatter());
        QObject::connect(games.get(), &GameSession::lineAdded, games.get(),
                         [this](const QString&, const QString& html) { lines << html; });
        QObject::connect(games.get(), &GameSession::turnOffered, games.get(),
                         [this](const QString& table) {
                             if (strategy) {
                                 strategy(*this, *games->table(table));
                             }
                         });
    }
    bool saw(const QString& text) const {
        return std::any_of(lines.begin(), lines.end(),
                           [&](const QString& line) { return line.contains(text); });
    }

    QString name;
    RoomClient client;
    std::unique_ptr<GameSession> games;
    QStringList lines;
    std::function<void(Player&, const TableState&)> strategy;
};

class GameIntegrationTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        server = std::make_unique<test::TavrendProcess>(
            QDir(root.path()).filePath(QStringLiteral("tavrend.db")));
        for (const char* name : {"alice", "bob", "carol"}) {
            ASSERT_TRUE(server->addAccount(QString::fromLatin1(name), QStringLiteral("secret")));
        }
        ASSERT_TRUE(server->start(kServerOptions));
    }
    void logIn(Player& player) {
        player.client.logIn(server->port(), player.name, QStringLiteral("secret"));
        ASSERT_TRUE(player.client.waitOnline()) << server->log().toStdString();
    }

    QTemporaryDir root;
    std::unique_ptr<test::TavrendProcess> server;
};

TEST_F(GameIntegrationTest, ThreePlayersChatPlayToASidePotAndOneComesBackAfterADrop) {
    Player alice("alice");
    Player bob("bob");
    Player carol("carol");
    for (Player* p : {&alice, &bob, &carol}) {
        logIn(*p);
    }
    ASSERT_TRUE(alice.games->create(kTable, 3, 5, 10, 200, QString()));
    ASSERT_TRUE(waitUntil([&] { return alice.games->table(kTable) != nullptr; }))
        << server->log().toStdString();
    ASSERT_TRUE(bob.games->askList());
    ASSERT_TRUE(waitUntil([&] { return !bob.games->listing().isEmpty(); }));
    EXPECT_EQ(bob.games->listing().front().name, kTable);
    EXPECT_TRUE(bob.games->join(QStringLiteral("green felt")));
    EXPECT_TRUE(carol.games->join(kTable));
    ASSERT_TRUE(waitUntil([&] {
        return bob.games->table(kTable) && carol.games->table(kTable) &&
               alice.games->table(kTable)->players.size() == 3;
    }));

    alice.games->say(kTable, QStringLiteral("good luck :-)"));
    ASSERT_TRUE(waitUntil([&] { return carol.saw(QStringLiteral("good luck")); }));
    EXPECT_TRUE(carol.saw(QStringLiteral("149.gif")));

    // Hand 1: the first to act raises and the others fold, so the three stacks differ; from
    // hand 2 on everybody goes all in, which makes a side pot at the showdown.
    bool raised = false;
    int hand = 0;
    for (Player* p : {&alice, &bob, &carol}) {
        p->strategy = [&](Player& me, const TableState& t) {
            hand = t.hand;
            if (t.hand == 1) {
                me.games->act(kTable, raised ? QStringLiteral("fold") : QStringLiteral("raise"),
                              t.offer.minRaiseTo);
                raised = true;
            } else {
                me.games->act(kTable, QStringLiteral("allin"));
            }
        };
    }
    ASSERT_TRUE(waitUntil([&] { return alice.saw(QStringLiteral("from side pot 1")); }, 30000))
        << alice.lines.join(QLatin1Char('\n')).toStdString();
    // Every hand that was shown is named, and the winner's words come with the result.
    EXPECT_TRUE(alice.saw(QStringLiteral(" shows ")));
    const auto named = [](const QStringList& lines) {
        for (const QString& line : lines) {
            if (line.contains(QStringLiteral(" shows ")) &&
                !(line.contains(QStringLiteral("Pair")) || line.contains(QStringLiteral("High")) ||
                  line.contains(QStringLiteral("kind")) || line.contains(QStringLiteral("Full")) ||
                  line.contains(QStringLiteral("Flush")))) {
                return false;
            }
        }
        return true;
    };
    EXPECT_TRUE(named(alice.lines));

    // Carol or whoever is still seated: one player drops and logs in again; the seat waits and
    // the table comes back to the client by itself.
    for (Player* p : {&alice, &bob, &carol}) {
        p->strategy = [](Player& me, const TableState& t) {
            me.games->act(kTable,
                          t.offer.toCall > 0 ? QStringLiteral("call") : QStringLiteral("check"));
        };
    }
    // Whoever went broke buys in again from the bank.
    for (Player* p : {&alice, &bob, &carol}) {
        if (!p->games->table(kTable)) {
            EXPECT_TRUE(p->games->join(kTable));
        }
    }
    ASSERT_TRUE(waitUntil([&] {
        return alice.games->table(kTable) && bob.games->table(kTable) && carol.games->table(kTable);
    }));
    Player* dropping = &carol;
    Player* watcher = &alice;
    // The link drops as if the network went away; the client logs in again by itself.
    dropping->client.session->server().connection().GoOffline(true);
    ASSERT_TRUE(waitUntil([&] { return watcher->saw(QStringLiteral("lost the connection")); }))
        << watcher->lines.join(QLatin1Char('\n')).toStdString();
    const int handBefore = watcher->games->table(kTable)->hand;
    ASSERT_TRUE(dropping->client.waitOnline());
    ASSERT_TRUE(waitUntil([&] {
        return watcher->saw(dropping->name + QStringLiteral(" is back."));
    })) << watcher->lines.join(QLatin1Char('\n')).toStdString();
    // The returning player is dealt in again and plays.
    ASSERT_TRUE(waitUntil(
        [&] {
            const TableState* t = watcher->games->table(kTable);
            return t && t->hand > handBefore + 1;
        },
        30000));
    EXPECT_TRUE(watcher->saw(dropping->name + QStringLiteral(" checks.")) ||
                watcher->saw(dropping->name + QStringLiteral(" calls")) ||
                watcher->saw(dropping->name + QStringLiteral(" is all in")))
        << watcher->lines.join(QLatin1Char('\n')).toStdString();
}

}  // namespace
}  // namespace tavren
