// The mail, search and profile windows offscreen, on a client logged in to a scripted peer: what
// they show of the session's state, what the member's actions send, and the captions, counts and
// refusals the member sees.
#include <gtest/gtest.h>

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <memory>

#include "config/ColumnWidths.h"
#include "connection/FakePeer.h"
#include "connection/Wait.h"
#include "contacts/MailPage.h"
#include "contacts/Mailbox.h"
#include "contacts/Profiles.h"
#include "contacts/ui/ChatMail.h"
#include "contacts/ui/ChatProfile.h"
#include "contacts/ui/ChatSearch.h"
#include "contacts/ui/ChatUpdateProfile.h"
#include "contacts/ui/ContactWindows.h"
#include "core/ClientSession.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"
#include "core/ui/ChatMain.h"
#include "core/ui/DesktopNotices.h"
#include "pm/ui/ChatPM.h"
#include "render/ui/ChatPane.h"
#include "rooms/RoomCommands.h"
#include "support/ScriptedPrompter.h"

namespace tavren {
namespace {

namespace in = protocol::server_to_client;
namespace out = protocol::client_to_server;

class ContactWindowsTest : public ::testing::Test {
  protected:
    ContactWindowsTest()
        : session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                  ConnectionOptions::deployment(), prompter),
          windows(session, prompter) {}

    void SetUp() override { logIn(); }

    void logIn() {
        peer.setResponder(&test::FakePeer::answerLoginWithoutPings);
        SettingsValues values = session.settings().values();
        values.serverHost = QStringLiteral("127.0.0.1");
        values.serverPort = QString::number(peer.port());
        values.tls = false;  // plain: encryption is tested on its own
        session.settings().setValues(values);
        SavedAccounts& accounts = session.server().accounts();
        const int row = accounts.findRow(QStringLiteral("me"));
        session.server().login().select(
            row < 0 ? accounts.add(QStringLiteral("me"), QStringLiteral("pw")) : row);
        session.server().login().clickLoginButton();
        ASSERT_TRUE(test::waitUntil([this] { return session.server().online(); }));
    }

    void deliver(protocol::CodePair code, const QString& payload) {
        session.server().dispatcher().DispatchServerFrame(
            protocol::Frame{code, WireText::toWire(payload)});
    }

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

    static QAction* entry(QMenu* menu, const char* name) {
        for (QAction* action : menu->actions()) {
            if (action->objectName() == QLatin1String(name)) {
                return action;
            }
        }
        return nullptr;
    }

    // The middle of the first character of `text` in the pane, in viewport coordinates.
    static QPoint pointAt(ChatPane& pane, const QString& text) {
        const QTextCursor found = pane.document()->find(text);
        QTextCursor inside(pane.document());
        inside.setPosition(found.selectionStart() + 1);
        return pane.cursorRect(inside).center() - QPoint(2, 0);
    }

    QTemporaryDir dir;
    test::ScriptedPrompter prompter;
    test::FakePeer peer;
    ClientSession session;
    ContactWindows windows;
    int syncs = 0;
};

TEST_F(ContactWindowsTest, TheMailWindowListsReadsAnswersAndDeletes) {
    const QStringList first = {QStringLiteral("alice"), QStringLiteral("Plans"),
                               QStringLiteral("3/7/2026 - 14/5"),
                               QStringLiteral("see you<br>at <b>noon</b>"), QStringLiteral("7")};
    const QStringList second = {QStringLiteral("bob"), QStringLiteral("Hello"),
                                QStringLiteral("3/6/2026 - 9/0"), QStringLiteral("hi"),
                                QStringLiteral("5")};
    deliver(in::kMailList, record(first) + record(second));
    windows.openMail();
    ChatMail& mail = *windows.mailWindow();
    ASSERT_TRUE(mail.isVisible());
    EXPECT_EQ(mail.tabs().tabText(0), QStringLiteral("Inbox (2)"));
    ASSERT_EQ(mail.list().topLevelItemCount(), 2);
    EXPECT_EQ(mail.list().topLevelItem(0)->text(0), QStringLiteral("alice"));
    EXPECT_EQ(mail.list().topLevelItem(0)->text(1), QStringLiteral("Plans"));
    EXPECT_FALSE(mail.list().topLevelItem(0)->text(2).isEmpty());
    EXPECT_EQ(mail.list().topLevelItem(0)->text(3), first[3]);
    EXPECT_FALSE(mail.action(QStringLiteral("mnureply"))->isEnabled()) << "nothing read yet";

    // Reading a row writes its page into the pane.
    mail.list().setCurrentItem(mail.list().topLevelItem(0));
    EXPECT_EQ(mail.pane().bodyHtml(), MailPage::reading(session.mailbox().rows()[0]));
    mail.pane().flush();
    EXPECT_TRUE(mail.pane().toPlainText().contains(QStringLiteral("noon")));
    EXPECT_TRUE(mail.pane().toPlainText().contains(QStringLiteral("From:")));

    // A new inbox keeps the row being read.
    deliver(in::kMailList,
            record({QStringLiteral("carol"), QStringLiteral("x"), QStringLiteral("3/8/2026 - 1/0"),
                    QStringLiteral("y"), QStringLiteral("9")}) +
                record(first) + record(second));
    EXPECT_EQ(mail.tabs().tabText(0), QStringLiteral("Inbox (3)"));
    ASSERT_NE(mail.list().currentItem(), nullptr);
    EXPECT_EQ(mail.list().currentItem()->text(0), QStringLiteral("alice"));

    mail.action(QStringLiteral("mnureply"))->trigger();
    EXPECT_EQ(mail.tabs().currentIndex(), 1);
    EXPECT_EQ(mail.toField().text(), QStringLiteral("alice"));
    EXPECT_EQ(mail.subject().text(), QStringLiteral("Re: Plans"));
    EXPECT_TRUE(mail.message().toPlainText().endsWith(QStringLiteral("see you\nat <b>noon</b>")));
    mail.action(QStringLiteral("mnuforward"))->trigger();
    EXPECT_EQ(mail.toField().text(), QString());
    EXPECT_EQ(mail.subject().text(), QStringLiteral("Fwd: Plans"));

    // Delete sends the chosen rows, and only those.
    mail.showInbox();
    mail.list().clearSelection();
    mail.list().topLevelItem(0)->setSelected(true);
    mail.list().topLevelItem(2)->setSelected(true);
    mail.action(QStringLiteral("mnudelete"))->trigger();
    const QStringList deleted = sent(out::kDeleteMail);
    ASSERT_EQ(deleted.size(), 1);
    EXPECT_TRUE(deleted[0].startsWith(QStringLiteral("carol")));
    EXPECT_TRUE(deleted[0].endsWith(record(second)));
    EXPECT_FALSE(deleted[0].contains(QStringLiteral("alice")));
    EXPECT_EQ(mail.list().topLevelItemCount(), 1);
    EXPECT_EQ(mail.tabs().tabText(0), QStringLiteral("Inbox (1)"));

    // Column widths are kept as the member leaves them.
    mail.list().setColumnWidth(1, 321);
    EXPECT_EQ(ColumnWidths::read(session.store(), ColumnWidths::Mail, 1, 0), 321);
}

TEST_F(ContactWindowsTest, ComposingSendsOneRequestAndSaysWhatTheServerSaid) {
    windows.composeMailTo(QStringLiteral("bob"));
    ChatMail& mail = *windows.mailWindow();
    EXPECT_EQ(mail.tabs().currentIndex(), 1);
    mail.toField().setText(QStringLiteral("bob, carol"));
    mail.subject().setText(QStringLiteral("Friday"));
    mail.message().setPlainText(QStringLiteral("first\nsecond"));
    QTest::mouseClick(mail.findChild<QWidget*>(QStringLiteral("Command1")), Qt::LeftButton);
    const QString body = QStringLiteral("first<br>second");
    EXPECT_EQ(sent(out::kSendMail),
              QStringList{record({QStringLiteral("bob"), body, QStringLiteral("Friday")}) +
                          record({QStringLiteral("carol"), body, QStringLiteral("Friday")})});

    // Refused: the member is told why and keeps the text.
    deliver(in::kMailError,
            QStringLiteral("Your message was not delivered to carol: no such member."));
    ASSERT_FALSE(prompter.asked.empty());
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Error: Error Composing Message.."));
    EXPECT_EQ(prompter.asked.back().text,
              QStringLiteral("Your message was not delivered to carol: no such member."));
    EXPECT_EQ(mail.subject().text(), QStringLiteral("Friday"));
    // Kept: the form empties and the inbox shows again.
    deliver(in::kMailSent, QStringLiteral("bob"));
    EXPECT_EQ(prompter.asked.back().text, QStringLiteral("Your Message(s) have been sent!"));
    EXPECT_TRUE(mail.subject().text().isEmpty());
    EXPECT_TRUE(mail.message().toPlainText().isEmpty());
    EXPECT_EQ(mail.tabs().currentIndex(), 0);

    // Nobody to send to: refused before anything goes.
    mail.composeTo(QStringLiteral(" , "));
    mail.message().setPlainText(QStringLiteral("x"));
    mail.send();
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Error: Error Composing Message.."));
    EXPECT_EQ(sent(out::kSendMail).size(), 1);
}

TEST_F(ContactWindowsTest, TheSearchCaptionCountsDotsThenResultsAndTheMenuFits) {
    deliver(in::kBuddyPresence, QStringLiteral("Buddies.bob:"));
    windows.openSearch();
    ChatSearch& search = *windows.searchWindow();
    EXPECT_EQ(search.windowTitle(), QStringLiteral("Tavren Member Search."));
    search.text().setText(QStringLiteral("zz"));
    search.search();
    EXPECT_EQ(search.windowTitle(), QStringLiteral("Tavren Member Search. (Searching)"));
    EXPECT_TRUE(search.captionTimer().isActive());
    // The timer counts the dots up to three, then starts again.
    for (const char* dots : {".", "..", "...", ""}) {
        const QString caption =
            QStringLiteral("Tavren Member Search. (Searching%1)").arg(QString::fromLatin1(dots));
        EXPECT_TRUE(test::waitUntil([&] { return search.windowTitle() == caption; })) << dots;
    }
    EXPECT_EQ(sent(out::kMemberSearch), QStringList{QStringLiteral("Name\u0001zz")});

    deliver(protocol::CodePair{6, 1}, QString());
    EXPECT_EQ(search.windowTitle(), QStringLiteral("Tavren Member Search. (Done. 0 Results.. )"));
    EXPECT_FALSE(search.captionTimer().isActive());
    EXPECT_EQ(search.list().topLevelItemCount(), 0);

    search.search();
    deliver(protocol::CodePair{6, 1},
            QStringLiteral("bob\u0001Online\u0001General\u00012020-01-01\u0001No\u0001\u0002"
                           "carol\u0001Offline\u0001\u00012021-02-02\u0001Yes\u0001"
                           "https://carol.example\u0002"
                           "dave\u0001Offline\u0001\u00012021-02-02\u0001Yes\u0001"
                           "file:///etc/passwd\u0002"));
    EXPECT_EQ(search.windowTitle(), QStringLiteral("Tavren Member Search. (Done. 3 Results.. )"));
    ASSERT_EQ(search.list().topLevelItemCount(), 3);

    const std::unique_ptr<QMenu> bobMenu(search.menuFor(search.list().topLevelItem(0)));
    EXPECT_EQ(entry(bobMenu.get(), "mnuadd")->text(), QStringLiteral("Already in Buddylist.."));
    EXPECT_FALSE(entry(bobMenu.get(), "mnuadd")->isEnabled());
    EXPECT_FALSE(entry(bobMenu.get(), "mnulaunch")->isEnabled());
    const std::unique_ptr<QMenu> carolMenu(search.menuFor(search.list().topLevelItem(1)));
    QAction* add = entry(carolMenu.get(), "mnuadd");
    EXPECT_EQ(add->text(), QStringLiteral("Add User to Buddylist.."));
    ASSERT_TRUE(add->isEnabled());
    add->trigger();
    EXPECT_EQ(sent(out::kAddBuddy), QStringList{QStringLiteral("carol")});
    EXPECT_TRUE(entry(carolMenu.get(), "mnulaunch")->isEnabled());
    // Only web and mail addresses open, whatever a record says.
    const std::unique_ptr<QMenu> daveMenu(search.menuFor(search.list().topLevelItem(2)));
    EXPECT_FALSE(entry(daveMenu.get(), "mnulaunch")->isEnabled());

    // Send Mail.. composes to the member in the mail window.
    entry(carolMenu.get(), "mnusendmail")->trigger();
    ASSERT_NE(windows.mailWindow(), nullptr);
    EXPECT_EQ(windows.mailWindow()->toField().text(), QStringLiteral("carol"));
    entry(carolMenu.get(), "mnuprofile")->trigger();
    EXPECT_EQ(sent(out::kViewProfile).last(), QStringLiteral("carol"));

    search.list().setColumnWidth(3, 111);
    EXPECT_EQ(ColumnWidths::read(session.store(), ColumnWidths::Search, 3, 0), 111);
}

TEST_F(ContactWindowsTest, AProfileOpensItsWindowAndItsNickStartsAConversation) {
    deliver(in::kProfile,
            QStringLiteral("bob:<h2><a id='nick' href='#nick'>bob</a></h2><p>Times: 10:30 "
                           "<a href='https://bob.example/'>site</a> <a id='radio' "
                           "href='#radio'>radio</a></p>"));
    ChatProfile* profile = windows.profileWindow();
    ASSERT_NE(profile, nullptr);
    EXPECT_TRUE(profile->isVisible());
    EXPECT_EQ(profile->objectName(), QStringLiteral("ChatProfile"));
    EXPECT_EQ(profile->windowTitle(), QStringLiteral("bob's Profile."));
    EXPECT_TRUE(profile->pane().toPlainText().contains(QStringLiteral("Times: 10:30")));

    std::vector<QUrl> opened;
    profile->pane().setLinkOpener([&](const QUrl& url) { opened.push_back(url); });
    ChatPane& pane = profile->pane();
    EXPECT_EQ(profile->elementIdAt(pointAt(pane, QStringLiteral("bob"))), QStringLiteral("nick"));
    EXPECT_EQ(profile->elementIdAt(pointAt(pane, QStringLiteral("radio"))),
              QStringLiteral("radio"));
    EXPECT_EQ(profile->elementIdAt(pointAt(pane, QStringLiteral("site"))), QString());

    QTest::mouseClick(pane.viewport(), Qt::LeftButton, {}, pointAt(pane, QStringLiteral("bob")));
    ASSERT_EQ(session.privateChats().count(), 1);
    EXPECT_EQ(session.privateChats().conversation(0).user, QStringLiteral("bob"));
    EXPECT_TRUE(opened.empty());
    QTest::mouseClick(pane.viewport(), Qt::LeftButton, {}, pointAt(pane, QStringLiteral("radio")));
    EXPECT_TRUE(opened.empty());
    QTest::mouseClick(pane.viewport(), Qt::LeftButton, {}, pointAt(pane, QStringLiteral("site")));
    ASSERT_EQ(opened.size(), 1u);
    EXPECT_EQ(opened[0], QUrl(QStringLiteral("https://bob.example/")));

    // The next profile takes the window over.
    deliver(in::kProfile, QStringLiteral("carol:hello"));
    EXPECT_EQ(windows.profileWindow(), profile);
    EXPECT_EQ(profile->windowTitle(), QStringLiteral("carol's Profile."));
}

TEST_F(ContactWindowsTest, TheEditorRefusesEmptyAndOverlongPagesAndShowsItsProgress) {
    windows.openProfileEditor();
    ChatUpdateProfile& editor = *windows.profileEditor();
    EXPECT_EQ(sent(out::kViewProfile), QStringList{QStringLiteral("me")});
    // The page the server has fills the empty editor; it opens no profile window.
    deliver(in::kProfile, QStringLiteral("me:<b>old</b>: page"));
    EXPECT_EQ(editor.editor().toPlainText(), QStringLiteral("<b>old</b>: page"));
    EXPECT_EQ(windows.profileWindow(), nullptr);

    editor.editor().clear();
    EXPECT_EQ(editor.countLabel().text(), QStringLiteral("Count: (0)"));
    editor.save();
    EXPECT_EQ(prompter.asked.back().text, QStringLiteral("No profile to updated!"));
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Profile Updated Failed."));

    editor.editor().setPlainText(QString(10001, QLatin1Char('x')));
    EXPECT_EQ(editor.countLabel().text(), QStringLiteral("Count: (10001)"));
    editor.save();
    EXPECT_EQ(prompter.asked.back().title, QStringLiteral("Profile Limit Exceeded!"));
    EXPECT_EQ(prompter.asked.back().text,
              QStringLiteral("Profile Limit is 10000 characters...\nCurrent Size is 10001"));
    EXPECT_TRUE(sent(out::kUpdateProfile).isEmpty());
    EXPECT_EQ(editor.editor().toPlainText().size(), 10001) << "the editor keeps its text";

    const QString page = QString(9989, QLatin1Char('y')) + QStringLiteral("<b>:)</b>..");
    ASSERT_EQ(page.size(), Profiles::kMaxLength);
    editor.editor().setPlainText(page);
    editor.save();
    EXPECT_EQ(editor.progressLabel().text(), QStringLiteral("Please Wait...(0%)"));
    ASSERT_TRUE(test::waitUntil(
        [&] { return editor.progressLabel().text() == QStringLiteral("Complete..."); }));
    EXPECT_EQ(editor.progress().value(), Profiles::kProgressSteps);
    EXPECT_EQ(sent(out::kUpdateProfile), QStringList{page});

    // The preview shows the edited page in the profile window, on its own background.
    editor.editor().setPlainText(QStringLiteral("<i>draft</i>"));
    QTest::mouseClick(editor.findChild<QWidget*>(QStringLiteral("XPButton3")), Qt::LeftButton);
    ChatProfile* preview = windows.profileWindow();
    ASSERT_NE(preview, nullptr);
    EXPECT_EQ(preview->windowTitle(), QStringLiteral("me's Profile."));
    EXPECT_EQ(preview->pane().palette().color(QPalette::Base), QColor(QStringLiteral("#BBD5FF")));
    EXPECT_TRUE(preview->pane().toPlainText().contains(QStringLiteral("draft")));
}

TEST_F(ContactWindowsTest, TheMainWindowAndTheOtherWindowsReachMailSearchAndProfiles) {
    // The main window is there before the login, as in the program.
    session.server().login().logOff();
    ASSERT_TRUE(test::waitUntil([this] { return !session.server().online(); }));
    ChatMain main(session);
    for (const char* name : {"readmessages", "membersearch", "editprofile"}) {
        EXPECT_FALSE(main.action(QString::fromLatin1(name))->isEnabled()) << name;
    }
    logIn();
    for (const char* name : {"readmessages", "membersearch", "editprofile"}) {
        EXPECT_TRUE(main.action(QString::fromLatin1(name))->isEnabled()) << name;
    }
    auto* mailImage = main.findChild<QToolButton*>(QStringLiteral("mailImage"));
    ASSERT_NE(mailImage, nullptr);
    EXPECT_EQ(main.action(QStringLiteral("readmessages"))->text(),
              QStringLiteral("&Read Messages (0).."));
    const qint64 empty = mailImage->icon().cacheKey();
    deliver(in::kMailList,
            record({QStringLiteral("a"), QStringLiteral("s"), QStringLiteral("1/1/2026 - 1/1"),
                    QStringLiteral("b"), QStringLiteral("1")}));
    EXPECT_EQ(main.action(QStringLiteral("readmessages"))->text(),
              QStringLiteral("&Read Messages (1).."));
    EXPECT_NE(mailImage->icon().cacheKey(), empty);

    main.action(QStringLiteral("readmessages"))->trigger();
    ASSERT_NE(main.contactWindows().mailWindow(), nullptr);
    EXPECT_TRUE(main.contactWindows().mailWindow()->isVisible());
    main.action(QStringLiteral("membersearch"))->trigger();
    ASSERT_NE(main.contactWindows().searchWindow(), nullptr);

    // "/editprofile" in a channel opens the editor.
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    RoomCommands commands(session.rooms(), session.server().link(), main);
    EXPECT_TRUE(commands.submit(0, QStringLiteral("/EditProfile")));
    ASSERT_NE(main.contactWindows().profileEditor(), nullptr);
    EXPECT_TRUE(main.contactWindows().profileEditor()->isVisible());

    // The conversation window's profile button asks for the member's profile.
    ChatPM pm(session);
    session.privateChats().openConversation(QStringLiteral("bob"));
    QPushButton* profileButton = pm.button(QStringLiteral("XPButton5"));
    ASSERT_NE(profileButton, nullptr);
    ASSERT_TRUE(profileButton->isEnabled());
    QTest::mouseClick(profileButton, Qt::LeftButton);
    EXPECT_EQ(sent(out::kViewProfile).last(), QStringLiteral("bob"));

    // Offline, none of it is offered.
    session.server().login().logOff();
    ASSERT_TRUE(test::waitUntil([this] { return !session.server().online(); }));
    for (const char* name : {"readmessages", "membersearch", "editprofile"}) {
        EXPECT_FALSE(main.action(QString::fromLatin1(name))->isEnabled()) << name;
    }
    EXPECT_EQ(main.action(QStringLiteral("readmessages"))->text(),
              QStringLiteral("&Read Messages (0).."));
}

// New mail in the background is a notice whose click opens the mail window, not the
// conversation of an earlier notice; in front, no notice.
TEST_F(ContactWindowsTest, NewMailInTheBackgroundIsANoticeThatOpensTheMail) {
    bool inFront = false;
    DesktopNotices notices(session.settings(), nullptr, [&] { return inFront; });
    QStringList shown;
    notices.setShower([&](const QString& title, const QString& text) {
        shown << title + QLatin1Char('|') + text;
    });
    QSignalSpy conversation(&notices, &DesktopNotices::conversationWanted);
    QSignalSpy mail(&notices, &DesktopNotices::mailWanted);
    QObject::connect(&session.mailbox(), &Mailbox::newMail, &notices, &DesktopNotices::newMail);

    notices.privateMessage(QStringLiteral("bob"), QStringLiteral("hi"));
    deliver(in::kNewMail, QStringLiteral("carol"));
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown[1], QStringLiteral("New mail from carol|Click to read it."));
    notices.clicked();
    EXPECT_EQ(mail.count(), 1);
    EXPECT_EQ(conversation.count(), 0);

    inFront = true;
    deliver(in::kNewMail, QStringLiteral("dave"));
    EXPECT_EQ(shown.size(), 2);
    // The last notice shown is still the mail's.
    notices.clicked();
    EXPECT_EQ(mail.count(), 2);
}

}  // namespace
}  // namespace tavren
