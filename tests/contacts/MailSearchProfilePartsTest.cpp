// Mail, member search and profiles on the client, without a server: the texts as typed and as
// sent, the reading pane's page, and the session objects fed frames as the server would send
// them (with a scripted peer for what they send).
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTemporaryDir>

#include "connection/FakePeer.h"
#include "connection/Wait.h"
#include "contacts/MailPage.h"
#include "contacts/MailText.h"
#include "contacts/Mailbox.h"
#include "contacts/MemberSearch.h"
#include "contacts/Profiles.h"
#include "core/ClientSession.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;

const QTimeZone kUtc(QTimeZone::utc());

TEST(MailTextTest, AddresseesAreSplitAtCommasAndTrimmed) {
    EXPECT_EQ(MailText::addressees(QStringLiteral("bob, carol")),
              (QStringList{QStringLiteral("bob"), QStringLiteral("carol")}));
    EXPECT_EQ(
        MailText::addressees(QStringLiteral(" bob ,carol ,, dave,")),
        (QStringList{QStringLiteral("bob"), QStringLiteral("carol"), QStringLiteral("dave")}));
    // Without a comma the whole field is the one addressee.
    EXPECT_EQ(MailText::addressees(QStringLiteral("  bob  ")), QStringList{QStringLiteral("bob")});
    EXPECT_EQ(MailText::addressees(QStringLiteral("bob carol")),
              QStringList{QStringLiteral("bob carol")});
    EXPECT_TRUE(MailText::addressees(QStringLiteral("  ")).isEmpty());
    EXPECT_TRUE(MailText::addressees(QStringLiteral(" , ")).isEmpty());
}

TEST(MailTextTest, LineBreaksTravelAsBrAndComeBackForEditing) {
    EXPECT_EQ(MailText::bodyToWire(QStringLiteral("one\r\ntwo\nthree\rfour")),
              QStringLiteral("one<br>two<br>three<br>four"));
    // The record's separators would cut the mail; they never go out.
    EXPECT_EQ(MailText::bodyToWire(QStringLiteral("a\u0001b\u0002c\td")), QStringLiteral("abc\td"));
    EXPECT_EQ(MailText::subjectToWire(QStringLiteral(" Re:\tplans\u0002 \n")),
              QStringLiteral("Re: plans"));
    EXPECT_EQ(MailText::bodyForEditing(QStringLiteral("one<br>two<BR/>three<br />four")),
              QStringLiteral("one\ntwo\nthree\nfour"));
    const QString typed = QStringLiteral("Dear bob,\n\n<b>see</b> you\n");
    EXPECT_EQ(MailText::bodyForEditing(MailText::bodyToWire(typed)), typed);
    EXPECT_EQ(MailText::replySubject(QStringLiteral("hi")), QStringLiteral("Re: hi"));
    EXPECT_EQ(MailText::forwardSubject(QStringLiteral("hi")), QStringLiteral("Fwd: hi"));
}

TEST(MailTextTest, TheSentTimeIsRebuiltWithTwoDigitFieldsInTheReadersZone) {
    EXPECT_EQ(MailText::sentTime(QStringLiteral("3/7/2026 - 14/5"), kUtc),
              QStringLiteral("03/07/2026 02:05 PM"));
    EXPECT_EQ(MailText::sentTime(QStringLiteral("12/31/2025 - 0/0"), kUtc),
              QStringLiteral("12/31/2025 12:00 AM"));
    EXPECT_EQ(MailText::sentTime(QStringLiteral("1/1/2026 - 12/59"), kUtc),
              QStringLiteral("01/01/2026 12:59 PM"));
    // Two hours east of UTC the clock, and here the date, move on.
    EXPECT_EQ(MailText::sentTime(QStringLiteral("12/31/2025 - 23/30"), QTimeZone(2 * 3600)),
              QStringLiteral("01/01/2026 01:30 AM"));
    for (const char* odd : {"", "yesterday", "3/7/2026", "3/7 - 14/5", "13/40/2026 - 14/5",
                            "3/7/2026 - 25/5", "a/b/c - d/e"}) {
        EXPECT_EQ(MailText::sentTime(QString::fromLatin1(odd), kUtc), QString::fromLatin1(odd));
    }
}

TEST(MailPageTest, TheReadingPaneIsWrittenPieceByPiece) {
    MailRow row;
    row.sender = QStringLiteral("alice");
    row.sentTime = QStringLiteral("03/07/2026 02:05 PM");
    row.subject = QStringLiteral("Plans");
    row.body = QStringLiteral("line one<br>line two");
    const QString expected =
        QStringLiteral("<html>") +
        QStringLiteral(
            "<table border='0' cellpadding='0' cellspacing='0' width='100%' height='100%' "
            "align='left' id='table1'><tr><td height='25' bgcolor='#DADADA'><table border='0' "
            "cellspacing='0' width='100%' height='100%' align='left' id='table2'><tr><td "
            "width='70' align='right' bgcolor='#DADADA'><font face='Verdana' "
            "size='2'>From:</font></td><td bgcolor='#DADADA'><b><font face='Verdana' size='2'>") +
        row.sender +
        QStringLiteral(
            "</font></b></td></tr><tr><td width='70' align='right' bgcolor='#E8E8E8'><font "
            "face='Verdana' size='2'>Sent:</font></td><td bgcolor='#E8E8E8'><b><font "
            "face='Verdana' size='2'>") +
        row.sentTime +
        QStringLiteral(
            "</font></b></td></tr><tr><td width='70' align='right' bgcolor='#F4F4F4'><font "
            "face='Verdana' size='2'>Subject:</font></td><td bgcolor='#F4F4F4'><b><font "
            "face='Verdana' size='2'>") +
        row.subject +
        QStringLiteral(
            "</font></b></td></tr></table></td></tr><tr><td valign='top'><font face='Verdana' "
            "size='2'>") +
        row.body + QStringLiteral("</font></td></tr></table>") + QStringLiteral("</html>");
    EXPECT_EQ(MailPage::reading(row), expected);
    EXPECT_EQ(MailPage::empty(0x00E0F0FF),
              QStringLiteral("about:<body bgcolor='#FFF0E0' topmargin='2' leftmargin='2' "
                             "rightmargin='2' bottommargin='2'></body>"));
}

TEST(ProfilesTest, TheEditorsChecksAndTexts) {
    EXPECT_EQ(Profiles::check(QString()), Profiles::Check::Empty);
    EXPECT_EQ(Profiles::check(QString(10000, QLatin1Char('x'))), Profiles::Check::Ok);
    EXPECT_EQ(Profiles::check(QString(10001, QLatin1Char('x'))), Profiles::Check::TooLong);
    EXPECT_EQ(Profiles::tooLongText(QString(10001, QLatin1Char('x'))),
              QStringLiteral("Profile Limit is 10000 characters...\nCurrent Size is 10001"));
    EXPECT_EQ(Profiles::countText(QStringLiteral("abc")), QStringLiteral("Count: (3)"));
    EXPECT_EQ(Profiles::progressText(0), QStringLiteral("Please Wait...(0%)"));
    EXPECT_EQ(Profiles::progressText(1), QStringLiteral("Please Wait...(4%)"));
    EXPECT_EQ(Profiles::progressText(25), QStringLiteral("Please Wait...(100%)"));
    EXPECT_EQ(Profiles::caption(QStringLiteral("bob")), QStringLiteral("bob's Profile."));
    EXPECT_EQ(MemberSearch::searchingCaption(0),
              QStringLiteral("Tavren Member Search. (Searching)"));
    EXPECT_EQ(MemberSearch::searchingCaption(3),
              QStringLiteral("Tavren Member Search. (Searching...)"));
    EXPECT_EQ(MemberSearch::doneCaption(0),
              QStringLiteral("Tavren Member Search. (Done. 0 Results.. )"));
    EXPECT_TRUE(MemberSearch::fields().contains(QStringLiteral("Email")));
}

// One client fed frames as if the server had sent them; what it sends goes to a scripted peer.
class ContactSessionTest : public ::testing::Test {
  protected:
    ContactSessionTest()
        : session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                  ConnectionOptions::deployment(), prompter) {}

    void deliver(protocol::CodePair code, const QString& payload) {
        session.server().dispatcher().DispatchServerFrame(
            protocol::Frame{code, WireText::toWire(payload)});
    }

    void logIn() {
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

    static QString record(const QStringList& fields) { return fields.join(QChar(1)) + QChar(2); }

    QTemporaryDir dir;
    test::ScriptedPrompter prompter;
    test::FakePeer peer;
    ClientSession session;
    int syncs = 0;
};

TEST_F(ContactSessionTest, TwoAddresseesGoAsTwoRecordsOfOneRequest) {
    logIn();
    Mailbox& mailbox = session.mailbox();
    EXPECT_EQ(mailbox.send(QStringLiteral("bob, carol"), QStringLiteral("Plans"),
                           QStringLiteral("line one\nline two")),
              Mailbox::SendResult::Sent);
    EXPECT_EQ(sent(out::kSendMail),
              QStringList{record({QStringLiteral("bob"), QStringLiteral("line one<br>line two"),
                                  QStringLiteral("Plans")}) +
                          record({QStringLiteral("carol"), QStringLiteral("line one<br>line two"),
                                  QStringLiteral("Plans")})});
    EXPECT_EQ(mailbox.send(QStringLiteral(" , "), QStringLiteral("s"), QStringLiteral("b")),
              Mailbox::SendResult::NoAddressee);
    EXPECT_EQ(mailbox.send(QStringLiteral("bob"), QStringLiteral(" "), QStringLiteral("\n")),
              Mailbox::SendResult::Sent)
        << "a line break alone is a body";
    EXPECT_EQ(mailbox.send(QStringLiteral("bob"), QStringLiteral(" "), QString()),
              Mailbox::SendResult::Empty);

    QSignalSpy sentSpy(&mailbox, &Mailbox::sent);
    QSignalSpy refused(&mailbox, &Mailbox::refused);
    deliver(in::kMailSent, QStringLiteral("bob;carol"));
    deliver(in::kMailError,
            QStringLiteral("Your message was not delivered to zed: no such member."));
    ASSERT_EQ(sentSpy.count(), 1);
    EXPECT_EQ(sentSpy[0][0].toStringList(),
              (QStringList{QStringLiteral("bob"), QStringLiteral("carol")}));
    ASSERT_EQ(refused.count(), 1);
    EXPECT_EQ(refused[0][0].toString(),
              QStringLiteral("Your message was not delivered to zed: no such member."));

    session.server().login().logOff();
    ASSERT_TRUE(test::waitUntil([this] { return !session.server().online(); }));
    EXPECT_EQ(mailbox.send(QStringLiteral("bob"), QStringLiteral("s"), QStringLiteral("b")),
              Mailbox::SendResult::Offline);
}

TEST_F(ContactSessionTest, TheInboxIsListedOnceAndDeletesSendExactlyTheChosenRows) {
    logIn();
    Mailbox& mailbox = session.mailbox();
    QSignalSpy counts(&mailbox, &Mailbox::countChanged);
    EXPECT_EQ(mailbox.inboxCaption(), QStringLiteral("Inbox (0)"));
    EXPECT_EQ(mailbox.menuCaption(), QStringLiteral("&Read Messages (0).."));

    const QStringList first = {QStringLiteral("alice"), QStringLiteral("Hi: there"),
                               QStringLiteral("3/7/2026 - 14/5"), QStringLiteral("one<br>two"),
                               QStringLiteral("7")};
    const QStringList second = {QStringLiteral("bob"), QStringLiteral("Lunch"),
                                QStringLiteral("3/6/2026 - 9/0"), QStringLiteral("noon?"),
                                QStringLiteral("5")};
    const QStringList third = {QStringLiteral("carol"), QStringLiteral("x"),
                               QStringLiteral("3/5/2026 - 9/0"), QStringLiteral("y"),
                               QStringLiteral("2")};
    deliver(in::kMailList, record(first) + record(second));
    ASSERT_EQ(mailbox.count(), 2);
    EXPECT_EQ(mailbox.rows()[0].sender, QStringLiteral("alice"));
    EXPECT_EQ(mailbox.rows()[0].subject, QStringLiteral("Hi: there"));
    EXPECT_EQ(mailbox.rows()[0].body, QStringLiteral("one<br>two"));
    EXPECT_EQ(mailbox.rows()[0].sentTime, MailText::sentTime(first[2]));
    EXPECT_EQ(mailbox.inboxCaption(), QStringLiteral("Inbox (2)"));
    EXPECT_EQ(mailbox.menuCaption(), QStringLiteral("&Read Messages (2).."));

    // The same inbox again, or a record twice in one answer, lists nothing twice.
    QSignalSpy changes(&mailbox, &Mailbox::inboxChanged);
    deliver(in::kMailList, record(first) + record(second) + record(second));
    EXPECT_EQ(mailbox.count(), 2);
    EXPECT_EQ(changes.count(), 0);
    deliver(in::kMailList, record(third) + record(first) + record(second));
    ASSERT_EQ(mailbox.count(), 3);
    EXPECT_EQ(mailbox.rows()[0].sender, QStringLiteral("carol"));

    // Deleting sends the chosen rows as they came and takes them off the list at once.
    mailbox.remove({0, 2});
    EXPECT_EQ(sent(out::kDeleteMail), QStringList{record(third) + record(second)});
    ASSERT_EQ(mailbox.count(), 1);
    EXPECT_EQ(mailbox.rows()[0].sender, QStringLiteral("alice"));
    EXPECT_EQ(counts.count(), 3);  // 2, 3, 1
    mailbox.remove({});
    mailbox.remove({5});
    EXPECT_EQ(sent(out::kDeleteMail).size(), 1) << "nothing chosen, nothing sent";

    // The server's count agrees: nothing more. It does not: the inbox is asked for again.
    const auto asked = sent(out::kMailReceive).size();
    deliver(in::kMailContents, QStringLiteral("1;100"));
    EXPECT_EQ(sent(out::kMailReceive).size(), asked);
    deliver(in::kMailContents, QStringLiteral("2;100"));
    EXPECT_EQ(sent(out::kMailReceive).size(), asked + 1);

    // New mail is answered with "Mail-Recv" and told on.
    QSignalSpy newMail(&mailbox, &Mailbox::newMail);
    deliver(in::kNewMail, QStringLiteral("dave"));
    EXPECT_EQ(sent(out::kMailReceive).size(), asked + 2);
    EXPECT_EQ(sent(out::kMailReceive).last(), QStringLiteral("Mail-Recv"));
    ASSERT_EQ(newMail.count(), 1);
    EXPECT_EQ(newMail[0][0].toString(), QStringLiteral("dave"));

    // The empty inbox, and offline there is none.
    deliver(in::kMailList, QString());
    EXPECT_EQ(mailbox.count(), 0);
    deliver(in::kMailList, record(first));
    session.server().login().logOff();
    ASSERT_TRUE(test::waitUntil([this] { return !session.server().online(); }));
    EXPECT_EQ(mailbox.count(), 0);
}

TEST_F(ContactSessionTest, SearchResultsAndProfilesAreReadAsTheServerSendsThem) {
    MemberSearch& search = session.memberSearch();
    EXPECT_FALSE(search.search(QStringLiteral("Name"), QStringLiteral("al"))) << "offline";
    logIn();
    QSignalSpy finished(&search, &MemberSearch::finished);
    EXPECT_FALSE(search.search(QStringLiteral("Name"), QStringLiteral("  ")));
    ASSERT_TRUE(search.search(QStringLiteral("Email"), QStringLiteral(" a@b.org ")));
    EXPECT_TRUE(search.searching());
    EXPECT_EQ(sent(out::kMemberSearch), QStringList{QStringLiteral("Email\u0001a@b.org")});

    // No record: done with 0.
    deliver(protocol::CodePair{6, 1}, QString());
    ASSERT_EQ(finished.count(), 1);
    EXPECT_EQ(finished[0][0].toInt(), 0);
    EXPECT_FALSE(search.searching());

    // Up to eight fields; a ninth stays in the eighth. A record without a name is no member.
    const QString nine =
        QStringLiteral("x\u00011\u00012\u00013\u00014\u00015\u00016\u00017\u00018");
    deliver(protocol::CodePair{6, 2},
            QStringLiteral("alice\u0001Online\u0001General\u00012020-01-01\u0001Yes\u0001"
                           "http://a.example\u0002") +
                nine + QStringLiteral("\u0002\u0001Offline\u0002"));
    ASSERT_EQ(search.results().size(), 2);
    EXPECT_EQ(search.results()[0].value(MemberSearch::Link), QStringLiteral("http://a.example"));
    EXPECT_EQ(search.results()[1].size(), MemberSearch::kMostFields);
    EXPECT_EQ(search.results()[1].last(), QStringLiteral("7\u00018"));
    EXPECT_TRUE(search.cut());

    // A profile: split once at the first ":", the page keeps all of its own.
    Profiles& profiles = session.profiles();
    QSignalSpy arrived(&profiles, &Profiles::profileArrived);
    QSignalSpy own(&profiles, &Profiles::ownPageArrived);
    deliver(in::kProfile, QStringLiteral("bob:<b>Time:</b> 10:30"));
    ASSERT_EQ(arrived.count(), 1);
    EXPECT_EQ(arrived[0][0].toString(), QStringLiteral("bob"));
    EXPECT_EQ(arrived[0][1].toString(), QStringLiteral("<b>Time:</b> 10:30"));
    deliver(in::kProfile, QStringLiteral(":nameless"));
    EXPECT_EQ(arrived.count(), 1);

    // The editor's own page comes to the editor, not to a profile window.
    ASSERT_TRUE(profiles.fetchOwn());
    deliver(in::kProfile, QStringLiteral("ME:my page"));
    ASSERT_EQ(own.count(), 1);
    EXPECT_EQ(own[0][0].toString(), QStringLiteral("my page"));
    EXPECT_EQ(arrived.count(), 1);
    ASSERT_TRUE(profiles.view(QStringLiteral(" bob ")));
    EXPECT_FALSE(profiles.update(QString(10001, QLatin1Char('x'))));
    EXPECT_FALSE(profiles.update(QString()));
    ASSERT_TRUE(profiles.update(QString(10000, QLatin1Char('x'))));
    EXPECT_EQ(sent(out::kViewProfile), (QStringList{QStringLiteral("me"), QStringLiteral("bob")}));
    EXPECT_EQ(sent(out::kUpdateProfile), QStringList{QString(10000, QLatin1Char('x'))});
}

}  // namespace
}  // namespace tavren
