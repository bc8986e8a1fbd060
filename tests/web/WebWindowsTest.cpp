// The server's news (frames to feed to pane and window), the news window, the radio player's
// window and the ways in: the main menu, "/news" and a profile's radio link.
#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTemporaryDir>

#include "contacts/ui/ChatProfile.h"
#include "contacts/ui/ContactWindows.h"
#include "core/ClientSession.h"
#include "core/WireText.h"
#include "core/protocol/Catalogue.h"
#include "core/ui/ChatMain.h"
#include "rooms/RoomCommands.h"
#include "support/ScriptedPrompter.h"
#include "web/ui/ChatNews.h"
#include "web/ui/ChatRadio.h"

namespace tavren {
namespace {

namespace in = protocol::server_to_client;

class WebWindowsTest : public ::testing::Test {
  protected:
    WebWindowsTest()
        : session(dir.path(), dir.filePath(QStringLiteral("settings.ini")),
                  ConnectionOptions::deployment(), prompter) {}

    void deliver(protocol::CodePair code, const QString& payload) {
        session.server().dispatcher().DispatchServerFrame(
            protocol::Frame{code, WireText::toWire(payload)});
    }
    NewsFeed& news() { return session.web().news(); }

    QTemporaryDir dir;
    test::ScriptedPrompter prompter;
    ClientSession session;
};

TEST_F(WebWindowsTest, TheServersNewsFillPaneAndWindowAsText) {
    const protocol::CodePair newsItem{protocol::kNoticeGroup, 3};
    const protocol::CodePair motd{protocol::kNoticeGroup, 2};
    deliver(motd, QStringLiteral("Welcome <friends>"));
    deliver(newsItem, QStringLiteral("Server moved\u0001See https://tavren.example/news?a=1&b=2 "
                                     "or <script>alert(1)</script>\nSecond line"));
    deliver(newsItem, QStringLiteral("\u0001"));  // neither title nor text: nothing
    ASSERT_EQ(news().items().size(), 1);
    EXPECT_EQ(news().items()[0].title, QStringLiteral("Server moved"));
    const QString pane = news().paneHtml();
    EXPECT_TRUE(pane.contains(QStringLiteral("Welcome &lt;friends&gt;"))) << pane.toStdString();
    EXPECT_TRUE(
        pane.contains(QStringLiteral("<a "
                                     "href=\"https://tavren.example/news?a=1&amp;b=2\">https://"
                                     "tavren.example/news?a=1&amp;b=2</a>")))
        << pane.toStdString();
    EXPECT_TRUE(pane.contains(QStringLiteral("&lt;script&gt;"))) << pane.toStdString();
    EXPECT_TRUE(pane.contains(QStringLiteral("<br>Second line")));

    // (1, 7) empties the news window only, (1, 2) the pane only.
    deliver(in::kClearOtherPane, QString());
    EXPECT_TRUE(news().items().isEmpty());
    EXPECT_TRUE(news().paneHtml().contains(QStringLiteral("Server moved")));
    deliver(in::kClearPane, QString());
    EXPECT_TRUE(news().paneHtml().isEmpty());

    // A server sending news without end keeps the last ones only.
    for (int i = 0; i < NewsFeed::kMostItems + 20; ++i) {
        deliver(newsItem, QStringLiteral("Item %1\u0001text").arg(i));
    }
    EXPECT_EQ(news().items().size(), NewsFeed::kMostItems);
    EXPECT_EQ(news().items().back().title,
              QStringLiteral("Item %1").arg(NewsFeed::kMostItems + 19));
}

TEST_F(WebWindowsTest, NewsAndRadioOpenFromTheMenuTheChannelAndAProfile) {
    ChatMain main(session);
    main.show();
    const protocol::CodePair newsItem{protocol::kNoticeGroup, 3};
    deliver(newsItem, QStringLiteral("Hold'em night\u0001Friday at eight."));
    EXPECT_TRUE(main.paneText().contains(QStringLiteral("Hold'em night")));

    for (const char* name : {"news", "radio", "helptopics", "abouttavren"}) {
        ASSERT_NE(main.action(QString::fromLatin1(name)), nullptr) << name;
        EXPECT_TRUE(main.action(QString::fromLatin1(name))->isEnabled()) << name;
    }
    // "/news" typed in a channel opens the same window as the menu.
    deliver(in::kJoinedRoom, QStringLiteral("General"));
    RoomCommands commands(session.rooms(), session.server().link(), main);
    EXPECT_TRUE(commands.submit(0, QStringLiteral("/news")));
    auto* newsWindow = main.findChild<ChatNews*>(QStringLiteral("ChatNews"));
    ASSERT_NE(newsWindow, nullptr);
    EXPECT_TRUE(newsWindow->isVisible());
    EXPECT_TRUE(newsWindow->text().contains(QStringLiteral("Friday at eight.")));

    // The player: a refused address says why; the volume is kept at once.
    main.action(QStringLiteral("radio"))->trigger();
    auto* radio = main.findChild<ChatRadio*>(QStringLiteral("ChatRadio"));
    ASSERT_NE(radio, nullptr);
    EXPECT_TRUE(radio->isVisible());
    auto* station = radio->findChild<QLineEdit*>(QStringLiteral("station"));
    EXPECT_EQ(station->text(), SettingsValues::defaultRadioStation());
    station->setText(QStringLiteral("file:///dev/zero"));
    radio->findChild<QPushButton*>(QStringLiteral("play"))->click();
    EXPECT_EQ(radio->findChild<QLabel*>(QStringLiteral("state"))->text(),
              QStringLiteral("A station is an http or https address."));
    EXPECT_EQ(session.settings().values().radioStation, SettingsValues::defaultRadioStation());
    radio->findChild<QSlider*>(QStringLiteral("volume"))->setValue(35);
    EXPECT_EQ(session.store().value(QStringLiteral("General"), QStringLiteral("radiovolume")),
              QStringLiteral("35"));

    // A profile's radio link offers its station; nothing plays until the member asks.
    main.contactWindows().showProfile(
        QStringLiteral("bob"), QStringLiteral("<a id='radio' href='http://bob.example:8000/live'>"
                                              "my radio</a>"));
    ChatProfile* profile = main.contactWindows().profileWindow();
    ASSERT_NE(profile, nullptr);
    EXPECT_TRUE(profile->activateElement(QStringLiteral("radio"),
                                         QStringLiteral("http://bob.example:8000/live")));
    EXPECT_EQ(station->text(), QStringLiteral("http://bob.example:8000/live"));
    EXPECT_EQ(session.web().radio().state(), RadioPlayer::State::Failed);  // from before
}

}  // namespace
}  // namespace tavren
