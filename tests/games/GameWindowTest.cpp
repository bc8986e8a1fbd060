// The table window and the lobby offscreen, fed with the server's frames: what the member sees
// of seats, cards, turns and hands, and that hostile payloads change nothing.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTreeWidget>

#include "connection/ClientUnderTest.h"
#include "core/ClientSession.h"
#include "core/protocol/HoldemCodes.h"
#include "games/GameSession.h"
#include "games/ui/Game.h"
#include "games/ui/GameCreateTable.h"
#include "games/ui/GameWindows.h"
#include "games/ui/TableView.h"
#include "games/ui/gameList.h"
#include "render/ui/ChatPane.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

namespace game = protocol::holdem_to_client;

// Card numbers: 1 = ace of spades, 13 = king of spades, 26 = king of clubs, 40 = ace of hearts.
const std::string kSeated = "Green Felt;1;6;5;10;1000;30";
const std::string kPreflop =
    "Green Felt;3;preflop;0;1;25;0,0,0,0,0;15;"
    "0\x01"
    "alice\x01"
    "990\x01"
    "10\x01"
    "in\x01"
    "False\x01"
    "0\x01"
    "0\x02"
    "1\x01"
    "bob\x01"
    "995\x01"
    "5\x01"
    "in\x01"
    "False\x01"
    "13\x01"
    "26\x02"
    "3\x01"
    "carol\x01"
    "1000\x01"
    "0\x01"
    "out\x01"
    "True\x01"
    "0\x01"
    "0";
const std::string kFlop =
    "Green Felt;3;flop;0;0;30;39,52,7,0,0;30;"
    "0\x01"
    "alice\x01"
    "990\x01"
    "0\x01"
    "in\x01"
    "False\x01"
    "0\x01"
    "0\x02"
    "1\x01"
    "bob\x01"
    "990\x01"
    "0\x01"
    "in\x01"
    "False\x01"
    "13\x01"
    "26";

class GameWindowTest : public ::testing::Test {
  protected:
    void feed(protocol::CodePair code, const std::string& payload) {
        session.server().dispatcher().DispatchServerFrame(protocol::Frame{code, payload});
    }

    QTemporaryDir dir;
    test::ScriptedPrompter prompter;
    ClientSession session{dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                          test::ClientUnderTest::fastOptions(), prompter};
    GameWindows windows{session, prompter};
};

TEST_F(GameWindowTest, TheTableShowsSeatsCardsAndTheMoveOnOffer) {
    feed(game::kSeated, kSeated);
    Game* table = windows.tableWindow(QStringLiteral("green felt"));
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->objectName(), QStringLiteral("Game"));
    feed(game::kTableState, kPreflop);
    feed(game::kYourTurn, "Green Felt;5;20;1000;25;10;5");

    TableView* view = table->view();
    ASSERT_NE(view->seatLabel(1), nullptr);
    EXPECT_EQ(view->seatLabel(0)->text(), QStringLiteral("player: alice"));
    EXPECT_EQ(view->seatLabel(1)->text(), QStringLiteral("player: bob"));
    EXPECT_EQ(view->seatLabel(2), nullptr);  // an empty seat has no label

    // The member's hand is named by BestHand through the seat labels: only bob's cards are known
    // to bob's own client, and he is not the one logged in here.
    const TableState* state = windows.games().table(QStringLiteral("Green Felt"));
    ASSERT_NE(state, nullptr);
    EXPECT_EQ(BestHand(*state, QStringLiteral("BOB")), QStringLiteral("Pair of Kings"));
    EXPECT_EQ(BestHand(*state, QStringLiteral("alice")), QString());

    EXPECT_TRUE(table->foldButton()->isEnabled());
    EXPECT_EQ(table->callButton()->text(), QStringLiteral("&Call 5"));
    EXPECT_EQ(table->raiseButton()->text(), QStringLiteral("&Raise to"));
    EXPECT_EQ(table->amountSlider()->minimum(), 20);
    EXPECT_EQ(table->amountSlider()->maximum(), 1000);
    table->amountSlider()->setValue(300);
    EXPECT_EQ(table->amountBox()->value(), 300);
    EXPECT_EQ(table->turnLabel()->text(), QStringLiteral("Your turn: 25 s"));

    // The flop brings the two other kings.
    feed(game::kTableState, kFlop);
    EXPECT_FALSE(table->foldButton()->isEnabled());  // the turn went with the new state
    EXPECT_EQ(BestHand(*windows.games().table(QStringLiteral("Green Felt")), QStringLiteral("bob")),
              QStringLiteral("Four of a kind - Kings"));
    EXPECT_EQ(table->turnLabel()->text(), QStringLiteral("alice to act"));
}

TEST_F(GameWindowTest, DealerLinesAndChatGoToTheTablePane) {
    feed(game::kSeated, kSeated);
    Game* table = windows.tableWindow(QStringLiteral("Green Felt"));
    ASSERT_NE(table, nullptr);
    feed(game::kTableState, kPreflop);
    feed(game::kTableEvent, "Green Felt;raise;0;alice;90;100;False;");
    feed(game::kTableEvent, "Green Felt;fold;1;bob;0;5;True;");
    feed(game::kTableEvent, "Green Felt;flop;-1;;0;0;False;39,52,7");
    feed(game::kTableEvent, "Green Felt;win;0;alice;15;1;False;");
    feed(game::kTableChat, "Green Felt:bob:nice <b>hand</b>: ;5");
    table->pane()->flush();
    const QString body = table->pane()->bodyHtml();
    EXPECT_TRUE(body.contains(QStringLiteral("alice raises to 100.")));
    EXPECT_TRUE(body.contains(QStringLiteral("bob folds (time ran out).")));
    EXPECT_TRUE(body.contains(QStringLiteral("Flop: Kd Kh 7s")));
    EXPECT_TRUE(body.contains(QStringLiteral("alice wins 15 from side pot 1.")));
    EXPECT_TRUE(body.contains(QStringLiteral("<b>bob:</b>")));
    EXPECT_TRUE(body.contains(QStringLiteral("105.gif")));
    // A table line carries no time, whatever the settings say.
    EXPECT_FALSE(body.contains(QStringLiteral("|")));
}

TEST_F(GameWindowTest, HostilePayloadsChangeNothing) {
    feed(game::kSeated, kSeated);
    const TableState before = *windows.games().table(QStringLiteral("Green Felt"));
    for (const std::string& bad :
         {std::string(), std::string("Green Felt"), std::string("Other;1;flop;0;0;0;1;2;x"),
          std::string("Green Felt;x;y;z;w;v;99,-3,1000000000000;a,b;\x02\x01\x01"),
          std::string("Green Felt;1;flop;0;0;0;0;0;99\x01"
                      "eve\x01"
                      "1\x01"
                      "1\x01"
                      "in\x01"
                      "False\x01"
                      "77\x01"
                      "-1"),
          std::string(5000, ';')}) {
        feed(game::kTableState, bad);
        feed(game::kYourTurn, bad);
        feed(game::kTableEvent, bad);
        feed(game::kTableList, bad);
        feed(game::kTableInvitation, bad);
        feed(game::kLeftTable, "Other;" + bad);
    }
    const TableState* after = windows.games().table(QStringLiteral("Green Felt"));
    ASSERT_NE(after, nullptr);
    EXPECT_EQ(after->ownSeat, before.ownSeat);
    for (const TablePlayer& p : after->players) {
        EXPECT_GE(p.seat, 0);
        EXPECT_LT(p.seat, 10);
        for (int card : p.cards) {
            EXPECT_TRUE(card >= 0 && card <= 52);
        }
    }
    for (int card : after->board) {
        EXPECT_TRUE(card >= 0 && card <= 52);
    }
    ASSERT_NE(windows.tableWindow(QStringLiteral("Green Felt")), nullptr);
    // The table goes when the server says the seat went, with the reason told.
    feed(game::kLeftTable, "Green Felt;You have no chips left at this table.");
    EXPECT_EQ(windows.tableWindow(QStringLiteral("Green Felt")), nullptr);
    ASSERT_FALSE(prompter.asked.empty());
    EXPECT_EQ(prompter.asked.back().text, QStringLiteral("You have no chips left at this table."));
}

TEST_F(GameWindowTest, TheLobbyListsTablesAndTheFormStartsWithTheMembersTable) {
    windows.openLobby();
    ASSERT_NE(windows.lobby(), nullptr);
    feed(game::kTableList,
         "Green Felt\x01"
         "2\x01"
         "6\x01"
         "5\x01"
         "10\x01"
         "1000\x01"
         "True\x01"
         "Playing\x02"
         "Den\x01"
         "1\x01"
         "2\x01"
         "1\x01"
         "2\x01"
         "40\x01"
         "False\x01"
         "Waiting");
    QTreeWidget* list = windows.lobby()->list();
    ASSERT_EQ(list->topLevelItemCount(), 2);
    EXPECT_EQ(list->topLevelItem(0)->text(1), QStringLiteral("2/6"));
    EXPECT_EQ(list->topLevelItem(0)->text(2), QStringLiteral("5/10"));
    EXPECT_EQ(list->topLevelItem(0)->text(4), QStringLiteral("Yes"));
    // A protected table asks for its password before anything is sent.
    emit windows.lobby()->joinRequested(QStringLiteral("Green Felt"), true);
    windows.openCreation();
    ASSERT_NE(windows.creation(), nullptr);
    EXPECT_EQ(windows.creation()->nameBox()->text(), QStringLiteral("'s Table"));
    windows.creation()->nameBox()->setText(QStringLiteral("a:b"));
    EXPECT_FALSE(windows.creation()->submit());
    EXPECT_EQ(windows.creation()->problem()->text(),
              QStringLiteral("A table's name holds neither \":\" nor \";\"."));
    windows.creation()->nameBox()->setText(QStringLiteral("Fine Table"));
    EXPECT_FALSE(windows.creation()->submit());  // offline
    EXPECT_EQ(windows.creation()->problem()->text(), QStringLiteral("You are not logged in."));
}

}  // namespace
}  // namespace tavren
