#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QUrl>

#include "config/SettingsValues.h"
#include "render/ChatPages.h"
#include "render/ChatTime.h"
#include "render/ColorText.h"
#include "render/FormatLines.h"
#include "render/NicknameFormat.h"
#include "render/PaneMarkup.h"
#include "render/PlainLineFormatter.h"
#include "render/RankMarks.h"
#include "render/RoomCaptions.h"
#include "render/SmileyFiles.h"

namespace tavren {
namespace {

TEST(RenderPartsTest, ColoursReverseTheBytesAndKeepTheLastSixDigits) {
    EXPECT_EQ(ColorToHex(255), "FF0000");
    EXPECT_EQ(ColorToHex(0x00FF8080), "8080FF");
    EXPECT_EQ(ColorToHex(0), "000000");
    EXPECT_EQ(ColorToHtml(0x00123456), "#563412");
    EXPECT_EQ(ColorToHexPlain(0x00ABCDEF), "EFCDAB");
    // A system-colour reference is not resolved: only its last six hex digits count.
    EXPECT_EQ(ColorToHex(0x8000000F), "0F0000");
    EXPECT_EQ(ColorToHtml(0x8000000F), "#0F0000");
    QRandomGenerator random(7);
    for (int i = 0; i < 2000; ++i) {
        const WinColor color = i < 1000 ? random.generate() : random.bounded(0x1000);
        ASSERT_EQ(ColorToHex(color), plain::colorHex(color, "000000"));
        ASSERT_EQ(ColorToHtml(color), "#" + plain::colorHex(color, "00000"));
        ASSERT_EQ(ColorToHexPlain(color), plain::colorHex(color, "00000"));
    }
}

TEST(RenderPartsTest, RankMarksAndTimes) {
    EXPECT_EQ(StripRankMarks(QString::fromUtf8("@³root")), "root");
    EXPECT_EQ(StripRankMarks(QString::fromUtf8("@¹a@b²c")), "abc");
    EXPECT_EQ(StripRankMarks(QString::fromUtf8("José")), QString::fromUtf8("José"));

    EXPECT_EQ(RoomLineTime(QTime(15, 7, 9)), "3:07:09pm");
    EXPECT_EQ(RoomLineTime(QTime(0, 0, 5)), "12:00:05am");
    EXPECT_EQ(RoomLineTime(QTime(12, 30, 0)), "12:30:00pm");
    EXPECT_EQ(PaneLineTime(QTime(15, 7, 9)), "3:07:09 PM");
    EXPECT_EQ(PaneLineTime(QTime(9, 59, 59)), "9:59:59 AM");
    EXPECT_EQ(PaneLineTime(QTime()), "");
}

TEST(RenderPartsTest, EmptyPagesAreExact) {
    EXPECT_EQ(ChatPageHtml(0x00FFFFFF),
              "about:<body bgcolor='#FFFFFF' topmargin='0' leftmargin='0' "
              "style='width:100%;overflow-x:hidden'></body>");
    EXPECT_EQ(TablePageHtml(0x00336699),
              "about:<style type='text/css'>body {scrollbar-arrow-color: "
              "white;scrollbar-base-color: black;scrollbar-dark-shadow-color: "
              "white;scrollbar-track-color: white;scrollbar-face-color: "
              "'#445038';scrollbar-shadow-color: white;scrollbar-highlight-color: "
              "silver;scrollbar-3d-light-color: black;}</style><body bgcolor='#996633' "
              "topmargin='0' leftmargin='0' style='width:100%;overflow-x:hidden'></body>");
}

TEST(RenderPartsTest, LineOptionsComeFromTheSettings) {
    SettingsValues values = SettingsValues::defaults("/root");
    values.timestamp = false;
    values.bold = false;
    values.underline = true;
    values.smiles = false;
    const LineOptions options = LineOptions::fromSettings(values, "/root");
    EXPECT_FALSE(options.timestamp);
    EXPECT_FALSE(options.boldNames);
    EXPECT_TRUE(options.underlineNames);
    EXPECT_FALSE(options.smileys);
    EXPECT_EQ(options.dataRoot, "/root");
}

// A room window with tabs, recording what reaches it.
class FakeRooms : public RoomLineTarget {
  public:
    QStringList captions{"General", "lobby", "Lobby"};
    int selected = 0;
    QList<std::pair<int, QString>> added;
    QList<int> marked;

    int roomIndex(const QString& channel) const override {
        return FirstRoomWithCaption(captions, channel);
    }
    int paneIndex(int room) const override { return room + 40; }
    void AddChat(const QString& html, int pane) override { added.append({pane, html}); }
    bool isSelected(int room) const override { return room == selected; }
    void markUnread(int room) override { marked.append(room); }
};

class FakeConversations : public PrivateLineTarget, public TableLineTarget {
  public:
    QList<std::pair<QString, QString>> lines;
    QStringList tableLines;
    void appendPrivateLine(const QString& key, const QString& html) override {
        lines.append({key, html});
    }
    void AddChat2(const QString& html) override { tableLines.append(html); }
};

TEST(RenderPartsTest, LinesReachTheirPanes) {
    ChatLineFormatter formatter;
    formatter.setClock([] { return QTime(1, 2, 3); });
    FakeRooms rooms;

    QString text = "hi";
    FormatRoomLine(formatter, rooms, "Nowhere", "A:", text, 0, 0, false, 2, true);
    EXPECT_TRUE(rooms.added.isEmpty());
    EXPECT_TRUE(rooms.marked.isEmpty());
    EXPECT_EQ(text, "hi");

    // The first caption that matches without regard to case wins.
    FormatRoomLine(formatter, rooms, "LOBBY", "A:", text, 0, 0, false, 2, true);
    ASSERT_EQ(rooms.added.size(), 1);
    EXPECT_EQ(rooms.added.at(0).first, 41);
    EXPECT_TRUE(rooms.added.at(0).second.contains("[1:02:03am]"));
    EXPECT_EQ(rooms.marked, QList<int>{1});
    // The selected tab and lines without highlight are never marked.
    FormatRoomLine(formatter, rooms, "general", "A:", text, 0, 0, false, 2, true);
    FormatRoomLine(formatter, rooms, "lobby", "A:", text, 0, 0, false, 2, false);
    EXPECT_EQ(rooms.added.size(), 3);
    EXPECT_EQ(rooms.marked, QList<int>{1});

    FakeConversations conversations;
    text = "a\r\n:-)";
    FormatPrivateLine(formatter, conversations, "bob", "A:", text, 0, 0, false, 2);
    ASSERT_EQ(conversations.lines.size(), 1);
    EXPECT_EQ(conversations.lines.at(0).first, "bob");
    EXPECT_TRUE(conversations.lines.at(0).second.contains("|1:02:03 AM|"));
    EXPECT_TRUE(conversations.lines.at(0).second.contains("a<br><img"));
    EXPECT_TRUE(text.startsWith("a\r\n<img"));
    FormatTableLine(formatter, conversations, "A:", text, 0, 0, false, 2);
    ASSERT_EQ(conversations.tableLines.size(), 1);
    // No time and no single space: the name follows the paragraph's opening tag.
    EXPECT_TRUE(conversations.tableLines.at(0).contains("margin-bottom: 0;'><font color="));
}

TEST(RenderPartsTest, NicknameFormatRoundTripsAndRefusesHostileText) {
    const auto format = NicknameFormat::parse("255;16711680;True;False;True;3;Comic Sans MS");
    ASSERT_TRUE(format);
    EXPECT_EQ(format->nameColor, 255u);
    EXPECT_EQ(format->textColor, 0xFF0000u);
    EXPECT_TRUE(format->bold);
    EXPECT_FALSE(format->italic);
    EXPECT_TRUE(format->underline);
    EXPECT_EQ(format->size, 3);
    EXPECT_EQ(format->face, "Comic Sans MS");
    EXPECT_EQ(format->toText(), "255;16711680;True;False;True;3;Comic Sans MS");
    EXPECT_EQ(NicknameFormat::parse(format->toText()), format);
    EXPECT_EQ(format->textStyle(), (TextStyle{false, true, "Comic Sans MS"}));

    const auto faceless = NicknameFormat::parse("0;0;False;False;False;7;");
    ASSERT_TRUE(faceless);
    EXPECT_TRUE(faceless->textStyle().isPlain());

    for (const QString& bad : QStringList{
             "", "0;0;False;False;False;2", "0;0;False;False;False;2;Arial;x",
             "16777216;0;False;False;False;2;Arial", "-1;0;False;False;False;2;Arial",
             "+1;0;False;False;False;2;Arial", "0x10;0;False;False;False;2;Arial",
             " 1;0;False;False;False;2;Arial", "99999999999999999999;0;False;False;False;2;A",
             "0;0;true;False;False;2;Arial", "0;0;False;False;False;0;Arial",
             "0;0;False;False;False;8;Arial", "0;0;False;False;False;02;Arial",
             "0;0;False;False;False;2;Ari:al", "0;0;False;False;False;2;Ari\tal",
             "0;0;False;False;False;2;Ari\x01"
             "al",
             "0;0;False;False;False;2;" + QString(41, 'a'), "0;;False;False;False;2;Arial",
             QString("0;0;False;False;False;2;A") + QChar(0x2028)}) {
        EXPECT_FALSE(NicknameFormat::parse(bad)) << bad.toStdString();
    }
    EXPECT_TRUE(NicknameFormat::parse("16777215;0;False;False;False;1;" + QString(40, 'a')));
}

TEST(RenderPartsTest, OnlyFilesInTheSmileyFolderAreShown) {
    QTemporaryDir root(QDir::tempPath() + "/tavren render XXXXXX");
    ASSERT_TRUE(root.isValid());
    ASSERT_TRUE(QDir(root.path()).mkpath("smiles"));
    QImage picture(19, 19, QImage::Format_ARGB32);
    picture.fill(Qt::yellow);
    ASSERT_TRUE(picture.save(root.path() + "/smiles/105.gif", "PNG"));
    ASSERT_TRUE(picture.save(root.path() + "/elsewhere.png", "PNG"));

    const SmileyFiles smileys(root.path());
    const QString file = root.path() + "/smiles/105.gif";
    ChatLineFormatter formatter(LineOptions{true, true, false, true, root.path()});
    EXPECT_EQ(smileys.localFile(formatter.smileyUrl(5)), file);
    EXPECT_EQ(smileys.localFile(QUrl::fromLocalFile(file).toString()), file);
    EXPECT_EQ(smileys.localFile(QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded)), file);
    EXPECT_FALSE(smileys.load(formatter.smileyUrl(5)).isNull());
    EXPECT_EQ(smileys.pictureFile(5), file);

    for (const QString& refused :
         QStringList{formatter.smileyUrl(6), "http://127.0.0.1/smiles/105.gif", file,
                     QUrl::fromLocalFile(root.path() + "/elsewhere.png").toString(),
                     QUrl::fromLocalFile(root.path() + "/smiles/../elsewhere.png").toString(),
                     "file:///" + root.path() + "\\smiles\\..\\elsewhere.png", "file://host" + file,
                     "data:image/png;base64,AAAA", "file:///dev/zero",
                     QUrl::fromLocalFile(root.path() + "/smiles").toString()}) {
        EXPECT_TRUE(smileys.localFile(refused).isEmpty()) << refused.toStdString();
    }
}

TEST(RenderPartsTest, PaneMarkupGivesBareHexColoursTheirHash) {
    EXPECT_EQ(PaneMarkupForQt("<font color='FF0000' face='Arial'>FF0000 color='ABCDEF'</font>"),
              "<font color='#FF0000' face='Arial'>FF0000 color='ABCDEF'</font>");
    EXPECT_EQ(PaneMarkupForQt("<td BGCOLOR=00ff00 style=\"color: abcdef; border-color:#123456\">"),
              "<td BGCOLOR=#00ff00 style=\"color: #abcdef; border-color:#123456\">");
    // Names and longer values are not colours to fix.
    EXPECT_EQ(PaneMarkupForQt("<font color='red' x='FFFFFF'><b color=ABCDEF12>"),
              "<font color='red' x='FFFFFF'><b color=ABCDEF12>");
    EXPECT_EQ(PaneMarkupForQt("<font color="), "<font color=");
}

TEST(RenderPartsTest, PaneMarkupDropsTableTagsAfterTheThird) {
    EXPECT_EQ(
        PaneMarkupForQt("<table><tr><td>a<table><tr><td>b</td></tr></table></td></tr></table>"),
        "<table><tr><td>a<table><tr><td>b</td></tr></table></td></tr></table>");
    // The fourth table and every table tag after it go; their text stays.
    EXPECT_EQ(PaneMarkupForQt("<table><td><TABLE><td><table><td>< table bgcolor=FF0000><tr><td "
                              "x='>'>deep</td></table><b>x</b><td>"),
              "<table><td><TABLE><td><table><td>'>deep<b>x</b>");
    // Counting "<table" in attribute text too can only drop tags early, never let one through.
    EXPECT_EQ(PaneMarkupForQt("<b title='<table><table><table>'><table>x"),
              "<b title='<table><table><table>'>x");
}

}  // namespace
}  // namespace tavren
