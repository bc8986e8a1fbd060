#include <gtest/gtest.h>

#include <QSettings>
#include <QSignalSpy>

#include "BuddyFixture.h"
#include "config/SoundSlots.h"
#include "contacts/BuddyListOptions.h"
#include "contacts/BuddyListText.h"
#include "contacts/BuddyNames.h"

namespace tavren {
namespace {

using test::BuddyFixture;
using Image = BuddyPresence::Image;

const QChar kNbsp(0x00A0);

QStringList folderNames(const BuddyFolders& folders) {
    QStringList names;
    for (const BuddyFolder& folder : folders) {
        names << folder.name;
    }
    return names;
}

TEST(BuddyNamesTest, NamesAndFoldersFollowTheServersRules) {
    for (const char* good : {"al", "bob.smith", "Carol_1", "d-e", "Abcdefghijklmnopqrst"}) {
        EXPECT_TRUE(BuddyNames::isUserName(QString::fromLatin1(good))) << good;
    }
    for (const char* bad : {"", "a", "9lives", "_x", "bob smith", "bob:x", "bob;x", "@bob",
                            "Abcdefghijklmnopqrstu", "b\xe9"}) {
        EXPECT_FALSE(BuddyNames::isUserName(QString::fromLatin1(bad))) << bad;
    }
    EXPECT_FALSE(BuddyNames::isUserName(QStringLiteral("j\u00F6rg")));

    for (const QString& good :
         {QStringLiteral("W"), QStringLiteral("Friends & Family"),
          QStringLiteral("Caf\u00E9 \u20AC"), QString(32, QLatin1Char('x'))}) {
        EXPECT_TRUE(BuddyNames::isFolderName(good)) << good.toStdString();
    }
    for (const QString& bad :
         {QString(), QStringLiteral("a.b"), QStringLiteral("a:b"), QStringLiteral("a;b"),
          QStringLiteral("a\u0001"), QStringLiteral("a\u0002"), QStringLiteral("tab\there"),
          QStringLiteral("\u0081"), QStringLiteral("\u6F22"), QString(33, QLatin1Char('x'))}) {
        EXPECT_FALSE(BuddyNames::isFolderName(bad)) << bad.toStdString();
    }
}

TEST(BuddyListTextTest, ParsesSplitsAtTheFirstDotAndLeavesEmptyFoldersOut) {
    const BuddyFolders parsed = BuddyListText::parse(QStringLiteral(
        "Buddies.anna:Work.bob.smith:Work.Carol:Buddies.ANNA:Bad.9x:Work.::.dave:Fo;ld.eve:"
        "noFolder:Family.Frank"));
    ASSERT_EQ(folderNames(parsed), (QStringList{"Buddies", "Work", "Family"}));
    // The same buddy twice stays in its first folder; entries the server would refuse go.
    EXPECT_EQ(parsed[0].buddies, (QStringList{"anna", "dave", "noFolder"}));
    EXPECT_EQ(parsed[1].buddies, (QStringList{"bob.smith", "Carol"}));
    EXPECT_EQ(parsed[2].buddies, (QStringList{"Frank"}));

    EXPECT_EQ(BuddyListText::serialise(parsed),
              QStringLiteral("Buddies.anna:Buddies.dave:Buddies.noFolder:Work.bob.smith:"
                             "Work.Carol:Family.Frank:"));
    // A folder without buddies never travels; nothing at all travels as ":" alone.
    const BuddyFolders withEmpty{{QStringLiteral("Empty"), {}},
                                 {QStringLiteral("Work"), {QStringLiteral("bob")}},
                                 {QStringLiteral("Later"), {}}};
    EXPECT_EQ(BuddyListText::serialise(withEmpty), QStringLiteral("Work.bob:"));
    EXPECT_EQ(BuddyListText::serialise({{QStringLiteral("Empty"), {}}}), QStringLiteral(":"));
    EXPECT_TRUE(BuddyListText::parse(QStringLiteral(":")).empty());
    EXPECT_TRUE(BuddyListText::parse(QString()).empty());
}

TEST_F(BuddyFixture, AListWithAColonRebuildsTheTree) {
    QSignalSpy changed(&buddies(), &BuddyList::listChanged);
    deliverList();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(folderNames(buddies().folders()), (QStringList{"Buddies", "Work", "Family"}));
    EXPECT_TRUE(buddies().contains(QStringLiteral("BOB.SMITH")));
    EXPECT_EQ(buddies().spelling(QStringLiteral("carol")), QStringLiteral("Carol"));
    EXPECT_FALSE(buddies().contains(QStringLiteral("smith")));
    EXPECT_EQ(buddies().serialised(),
              QStringLiteral("Buddies.anna:Work.bob.smith:Work.Carol:Family.dave:"));
    EXPECT_EQ(buddies().folderCaption(buddies().folders()[1]), QStringLiteral("Work (0/2)"));

    // The server's empty list.
    deliver(QStringLiteral(":"));
    EXPECT_TRUE(buddies().folders().empty());
    EXPECT_FALSE(buddies().contains(QStringLiteral("anna")));
    EXPECT_EQ(changed.count(), 2);
}

TEST_F(BuddyFixture, PresenceRecordsSetPicturesTooltipsAndCounts) {
    deliverList();
    QSignalSpy presence(&buddies(), &BuddyList::presenceChanged);

    deliver(QStringLiteral("Work.bob.smith;True;False;True;False;General;"));
    EXPECT_EQ(buddies().image(QStringLiteral("bob.smith")), Image::Online);
    EXPECT_EQ(BuddyPresence::imageKey(buddies().image(QStringLiteral("bob.smith"))), "+");
    EXPECT_EQ(buddies().tooltip(QStringLiteral("BOB.smith")),
              kNbsp + QStringLiteral("User: bob.smith\r") + kNbsp +
                  QStringLiteral("In Channel.. General"));
    EXPECT_EQ(buddies().folderCaption(buddies().folders()[1]), QStringLiteral("Work (1/2)"));

    // Away and idle: the third picture; the away text keeps its ";".
    deliver(QStringLiteral("Work.Carol;True;True;False;True;;gone; back at 2"));
    EXPECT_EQ(BuddyPresence::imageKey(buddies().image(QStringLiteral("carol"))), "u");
    EXPECT_EQ(buddies().tooltip(QStringLiteral("carol")),
              kNbsp + QStringLiteral("User: Carol\r") + kNbsp +
                  QStringLiteral("Away:  gone; back at 2\r") + kNbsp + QStringLiteral("and Idle"));
    EXPECT_EQ(buddies().folderCaption(buddies().folders()[1]), QStringLiteral("Work (2/2)"));

    // Only idle; and a record whose folder does not match still finds the buddy.
    deliver(QStringLiteral("Elsewhere.anna;True;False;False;True;;"));
    EXPECT_EQ(buddies().image(QStringLiteral("anna")), Image::Unavailable);
    EXPECT_EQ(buddies().tooltip(QStringLiteral("anna")),
              kNbsp + QStringLiteral("User: anna\r  Idle.."));
    deliver(QStringLiteral("Work.bob.smith;True;True;True;True;Poker Lounge;brb"));
    EXPECT_EQ(buddies().tooltip(QStringLiteral("bob.smith")),
              kNbsp + QStringLiteral("User: bob.smith\r") + kNbsp + QStringLiteral("Away:  brb\r") +
                  kNbsp + QStringLiteral("In Channel.. Poker Lounge\r") + kNbsp +
                  QStringLiteral("and Idle"));

    // Offline: whatever else the record says, the buddy is nowhere.
    deliver(QStringLiteral("Family.dave;False;True;True;True;General;away"));
    EXPECT_EQ(buddies().image(QStringLiteral("dave")), Image::Offline);
    EXPECT_EQ(buddies().tooltip(QStringLiteral("dave")), kNbsp + QStringLiteral("User: dave"));
    EXPECT_EQ(buddies().folderCaption(buddies().folders()[2]), QStringLiteral("Family (0/1)"));
    EXPECT_TRUE(buddies().presence(QStringLiteral("dave")).known);

    // A record without a folder is filed in the default one and still finds its buddy.
    deliver(QStringLiteral("anna;False;False;False;False;;"));
    EXPECT_EQ(buddies().image(QStringLiteral("anna")), Image::Offline);
    EXPECT_EQ(presence.count(), 6);
}

TEST_F(BuddyFixture, UnknownAndMalformedRecordsChangeNothing) {
    deliverList();
    deliver(QStringLiteral("Work.Carol;True;False;False;False;;"));
    QSignalSpy presence(&buddies(), &BuddyList::presenceChanged);
    QSignalSpy list(&buddies(), &BuddyList::listChanged);

    // Somebody not in the list is not added by a record.
    deliver(QStringLiteral("Work.zed;True;False;False;False;;"));
    EXPECT_FALSE(buddies().contains(QStringLiteral("zed")));
    for (const QString& junk :
         {QString(), QStringLiteral(";;;;;;"), QStringLiteral("Work.;True"),
          QStringLiteral("Work.9bad;True"), QStringLiteral("Work.Carol smith;True"),
          QStringLiteral("Work.Abcdefghijklmnopqrstu;True"), QStringLiteral("\u0001\u0002;True"),
          QString(5000, QLatin1Char(';'))}) {
        deliver(junk);
    }
    EXPECT_EQ(presence.count(), 0);
    EXPECT_EQ(list.count(), 0);
    EXPECT_EQ(buddies().image(QStringLiteral("carol")), Image::Online);

    // A short record reads its missing fields as empty: the buddy is offline.
    deliver(QStringLiteral("Work.Carol"));
    EXPECT_EQ(buddies().image(QStringLiteral("carol")), Image::Offline);
    // Only the exact word counts as true.
    deliver(QStringLiteral("Work.Carol;true;TRUE"));
    EXPECT_EQ(buddies().image(QStringLiteral("carol")), Image::Offline);
    EXPECT_EQ(presence.count(), 1);
}

TEST_F(BuddyFixture, SoundsAndOnlineSignalsComeOnlyWithRealChanges) {
    QSignalSpy online(&buddies(), &BuddyList::buddyOnlineChanged);
    QSignalSpy notice(&buddies(), &BuddyList::buddyOnlineNotice);
    QSignalSpy sounds(&buddies(), &BuddyList::soundRequested);
    deliverList();
    // The burst after a list tells what already was: silence.
    deliver(QStringLiteral("Buddies.anna;False;False;False;False;;"));
    deliver(QStringLiteral("Work.bob.smith;True;False;True;False;General;"));
    deliver(QStringLiteral("Work.Carol;True;True;False;False;;lunch"));
    deliver(QStringLiteral("Family.dave;False;False;False;False;;"));
    EXPECT_EQ(online.count() + notice.count() + sounds.count(), 0);

    deliver(QStringLiteral("Buddies.anna;True;False;False;False;;"));
    ASSERT_EQ(online.count(), 1);
    EXPECT_EQ(online[0][0].toString(), QStringLiteral("anna"));
    EXPECT_TRUE(online[0][1].toBool());
    ASSERT_EQ(sounds.count(), 1);
    EXPECT_EQ(sounds[0][0].toInt(), SoundSlots::BuddyOnline);
    EXPECT_EQ(notice.count(), 1);

    // Going away, idle or into a channel is not coming or going; the same record twice is
    // nothing at all.
    deliver(QStringLiteral("Buddies.anna;True;True;True;True;General;out"));
    deliver(QStringLiteral("Buddies.anna;True;True;True;True;General;out"));
    EXPECT_EQ(online.count(), 1);
    EXPECT_EQ(sounds.count(), 1);

    deliver(QStringLiteral("Work.BOB.SMITH;False;False;False;False;;"));
    ASSERT_EQ(online.count(), 2);
    // Signals carry the list's spelling, not the record's.
    EXPECT_EQ(online[1][0].toString(), QStringLiteral("bob.smith"));
    EXPECT_FALSE(online[1][1].toBool());
    EXPECT_EQ(sounds[1][0].toInt(), SoundSlots::BuddyOffline);
    EXPECT_EQ(notice.count(), 1);

    // A new list (after an edit) keeps what is known: its burst is silent too, and a buddy new
    // to the list has a silent first record.
    deliver(QStringLiteral("Buddies.anna:Work.bob.smith:Work.Carol:Family.dave:Family.erin:"));
    deliver(QStringLiteral("Buddies.anna;True;True;True;True;General;out"));
    deliver(QStringLiteral("Family.erin;True;False;False;False;;"));
    EXPECT_EQ(online.count(), 2);
    EXPECT_EQ(buddies().image(QStringLiteral("carol")), Image::Unavailable);

    // Switched off, the sounds and the notice stay quiet; the conversations are still told.
    BuddyListOptions quiet = buddies().options();
    quiet.playSounds = false;
    quiet.notifyOnline = false;
    buddies().setOptions(quiet);
    deliver(QStringLiteral("Family.dave;True;False;False;False;;"));
    EXPECT_EQ(online.count(), 3);
    EXPECT_EQ(sounds.count(), 2);
    EXPECT_EQ(notice.count(), 1);
}

TEST_F(BuddyFixture, LosingTheLinkEmptiesTheListWithoutAnyBuddyGoingOffline) {
    deliverList();
    deliver(QStringLiteral("Buddies.anna;True;False;False;False;;"));
    QSignalSpy online(&buddies(), &BuddyList::buddyOnlineChanged);
    QSignalSpy caption(&buddies(), &BuddyList::captionChanged);
    emit session.server().onlineChanged(false);
    EXPECT_TRUE(buddies().folders().empty());
    EXPECT_EQ(buddies().image(QStringLiteral("anna")), Image::Offline);
    EXPECT_EQ(online.count(), 0);
    ASSERT_EQ(caption.count(), 1);
    EXPECT_EQ(caption[0][0].toString(), QStringLiteral("Buddies (0)"));

    // Offline, edits change nothing and send nothing.
    deliverList();
    buddies().addBuddy(QStringLiteral("zed"));
    EXPECT_FALSE(buddies().contains(QStringLiteral("zed")));
    EXPECT_FALSE(buddies().removeBuddy(QStringLiteral("anna")));
    EXPECT_FALSE(buddies().moveBuddy(QStringLiteral("anna"), QStringLiteral("Work")));
    EXPECT_FALSE(buddies().replace({}));
    EXPECT_EQ(buddies().serialised(),
              QStringLiteral("Buddies.anna:Work.bob.smith:Work.Carol:Family.dave:"));
}

TEST_F(BuddyFixture, OptionsAreKeptInTheGeneralSection) {
    EXPECT_EQ(buddies().options(), BuddyListOptions{});
    QSignalSpy changed(&buddies(), &BuddyList::optionsChanged);
    BuddyListOptions chosen;
    chosen.showOffline = false;
    chosen.notifyOnline = false;
    buddies().setOptions(chosen);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(BuddyListOptions::load(session.store()), chosen);

    QSettings file(dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    EXPECT_EQ(file.value(QStringLiteral("General/buddyshowoffline")).toString(), "0");
    EXPECT_EQ(file.value(QStringLiteral("General/buddysounds")).toString(), "1");
    EXPECT_EQ(file.value(QStringLiteral("General/buddynotify")).toString(), "0");

    // A damaged value keeps its default.
    session.store().setValue(QStringLiteral("General"), QStringLiteral("buddysounds"),
                             QStringLiteral("maybe"));
    EXPECT_TRUE(BuddyListOptions::load(session.store()).playSounds);
}

}  // namespace
}  // namespace tavren
