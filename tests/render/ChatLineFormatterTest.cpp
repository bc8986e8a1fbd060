#include <gtest/gtest.h>

#include <QRandomGenerator>

#include "render/ChatLineFormatter.h"
#include "render/PlainLineFormatter.h"

namespace tavren {
namespace {

using Variant = ChatLineFormatter::Variant;

const QString kParagraph =
    "<p style='text-indent: -20px; margin-right: 22px; margin-left: 22px; margin-top: 0; "
    "margin-bottom: 0;'>";

QTime fixedTime() {
    return QTime(15, 7, 9);
}

ChatLineFormatter formatterWith(LineOptions options) {
    ChatLineFormatter formatter(std::move(options));
    formatter.setClock(fixedTime);
    return formatter;
}

LineOptions optionsAt(const QString& dataRoot) {
    LineOptions options;
    options.dataRoot = dataRoot;
    return options;
}

QString image(const QString& dataRoot, int number) {
    QString path = "file:///" + dataRoot + "\\smiles\\" + QString::number(100 + number) + ".gif";
    path.replace(" ", "%20");
    return "<img border='0' src='" + path + "'>";
}

TEST(ChatLineFormatterTest, WorkedRoomLineIsExact) {
    const QString root = "C:\\Program Files\\Chat";
    const ChatLineFormatter formatter = formatterWith(optionsAt(root));
    QString text = "hi ;5 :-)";
    const QString line = formatter.formatLine(Variant::Room, "Alice:", text, 255, 0, false, 2);
    EXPECT_EQ(
        line.toStdString(),
        (kParagraph + "<font face='Arial' size='1'>[3:07:09pm]</font>&nbsp;<font color='FF0000' "
                      "face='Arial' size='2'><b>Alice:</b></font>&nbsp;&nbsp;"
                      "<font color='000000' face='Arial' size='2'>hi <img border='0' "
                      "src='file:///C:\\Program%20Files\\Chat\\smiles\\105.gif'> <img border='0' "
                      "src='file:///C:\\Program%20Files\\Chat\\smiles\\149.gif'> </font></p>")
            .toStdString());
    // The caller's text now holds the pictures, without the links step's trailing space.
    EXPECT_EQ(text, "hi " + image(root, 5) + " " + image(root, 49));
    EXPECT_EQ(formatter.smileyUrl(5), "file:///C:\\Program%20Files\\Chat\\smiles\\105.gif");
}

TEST(ChatLineFormatterTest, SmileyCodesFollowTheOrderOfThePasses) {
    const QString root = "/tmp/tavren data";
    const ChatLineFormatter formatter = formatterWith(optionsAt(root));
    const auto substituted = [&](QString text) {
        formatter.substituteSmileys(text);
        return text;
    };
    EXPECT_EQ(substituted(";54"), image(root, 5) + "4");
    EXPECT_EQ(substituted(";0 ;60"), ";0 " + image(root, 6) + "0");
    EXPECT_EQ(substituted(";12;1;53;9"),
              image(root, 12) + image(root, 1) + image(root, 53) + image(root, 9));
    EXPECT_EQ(substituted("o:-) O:-)"), "o" + image(root, 49) + " O" + image(root, 49));
    EXPECT_EQ(substituted(":-D:-d=-O=-o"),
              image(root, 24) + image(root, 24) + image(root, 47) + image(root, 47));
    EXPECT_EQ(substituted(";-) [=) :-\\ :-( :-* :-x :-X :-p :-P"),
              image(root, 53) + " " + image(root, 43) + " " + image(root, 39) + " " +
                  image(root, 38) + " " + image(root, 28) + " " + image(root, 31) + " " +
                  image(root, 31) + " " + image(root, 50) + " " + image(root, 50));
    EXPECT_EQ(substituted("=-o:-)"), image(root, 47) + image(root, 49));
    EXPECT_EQ(substituted(":- ) ;; ;a :-"), ":- ) ;; ;a :-");
}

TEST(ChatLineFormatterTest, LinksAreMadeFromWordStarts) {
    EXPECT_EQ(ChatLineFormatter::linkify("see WWW.Example.com now"),
              "see <a target= _blank  href= http://WWW.Example.com >WWW.Example.com</a> now ");
    EXPECT_EQ(ChatLineFormatter::linkify("Http://A.b/c, (http://x.y)"),
              "<a target= _blank  href= Http://A.b/c, >Http://A.b/c,</a> (http://x.y) ");
    EXPECT_EQ(ChatLineFormatter::linkify("ftp://f mailto:m@x https://s"),
              "<a target= _blank  href= ftp://f >ftp://f</a> "
              "<a target= _blank  href= mailto:m@x >mailto:m@x</a> "
              "<a target= _blank  href= https://s >https://s</a> ");
    // Doubled and trailing spaces survive as empty words; every text ends in one space.
    EXPECT_EQ(ChatLineFormatter::linkify("a  b "), "a  b  ");
    EXPECT_EQ(ChatLineFormatter::linkify(""), " ");
    EXPECT_EQ(ChatLineFormatter::linkify("http:/ www ftp:/"), "http:/ www ftp:/ ");
}

TEST(ChatLineFormatterTest, OptionsShapeTheLine) {
    const QString root = "/data";
    LineOptions options = optionsAt(root);
    options.smileys = false;
    options.timestamp = false;
    options.boldNames = false;
    options.underlineNames = true;
    const ChatLineFormatter formatter = formatterWith(options);

    // Smileys off: codes stay as typed, links are still made.
    QString text = ";5 :-) www.x.org";
    const QString room =
        formatter.formatLine(Variant::Room, "Bob:", text, 0x00FF8080, 0xFF, true, 3);
    EXPECT_EQ(text, ";5 :-) www.x.org");
    EXPECT_EQ(room, kParagraph +
                        "&nbsp;<font color='8080FF' face='Arial' size='3'><u>Bob:</u></font>"
                        "&nbsp;&nbsp;<font color='FF0000' face='Arial' size='3'><b>;5 :-) "
                        "<a target= _blank  href= http://www.x.org >www.x.org</a> </b></font></p>");

    // Tables never carry a time; private lines stamp in the line's size and turn CR LF into
    // breaks, which room and table lines keep as they are.
    options.timestamp = true;
    options.boldNames = true;
    options.underlineNames = true;
    const ChatLineFormatter stamped = formatterWith(options);
    QString tableText = "a\r\nb";
    EXPECT_EQ(stamped.formatLine(Variant::Table, "T:", tableText, 0, 0, false, 2),
              kParagraph +
                  "<font color='000000' face='Arial' size='2'><b><u>T:</u></b></font>&nbsp;&nbsp;"
                  "<font color='000000' face='Arial' size='2'>a\r\nb </font></p>");
    QString privateText = "a\r\nb\r\n";
    EXPECT_EQ(stamped.formatLine(Variant::Private, "P:", privateText, 0, 0, false, 4),
              kParagraph +
                  "<font face='Arial' size='4'>|3:07:09 PM|</font>&nbsp;<font color='000000' "
                  "face='Arial' size='4'><b><u>P:</u></b></font>&nbsp;&nbsp;<font "
                  "color='000000' face='Arial' size='4'>a<br>b<br> </font></p>");
    QString roomText = "a\r\nb";
    EXPECT_TRUE(stamped.formatLine(Variant::Room, "R:", roomText, 0, 0, false, 2)
                    .contains("a\r\nb </font></p>"));
}

TEST(ChatLineFormatterTest, NicknameStyleDecoratesInsideTheMessage) {
    const ChatLineFormatter formatter = formatterWith(optionsAt("/d"));
    QString text = "hi";
    TextStyle style;
    style.italic = true;
    style.underline = true;
    style.face = "Tom's Hand";
    EXPECT_TRUE(formatter.formatLine(Variant::Room, "A:", text, 0, 0, true, 2, style)
                    .endsWith("<font color='000000' face='Arial' size='2'><b><font "
                              "face='Tom&#39;s Hand'><i><u>hi </u></i></font></b></font></p>"));
    TextStyle italicOnly;
    italicOnly.italic = true;
    text = "hi";
    EXPECT_TRUE(formatter.formatLine(Variant::Table, "A:", text, 0, 0, false, 2, italicOnly)
                    .endsWith("size='2'><i>hi </i></font></p>"));
}

// Text built from the pieces that make the substitution and link rules interact.
QString randomLine(QRandomGenerator& random) {
    static const QStringList pieces = {
        ";",      ":",       "-",        ")",       "(",  "=",       "o",       "O",    "[",
        "\\",     "*",       "x",        "X",       "p",  "P",       "d",       "D",    "0",
        "1",      "2",       "3",        "4",       "5",  "6",       "9",       " ",    "  ",
        ";1",     ";12",     ";54",      ";60",     ";0", ";5",      ";53",     ":-)",  "o:-)",
        "O:-)",   "=-o",     ":-",       "=-",      "[=", "http://", "HTTP://", "www.", "WwW.",
        "ftp://", "mailto:", "https://", "hTtPs:/", "a",  "é",       "\r\n",    "<b>",  "'"};
    QString line;
    const int count = random.bounded(30);
    for (int i = 0; i < count; ++i) {
        line += pieces.at(random.bounded(pieces.size()));
    }
    return line;
}

TEST(ChatLineFormatterTest, MatchesThePlainFormatterOnRandomLines) {
    // Roots holding codes of their own force the literal passes; the others take the scan.
    const QStringList roots = {"C:\\Program Files\\Chat",
                               "/tmp/tavren home",
                               "/x;1/y",
                               "C:\\a:-)b",
                               "/odd=-o[=)",
                               "/d;4;"};
    QRandomGenerator random(20240611);
    for (const QString& root : roots) {
        for (const bool smileys : {true, false}) {
            LineOptions options = optionsAt(root);
            options.smileys = smileys;
            const ChatLineFormatter formatter = formatterWith(options);
            const plain::PlainLineFormatter reference(options, fixedTime);
            for (int i = 0; i < 3000; ++i) {
                const QString typed = randomLine(random);
                const auto variant = Variant(random.bounded(3));
                const WinColor name = random.generate();
                const WinColor color = random.generate() & 0xFFFFFF;
                const bool bold = random.bounded(2) == 1;
                QString ours = typed;
                QString theirs = typed;
                ASSERT_EQ(formatter.formatLine(variant, "N:", ours, name, color, bold, 2),
                          reference.formatLine(variant, "N:", theirs, name, color, bold, 2))
                    << "root " << root.toStdString() << ", text " << typed.toStdString();
                ASSERT_EQ(ours, theirs);
            }
        }
    }
}

TEST(ChatLineFormatterTest, DataRootWithCodesStillGivesThePassesResult) {
    // The picture for ";12" holds ";5" itself, and the ";5" pass runs after the ";12" pass:
    // it rewrites inside the first picture.
    const QString root = "/r;5";
    const ChatLineFormatter formatter = formatterWith(optionsAt(root));
    QString text = ";12";
    formatter.substituteSmileys(text);
    QString expected = ";12";
    plain::substituteSmileys(optionsAt(root), expected);
    EXPECT_EQ(text, expected);
    EXPECT_TRUE(text.contains("112.gif"));
    EXPECT_TRUE(text.contains("105.gif"));
}

}  // namespace
}  // namespace tavren
