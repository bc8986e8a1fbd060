#include <gtest/gtest.h>

#include "pm/AwayReply.h"
#include "pm/PrivateInput.h"
#include "pm/PrivateMessage.h"
#include "pm/TypingStatus.h"

namespace tavren {
namespace {

using Kind = PrivateInput::Kind;

TEST(PrivateInputTest, CommandsAreRecognisedInAnyCaseAndOnlyAwayLooksAtAPrefix) {
    EXPECT_EQ(PrivateInput::classify(QStringLiteral("   ")).kind, Kind::Nothing);
    EXPECT_EQ(PrivateInput::classify(QStringLiteral(" /CLEAR ")).kind, Kind::Clear);
    EXPECT_EQ(PrivateInput::classify(QStringLiteral("/clear now")).kind, Kind::Message);

    const PrivateInput back = PrivateInput::classify(QStringLiteral("/Back"));
    EXPECT_EQ(back.kind, Kind::Back);
    EXPECT_EQ(back.text, QStringLiteral("/back"));
    EXPECT_EQ(PrivateInput::classify(QStringLiteral("/backup")).kind, Kind::Message);

    // Only the first five characters are compared; the whole trimmed text goes out.
    for (const char* typed : {" /AWAY gone fishing ", "/awaygone fishing", "/Away"}) {
        const PrivateInput away = PrivateInput::classify(QString::fromLatin1(typed));
        EXPECT_EQ(away.kind, Kind::Away) << typed;
        EXPECT_EQ(away.text, QString::fromLatin1(typed).trimmed());
    }
    EXPECT_EQ(PrivateInput::classify(QStringLiteral("/awa")).kind, Kind::Message);
}

TEST(PrivateInputTest, MessagesGetTheReplacementsAndCrLfLineBreaks) {
    const PrivateInput message = PrivateInput::classify(
        QStringLiteral("  my &#ip is &lt;b&gt;secret&lt;/b&gt;, &lt;i&gt;&lt;u&gt;&lt;s&gt;x"
                       "&lt;/s&gt;&lt;/u&gt;&lt;/i&gt; ;5  "));
    EXPECT_EQ(message.kind, Kind::Message);
    EXPECT_EQ(message.text, QStringLiteral("my <i>IP Address</i> is <b>secret</b>, <i><u><s>x</s>"
                                           "</u></i> ;5"));
    // Literal and case-sensitive; other escaped tags stay escaped.
    EXPECT_EQ(PrivateInput::applyReplacements(
                  QStringLiteral("&#IP &LT;b&GT; &lt;a href=x&gt; &lt;img&gt; &#ip&#ip")),
              QStringLiteral("&#IP &LT;b&GT; &lt;a href=x&gt; &lt;img&gt; <i>IP Address</i><i>IP "
                             "Address</i>"));
    EXPECT_EQ(PrivateInput::classify(QStringLiteral("one\ntwo\r\nthree\rfour")).text,
              QStringLiteral("one\r\ntwo\r\nthree\r\nfour"));
}

TEST(PrivatePartsTest, TypingCodesAndLabels) {
    EXPECT_EQ(ownTypingLabel(TypingStatus::Typing), QStringLiteral("My Status: (Typing..)"));
    EXPECT_EQ(ownTypingLabel(TypingStatus::Deleting), QStringLiteral("My Status: (BackSpacing..)"));
    EXPECT_EQ(ownTypingLabel(TypingStatus::Idle), QStringLiteral("My Status: (Nothing..)"));
    EXPECT_EQ(ownTypingLabel(TypingStatus::EnteredText),
              QStringLiteral("My Status: (Entered Text..)"));
    EXPECT_EQ(peerTypingLabel(TypingStatus::Deleting),
              QStringLiteral("Typing Status: (BackSpacing..)"));
    EXPECT_EQ(peerTypingLabel(TypingStatus::EnteredText),
              QStringLiteral("Typing Status: (Entered Text..)"));
    for (int code = 1; code <= 4; ++code) {
        const auto status = typingStatusFromCode(QString::number(code));
        ASSERT_TRUE(status.has_value());
        EXPECT_EQ(typingCode(*status), QString::number(code));
    }
    for (const char* bad : {"", "0", "5", "12", " 1", "1 ", "x", "-1"}) {
        EXPECT_FALSE(typingStatusFromCode(QString::fromLatin1(bad)).has_value()) << bad;
    }
}

TEST(PrivatePartsTest, IncomingMessagesAndAwayAnswers) {
    const auto plain = PrivateMessage::parse(QStringLiteral("bob:see: this"));
    ASSERT_TRUE(plain.has_value());
    EXPECT_EQ(plain->sender, QStringLiteral("bob"));
    EXPECT_TRUE(plain->format.isEmpty());
    EXPECT_EQ(plain->text, QStringLiteral("see: this"));

    const auto formatted =
        PrivateMessage::parse(QStringLiteral("bob\u00010;255;True;False;False;"
                                             "3;Arial:hi"));
    ASSERT_TRUE(formatted.has_value());
    EXPECT_EQ(formatted->sender, QStringLiteral("bob"));
    EXPECT_EQ(formatted->format, QStringLiteral("0;255;True;False;False;3;Arial"));
    EXPECT_EQ(formatted->text, QStringLiteral("hi"));
    EXPECT_TRUE(PrivateMessage::parse(QStringLiteral("bob:"))->text.isEmpty());

    for (const QString& bad :
         {QStringLiteral("no separator"), QStringLiteral(":nobody"), QStringLiteral("\u0001x:hi"),
          QStringLiteral("two words:hi"), QStringLiteral("tab\there:hi"), QString(),
          QStringLiteral("a;b:hi"), QString(33, QLatin1Char('n')) + QStringLiteral(":hi")}) {
        EXPECT_FALSE(PrivateMessage::parse(bad).has_value()) << bad.toStdString();
    }

    EXPECT_EQ(AwayReply::textFor(QStringLiteral(" gone\r\nfishing ")),
              QStringLiteral("[Auto-Reply] gone fishing"));
    EXPECT_EQ(AwayReply::textFor(QString()), QStringLiteral("[Auto-Reply] I'm away right now."));
    EXPECT_TRUE(AwayReply::isAwayReply(AwayReply::textFor(QStringLiteral("x"))));
    EXPECT_FALSE(AwayReply::isAwayReply(QStringLiteral(" [Auto-Reply] x")));
    EXPECT_FALSE(AwayReply::isAwayReply(QStringLiteral("I got your [Auto-Reply] ")));
}

}  // namespace
}  // namespace tavren
