// The session side of channels found, created and moderated: the directory's records, the
// creation checks and progress, the moderation items' prompts and commands, invitations both
// ways, password questions and removals, fed frames as the server would send them and, for what
// the client sends, logged in to a scripted peer.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <algorithm>

#include "connection/FakePeer.h"
#include "connection/Wait.h"
#include "core/ClientSession.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"
#include "rooms/ChannelCreation.h"
#include "rooms/DirectoryEntry.h"
#include "rooms/RoomModeration.h"
#include "rooms/RoomSession.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;
using Answer = Prompter::Answer;

TEST(DirectoryEntryTest, RecordsCountsAndTheEightStatusTexts) {
    const QString payload = QStringLiteral(
        "Poker Lounge\u00015\u0001cards: all night\u0001False\u0001True\u0002"
        "General\u00010\u0001\u0001True\u0001False\u0002"
        "\u00013\u0001no name\u0001False\u0001False\u0002"
        "Bad:Name\u00011\u0001\u0001False\u0001False\u0002"
        "Odd Count\u0001lots\u0001\u0001False\u0001False");
    const QList<DirectoryEntry> entries = DirectoryEntry::parseList(payload);
    ASSERT_EQ(entries.size(), 3);
    EXPECT_EQ(entries[0].name, QStringLiteral("Poker Lounge"));
    EXPECT_EQ(entries[0].topic, QStringLiteral("cards: all night"));
    EXPECT_EQ(entries[0].statusText(), QStringLiteral("*User* Occupied"));
    EXPECT_EQ(entries[1].statusText(), QStringLiteral("Public Empty"));
    EXPECT_EQ(entries[2].members, 0) << "a count that is no number";
    EXPECT_TRUE(DirectoryEntry::parseList(QString()).isEmpty());

    // "00#": an empty channel shows "00", others at least three digits.
    DirectoryEntry entry;
    const std::pair<int, const char*> counts[] = {
        {0, "00"}, {5, "005"}, {12, "012"}, {123, "123"}, {1234, "1234"}};
    for (const auto& [members, shown] : counts) {
        entry.members = members;
        EXPECT_EQ(entry.countText(), QLatin1String(shown)) << members;
    }
    QStringList statuses;
    for (const int members : {0, 7}) {
        for (const bool official : {true, false}) {
            for (const bool locked : {true, false}) {
                entry.members = members;
                entry.official = official;
                entry.passwordProtected = locked;
                statuses << entry.statusText();
            }
        }
    }
    EXPECT_EQ(statuses, (QStringList{"*Public* Empty", "Public Empty", "*User* Empty", "User Empty",
                                     "*Public* Occupied", "Public Occupied", "*User* Occupied",
                                     "User Occupied"}));
}

TEST(ChannelCreationCheckTest, TheChecksComeInTheirOrder) {
    const QString noPassword =
        QStringLiteral("Please enter a password or un-select the password option!");
    const QString separators = QStringLiteral("Channel Name Can't Contain {:} or (;) Characters!");
    const QString tooShort = QStringLiteral("Channel Name must be greater then 5 Characters!");
    EXPECT_EQ(ChannelCreation::check(QStringLiteral("a:b"), true, QString()), noPassword);
    EXPECT_EQ(ChannelCreation::check(QStringLiteral("a:b"), false, QString()), separators)
        << "the separator check comes before the length check";
    EXPECT_EQ(ChannelCreation::check(QStringLiteral("Lounge;Room"), false, QString()), separators);
    EXPECT_EQ(ChannelCreation::check(QStringLiteral("Loung"), false, QString()), tooShort);
    EXPECT_EQ(ChannelCreation::check(QStringLiteral("Lounge"), false, QString()), QString());
    EXPECT_EQ(ChannelCreation::check(QStringLiteral("Lounge"), true, QStringLiteral("pw")),
              QString());
    EXPECT_NE(ChannelCreation::check(QStringLiteral("Lounge"), true, QStringLiteral("p:w")),
              QString());
    // The password option off: whatever stands in the password field does not count.
    EXPECT_EQ(ChannelCreation::check(QStringLiteral("Lounge"), false, QStringLiteral("p:w")),
              QString());
}

// One client fed frames as if the server had sent them; tests that look at what it sends log in
// to a scripted peer first.
class ChannelSessionTest : public ::testing::Test {
  protected:
    ChannelSessionTest()
        : session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                  ConnectionOptions::deployment(), prompter) {
        QObject::connect(&rooms(), &RoomSession::lineAdded, [this](int pane, const QString& html) {
            lines.push_back({pane, html});
        });
    }

    RoomSession& rooms() { return session.rooms(); }

    void deliver(protocol::CodePair code, const QString& payload) {
        session.server().dispatcher().DispatchServerFrame(
            protocol::Frame{code, WireText::toWire(payload)});
    }

    void logInAsMe() {
        peer.setResponder(&test::FakePeer::answerLoginWithoutPings);
        SettingsValues values = session.settings().values();
        values.serverHost = QStringLiteral("127.0.0.1");
        values.serverPort = QString::number(peer.port());
        values.tls = false;  // plain: encryption is tested on its own
        session.settings().setValues(values);
        SavedAccounts& accounts = session.server().accounts();
        session.server().login().select(accounts.add(QStringLiteral("me"), QStringLiteral("pw")));
        session.server().login().clickLoginButton();
        ASSERT_TRUE(test::waitUntil([this] { return session.server().online(); }));
    }

    // The payloads of `code` the peer has received once everything sent so far has arrived.
    QStringList sent(protocol::CodePair code) {
        const QString marker = QStringLiteral("sync%1").arg(++syncs);
        session.server().link().SendPacket(marker, out::kPong);
        EXPECT_TRUE(test::waitUntil([&] {
            const auto& frames = peer.frames();
            return !frames.empty() && frames.back().code == out::kPong &&
                   WireText::fromWire(frames.back().payload) == marker;
        }));
        QStringList payloads;
        for (const protocol::Frame& frame : peer.frames()) {
            if (frame.code == code) {
                payloads << WireText::fromWire(frame.payload);
            }
        }
        return payloads;
    }

    QStringList paneLines(int pane) const {
        QStringList found;
        for (const auto& [linePane, html] : lines) {
            if (linePane == pane) {
                found << html;
            }
        }
        return found;
    }

    QTemporaryDir dir;
    test::ScriptedPrompter prompter;
    test::FakePeer peer;
    ClientSession session;
    std::vector<std::pair<int, QString>> lines;
    int syncs = 0;
};

TEST_F(ChannelSessionTest, TheProgressCountsToFiftyPercentWhileTheBarFillsThenTheRequestGoes) {
    logInAsMe();
    ChannelCreation creation(session.server().link());
    std::vector<std::pair<int, QString>> steps;
    QObject::connect(&creation, &ChannelCreation::progress, [&](int value, const QString& label) {
        steps.push_back({value, label});
    });
    QSignalSpy finished(&creation, &ChannelCreation::finished);
    QString problem;
    EXPECT_FALSE(creation.start(QStringLiteral("Loung"), QString(), false, QString(), &problem));
    EXPECT_EQ(problem, QStringLiteral("Channel Name must be greater then 5 Characters!"));
    EXPECT_TRUE(steps.empty()) << "a refused creation shows no progress";

    ASSERT_TRUE(creation.start(QStringLiteral("  Poker Lounge "), QStringLiteral(" cards: poker "),
                               true, QStringLiteral(" rose"), &problem));
    EXPECT_FALSE(creation.start(QStringLiteral("Another One"), QString(), false, QString()))
        << "one creation at a time";
    ASSERT_TRUE(test::waitUntil([&] { return finished.count() == 1; }));
    ASSERT_EQ(steps.size(), 51u);
    EXPECT_EQ(steps.front(), std::make_pair(0, QStringLiteral("Creating...(0%)")));
    EXPECT_EQ(steps[25], std::make_pair(50, QStringLiteral("Creating...(25%)")));
    EXPECT_EQ(steps.back(), std::make_pair(100, QStringLiteral("Creating...(50%)")));
    // Name and topic trimmed, the password as typed; with the option off, no password at all.
    creation.start(QStringLiteral("Quiet Corner"), QString(), false, QStringLiteral("ignored"));
    ASSERT_TRUE(test::waitUntil([&] { return finished.count() == 2; }));
    EXPECT_EQ(sent(out::kCreateRoom),
              (QStringList{QStringLiteral("Poker Lounge: rose:cards: poker"),
                           QStringLiteral("Quiet Corner::")}));
}

TEST_F(ChannelSessionTest, ModerationItemsAskTrimAndSendTheirCommandsToTheSelectedChannel) {
    logInAsMe();
    deliver(in::kJoinedRoom, QStringLiteral("Night Owls"));
    RoomModeration moderation(rooms(), prompter);
    // Confirming the default reason, a reason with ":" and blanks, spaces only, and Cancel.
    prompter.texts = {QStringLiteral("No Reason"), QStringLiteral("  rude: twice "),
                      QStringLiteral("   "), QString()};
    EXPECT_TRUE(moderation.onMemberItem(QStringLiteral("kick"), QStringLiteral("bob")));
    EXPECT_TRUE(moderation.onMemberItem(QStringLiteral("chanban"), QStringLiteral("bob")));
    EXPECT_FALSE(moderation.onMemberItem(QStringLiteral("mban"), QStringLiteral("bob")));
    EXPECT_FALSE(moderation.onMemberItem(QStringLiteral("subnetban"), QStringLiteral("bob")));
    prompter.texts = {QStringLiteral("proxy")};
    EXPECT_TRUE(moderation.onMemberItem(QStringLiteral("subnetban"), QStringLiteral("bob")));
    ASSERT_EQ(prompter.asked.size(), 5u);
    EXPECT_EQ(prompter.asked[0].title, QStringLiteral("Kick Reason"));
    EXPECT_EQ(prompter.asked[0].text, QStringLiteral("Enter reason for kicking: bob"));
    EXPECT_EQ(prompter.asked[1].title, QStringLiteral("Channel Ban Reason"));
    EXPECT_EQ(prompter.asked[1].text, QStringLiteral("Enter reason for channel baning: bob"));
    EXPECT_EQ(prompter.asked[2].title, QStringLiteral("Ban Reason"));
    EXPECT_EQ(prompter.asked[2].text, QStringLiteral("Enter reason for baning: bob"));
    EXPECT_EQ(prompter.asked[3].title, QStringLiteral("Ban Reason"));
    EXPECT_EQ(prompter.asked[3].text,
              QStringLiteral("Enter reason for Subnet-Baning: bob\r\n\r\nNote: Subnet ban is only "
                             "used for proxy flooding control.."));

    // A suspension goes only on Yes.
    prompter.answers = {Answer::No, Answer::Yes};
    EXPECT_FALSE(moderation.onMemberItem(QStringLiteral("suspendacc"), QStringLiteral("bob")));
    EXPECT_TRUE(moderation.onMemberItem(QStringLiteral("suspendacc"), QStringLiteral("bob")));
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Confirm Suspend! "));
    EXPECT_EQ(prompter.asked.back().text,
              QStringLiteral("Are you sure you would like to Suspend bob?"));
    EXPECT_TRUE(moderation.onMemberItem(QStringLiteral("info"), QStringLiteral("bob")));
    EXPECT_TRUE(moderation.onMemberItem(QStringLiteral("referal"), QStringLiteral("bob")));

    // The room menu: the question is sent without a reason part.
    prompter.texts = {QStringLiteral(" Pizza: tonight? ")};
    EXPECT_TRUE(moderation.onRoomItem(QStringLiteral("voter")));
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Vote Question: (Yes or No)"));
    EXPECT_EQ(prompter.asked.back().text, QStringLiteral("Enter Your (Yes or No) Vote Question"));
    for (const char* item : {"voteyes", "voteno", "mlistban"}) {
        EXPECT_TRUE(moderation.onRoomItem(QLatin1String(item)));
    }
    EXPECT_FALSE(moderation.onRoomItem(QStringLiteral("nonsense")));
    EXPECT_EQ(sent(out::kRoomLine),
              (QStringList{"Night Owls:/kick bob:No Reason", "Night Owls:/chanban bob:rude: twice",
                           "Night Owls:/subban bob:proxy", "Night Owls:/suspend bob",
                           "Night Owls:/info bob", "Night Owls:/referal bob",
                           "Night Owls:/vote Pizza: tonight?", "Night Owls:/yes", "Night Owls:/no",
                           "Night Owls:/ipbans"}));
    EXPECT_EQ(RoomModeration::command(QStringLiteral("voter"), QString(),
                                      QStringLiteral("(Yes or No) Question.")),
              QStringLiteral("/vote (Yes or No) Question."));
}

TEST_F(ChannelSessionTest, InvitationsBothWaysAndJoiningFromTheDirectory) {
    QList<RoomInvitation> invited;
    QObject::connect(&rooms().invitations(), &RoomInvitations::invited,
                     [&](const RoomInvitation& invitation) { invited << invitation; });
    deliver(in::kRoomInvitation, QStringLiteral("Invite: alice;Poker Lounge"));
    session.ignoreList().add(QStringLiteral("Spammer"));
    for (const char* junk : {"Invite: spammer;Poker Lounge", "alice;Poker Lounge", "Invite: alice;",
                             "Invite: ;Poker Lounge", "Invite: alice;Bad:Name"}) {
        deliver(in::kRoomInvitation, QLatin1String(junk));
    }
    ASSERT_EQ(invited.count(), 1);
    const RoomInvitation invitation = invited.at(0);
    EXPECT_EQ(invitation.text(),
              QStringLiteral("Invite: alice invites you to join the channel Poker Lounge."));

    // The member menu's invite, before any channel is open, to oneself, to no channel.
    logInAsMe();
    RoomInvitations& invitations = rooms().invitations();
    EXPECT_FALSE(invitations.invite(QStringLiteral("bob"), QStringLiteral("General"), prompter));
    EXPECT_EQ(prompter.asked.back().text, QStringLiteral("No active channels present..."));
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Error.."));
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    EXPECT_FALSE(invitations.invite(QStringLiteral("ME"), QStringLiteral("General"), prompter));
    EXPECT_EQ(prompter.asked.back().text, QStringLiteral("You cannot invite yourself.."));
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Error: Lazyness.."));
    EXPECT_FALSE(invitations.invite(QStringLiteral("bob"), QString(), prompter));
    EXPECT_EQ(prompter.asked.back().text, QStringLiteral("Select a channel first!"));
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Select a channel..."));
    EXPECT_TRUE(invitations.invite(QStringLiteral(" bob "), QStringLiteral("General"), prompter));
    EXPECT_EQ(prompter.asked.back().text,
              QStringLiteral("You have invited user bob to join channel General."));
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Invite Success!"));

    // Accepting, and joining from the directory: a channel open already (in any capitals) is
    // refused in the current channel; another is asked for.
    EXPECT_FALSE(
        invitations.accept(RoomInvitation{QStringLiteral("alice"), QStringLiteral("GENERAL")}));
    EXPECT_TRUE(paneLines(rooms().room(0).paneIndex)
                    .filter(QStringLiteral("You are already located in: GENERAL!"))
                    .size() == 1);
    EXPECT_TRUE(paneLines(rooms().room(0).paneIndex)
                    .last()
                    .contains(QStringLiteral("Error: Already located in channel..")));
    EXPECT_TRUE(invitations.accept(invitation));
    EXPECT_FALSE(rooms().directory().join(QStringLiteral("general")));
    EXPECT_FALSE(rooms().directory().join(QString()));
    EXPECT_TRUE(rooms().directory().join(QStringLiteral("Night Owls")));
    rooms().directory().request();
    EXPECT_EQ(sent(out::kInviteToRoom), QStringList(QStringLiteral("bob;General")));
    EXPECT_EQ(sent(out::kJoinRoom),
              (QStringList{QStringLiteral("Poker Lounge"), QStringLiteral("Night Owls")}));
    EXPECT_EQ(sent(out::kAskChannelDirectory), QStringList(QStringLiteral("Get")));

    QSignalSpy listed(&rooms().directory(), &ChannelDirectory::listed);
    deliver(in::kChannelDirectory,
            QStringLiteral("General\u00011\u0001\u0001True\u0001False\u0002"));
    EXPECT_EQ(listed.count(), 1);
    ASSERT_EQ(rooms().directory().entries().size(), 1);
    EXPECT_EQ(rooms().directory().entries()[0].statusText(), QStringLiteral("Public Occupied"));
}

TEST_F(ChannelSessionTest, PasswordsAreAskedForKeptForTheRejoinAndRemovalsCloseTheTab) {
    logInAsMe();
    QSignalSpy asked(&rooms(), &RoomSession::passwordRequested);
    deliver(in::kJoinedRoom, QStringLiteral("Secret Garden:This channel asks for a password."));
    EXPECT_EQ(rooms().count(), 0) << "a question is no join";
    ASSERT_EQ(asked.count(), 1);
    EXPECT_EQ(asked.at(0).at(0).toString(), QStringLiteral("Secret Garden"));
    EXPECT_EQ(asked.at(0).at(1).toString(), QStringLiteral("This channel asks for a password."));
    rooms().joinWithPassword(QStringLiteral("Secret Garden"), QStringLiteral("ro:se"));
    deliver(in::kJoinedRoom, QStringLiteral("Secret Garden"));
    ASSERT_EQ(rooms().count(), 1);
    EXPECT_EQ(rooms().room(0).password, QStringLiteral("ro:se"));
    EXPECT_EQ(sent(out::kJoinRoom), QStringList(QStringLiteral("Secret Garden:ro:se")));

    // After the next login the channel is joined again with its password.
    deliver(in::kLoginAccepted, QStringLiteral("me"));
    ASSERT_TRUE(test::waitUntil([&] {
        return std::count_if(peer.frames().begin(), peer.frames().end(),
                             [](const protocol::Frame& f) { return f.code == out::kJoinRoom; }) ==
               2;
    }));
    EXPECT_EQ(sent(out::kJoinRoom).last(), QStringLiteral("Secret Garden:ro:se"));

    // Removed: the reason is passed on, the tab goes without a leave request.
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    const int pane = rooms().room(0).paneIndex;
    QSignalSpy removed(&rooms(), &RoomSession::removedFromRoom);
    deliver(in::kRemovedFromRoom, QStringLiteral("secret garden:You were kicked by alice: spam"));
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed.at(0).at(0).toString(), QStringLiteral("Secret Garden"));
    EXPECT_EQ(removed.at(0).at(1).toString(), QStringLiteral("You were kicked by alice: spam"));
    ASSERT_EQ(rooms().count(), 1);
    EXPECT_EQ(rooms().room(0).name, QStringLiteral("General"));
    EXPECT_TRUE(paneLines(pane).last().contains(
        QStringLiteral("You have been removed from this channel...")));
    deliver(in::kRemovedFromRoom, QStringLiteral("Never Joined:whatever"));
    EXPECT_EQ(removed.count(), 1);
    EXPECT_TRUE(sent(out::kLeaveRoom).isEmpty());
}

}  // namespace
}  // namespace tavren
