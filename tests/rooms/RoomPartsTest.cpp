#include <gtest/gtest.h>

#include "rooms/ChannelLine.h"
#include "rooms/MemberListUpdate.h"
#include "rooms/MemberRank.h"
#include "rooms/RoomInput.h"

namespace tavren {
namespace {

using Kind = RoomInput::Kind;

TEST(RoomInputTest, TheFirstMatchingRowDecidesAndArgumentsKeepTheirCapitals) {
    struct Case {
        const char* input;
        Kind kind;
        const char* argument;
    };
    const Case cases[] = {
        {"", Kind::Nothing, ""},
        {"/JOIN Tavren Lounge", Kind::Join, "Tavren Lounge"},
        {"/join General", Kind::Join, "General"},
        // No space after the command word: the server gets it as typed.
        {"/joinGeneral", Kind::ChannelLine, "/joinGeneral"},
        {"/invite", Kind::ChannelLine, "/invite"},
        {"/Invite Bob", Kind::Invite, "Bob"},
        {"/weather 90210", Kind::Weather, "90210"},
        {"/weather abc", Kind::KeepTyping, ""},
        {"/weather ", Kind::KeepTyping, ""},
        {"/radio", Kind::Radio, ""},
        {"/radiostation", Kind::Radio, ""},
        {"/EditProfile", Kind::EditProfile, ""},
        {"/news", Kind::News, ""},
        {"/config now", Kind::Config, ""},
        {"/findchan", Kind::FindChannels, ""},
        {"/format", Kind::Format, ""},
        {"/about", Kind::About, ""},
        {"/CLEAR", Kind::Clear, ""},
        // The last three compare the whole input: with a space after it is a server command.
        {"/clear ", Kind::ChannelLine, "/clear "},
        {"/exit", Kind::Exit, ""},
        {"/leave", Kind::Leave, ""},
        {"/leave now", Kind::ChannelLine, "/leave now"},
        {"/kick bob:spam", Kind::ChannelLine, "/kick bob:spam"},
        {"  hello there ", Kind::ChannelLine, "  hello there "},
    };
    for (const Case& c : cases) {
        const RoomInput result = RoomInput::classify(QString::fromUtf8(c.input));
        EXPECT_EQ(result.kind, c.kind) << c.input;
        EXPECT_EQ(result.argument, QString::fromUtf8(c.argument)) << c.input;
    }
}

TEST(MemberRankTest, StaffMarksAreTestedBeforeTheHostMark) {
    EXPECT_EQ(MemberRank::iconFor(QStringLiteral("@\u00B3x")), MemberRank::StaffHighest);
    EXPECT_EQ(MemberRank::iconFor(QStringLiteral("@\u00B2x")), MemberRank::StaffSecond);
    EXPECT_EQ(MemberRank::iconFor(QStringLiteral("@\u00B9x")), MemberRank::StaffThird);
    EXPECT_EQ(MemberRank::iconFor(QStringLiteral("@x")), MemberRank::Host);
    EXPECT_EQ(MemberRank::iconFor(QStringLiteral("x@")), MemberRank::Member);
    EXPECT_EQ(MemberRank::iconFor(QStringLiteral("\u00B3x")), MemberRank::Member);
}

TEST(MemberListUpdateTest, ListsNeedAColonAndASemicolon) {
    const auto empty = MemberListUpdate::parse(QStringLiteral("General:;"));
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->channel, QStringLiteral("General"));
    EXPECT_TRUE(empty->names.isEmpty());

    EXPECT_FALSE(MemberListUpdate::parse(QStringLiteral("General:bob")));
    EXPECT_FALSE(MemberListUpdate::parse(QStringLiteral("bob;carol;")));
    EXPECT_FALSE(MemberListUpdate::parse(QString()));

    const auto ranked = MemberListUpdate::parse(QStringLiteral("Lobby:@\u00B3root;@alice;;bob;"));
    ASSERT_TRUE(ranked);
    EXPECT_EQ(ranked->names, QStringList({QStringLiteral("@\u00B3root"), QStringLiteral("@alice"),
                                          QStringLiteral("bob")}));
}

TEST(ChannelLineTest, TextKeepsItsColonsAndTheFormatRidesOnTheSender) {
    const ChannelLine plain = ChannelLine::parse(QStringLiteral("General:bob:look: a colon"));
    EXPECT_EQ(plain.channel, QStringLiteral("General"));
    EXPECT_EQ(plain.sender, QStringLiteral("bob"));
    EXPECT_TRUE(plain.format.isEmpty());
    EXPECT_EQ(plain.text, QStringLiteral("look: a colon"));

    const ChannelLine formatted =
        ChannelLine::parse(QStringLiteral("General:bob\u0001255;0;True;False;False;2;Verdana:hi"));
    EXPECT_EQ(formatted.sender, QStringLiteral("bob"));
    EXPECT_EQ(formatted.format, QStringLiteral("255;0;True;False;False;2;Verdana"));
    EXPECT_EQ(formatted.text, QStringLiteral("hi"));

    const ChannelLine host = ChannelLine::parse(QStringLiteral("General:**ChanHost:Topic: x"));
    EXPECT_TRUE(host.fromChanHost());
    EXPECT_EQ(host.text, QStringLiteral("Topic: x"));

    const ChannelLine shortLine = ChannelLine::parse(QStringLiteral("General"));
    EXPECT_EQ(shortLine.channel, QStringLiteral("General"));
    EXPECT_TRUE(shortLine.sender.isEmpty());
    EXPECT_TRUE(shortLine.text.isEmpty());
}

}  // namespace
}  // namespace tavren
