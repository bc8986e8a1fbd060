// Offline mail against the real server: delivery to several members at once, to members online
// (told at once) and offline (found at the next login), the inbox's layout, deletes that remove
// exactly the rows named and stay removed over a restart, and every bound a sender could push.
#include <regex>
#include <vector>

#include "core/protocol/Fields.h"
#include "server/support/ServerFixture.h"

namespace tavren::test {
namespace {

constexpr char kField = '\x01';
constexpr char kEnd = '\x02';

class MailTest : public ServerFixture {
  protected:
    // One record per addressee, as the mail window writes them.
    static std::string mail(const std::vector<std::string>& to, const std::string& body,
                            const std::string& subject) {
        std::string payload;
        for (const std::string& name : to) {
            payload += name + kField + body + kField + subject + kEnd;
        }
        return payload;
    }
    static std::vector<std::vector<std::string>> inbox(RawClient& client) {
        client.send(in::kMailReceive, "Mail-Recv");
        return protocol::SplitRecords(client.expect(out::kMailList).payload);
    }
    // The rows as the mail window sends them back to delete them.
    static std::string rows(const std::vector<std::vector<std::string>>& records) {
        return protocol::JoinRecords(records);
    }
    static void expectNothingPending(RawClient& client) {
        client.send(in::kAskEmail, "");
        client.expect(out::kAccountInfo);
    }
};

TEST_F(MailTest, MailReachesOnlineMembersAtOnceAndOfflineMembersAtTheirNextLogin) {
    addMembers({"alice", "Bob", "carol"});
    startServer();
    auto alice = member("alice");
    auto bob = member("bob");
    EXPECT_TRUE(inbox(*bob).empty());

    // Two addressees in one request, in any letter case; line breaks travel as "<br>" and the
    // body keeps every separator but the record's own.
    const std::string body = "first line<br>second: line; with <b>markup</b>";
    alice->send(in::kSendMail, mail({"BOB", "carol"}, body, "Plans: Friday"));
    EXPECT_EQ(alice->expect(out::kMailSent).payload, "Bob;carol");
    EXPECT_EQ(bob->expect(out::kNewMail).payload, "alice");
    expectNothingPending(*alice);

    const auto bobs = inbox(*bob);
    ASSERT_EQ(bobs.size(), 1u);
    ASSERT_EQ(bobs[0].size(), 5u);
    EXPECT_EQ(bobs[0][0], "alice");
    EXPECT_EQ(bobs[0][1], "Plans: Friday");
    // month/day/year - hour/minute, UTC, unpadded.
    EXPECT_TRUE(
        std::regex_match(bobs[0][2], std::regex(R"(\d{1,2}/\d{1,2}/\d{4} - \d{1,2}/\d{1,2})")))
        << bobs[0][2];
    EXPECT_EQ(bobs[0][3], body);
    EXPECT_FALSE(bobs[0][4].empty());

    // Carol was offline: nothing was pushed, the mail waits for her login.
    auto carol = member("carol");
    const auto carols = inbox(*carol);
    ASSERT_EQ(carols.size(), 1u);
    EXPECT_EQ(carols[0][0], "alice");
    EXPECT_EQ(carols[0][3], body);
    // Her copy is her own: a different row from Bob's.
    EXPECT_NE(carols[0][4], bobs[0][4]);

    // Asking again gives the same inbox, not a second copy; the newest mail comes first.
    bob->send(in::kSendMail, mail({"bob"}, "note to self", "Re: Plans: Friday"));
    EXPECT_EQ(bob->expect(out::kMailSent).payload, "Bob");
    EXPECT_EQ(bob->expect(out::kNewMail).payload, "Bob");
    const auto again = inbox(*bob);
    ASSERT_EQ(again.size(), 2u);
    EXPECT_EQ(again[0][1], "Re: Plans: Friday");
    EXPECT_EQ(again[1], bobs[0]);

    // An unknown addressee is reported; the others get the mail all the same.
    alice->send(in::kSendMail, mail({"nobody", " carol ", "Carol", "x:y"}, "hi", "hello"));
    EXPECT_EQ(alice->expect(out::kMailSent).payload, "carol");
    EXPECT_EQ(carol->expect(out::kNewMail).payload, "alice");
    EXPECT_EQ(alice->expect(out::kMailError).payload,
              "Your message was not delivered to nobody, x:y: no such member.");
    EXPECT_EQ(inbox(*carol).size(), 2u) << "carol named twice gets one copy";
}

TEST_F(MailTest, DeleteRemovesExactlyTheRowsNamedAndTheyStayRemovedAfterARestart) {
    addMembers({"alice", "bob"});
    const std::vector<std::string> options = {"--frame-rate", "100000",        "--flood-limit",
                                              "100000",       "--flood-lines", "100"};
    startServer(options);
    auto alice = member("alice");
    auto bob = member("bob");
    for (const char* subject : {"one", "two", "three", "four"}) {
        alice->send(in::kSendMail, mail({"bob", "alice"}, "body", subject));
        alice->expect(out::kMailSent);
        alice->expect(out::kNewMail);
        bob->expect(out::kNewMail);
    }
    auto bobs = inbox(*bob);
    ASSERT_EQ(bobs.size(), 4u);
    const auto alices = inbox(*alice);

    // Bob deletes "three" and "one"; a row naming Alice's copy, a row without an id and a
    // broken one change nothing.
    std::vector<std::vector<std::string>> chosen = {
        bobs[1], bobs[3], alices[0], {"alice", "x"}, {"alice", "s", "t", "b", "12abc"}};
    bob->send(in::kDeleteMail, rows(chosen));
    EXPECT_EQ(bob->expect(out::kMailContents).payload, "2;100");
    bobs = inbox(*bob);
    ASSERT_EQ(bobs.size(), 2u);
    EXPECT_EQ(bobs[0][1], "four");
    EXPECT_EQ(bobs[1][1], "two");
    EXPECT_EQ(inbox(*alice).size(), 4u);

    // Deleting the same rows again is harmless.
    bob->send(in::kDeleteMail, rows(chosen));
    EXPECT_EQ(bob->expect(out::kMailContents).payload, "2;100");

    alice.reset();
    bob.reset();
    ASSERT_EQ(server_->stop(), 0);
    startServer(options);
    bob = member("bob");
    const auto afterRestart = inbox(*bob);
    ASSERT_EQ(afterRestart.size(), 2u);
    EXPECT_EQ(afterRestart[0][1], "four");
    EXPECT_EQ(afterRestart[1][1], "two");
}

TEST_F(MailTest, AFullInboxRefusesNewMailAndTheSenderIsTold) {
    addMembers({"alice", "bob", "carol"});
    startServer({"--max-mails", "2"});
    auto alice = member("alice");
    for (const char* subject : {"oldest", "newer"}) {
        alice->send(in::kSendMail, mail({"bob"}, "body", subject));
        EXPECT_EQ(alice->expect(out::kMailSent).payload, "bob");
    }
    alice->send(in::kSendMail, mail({"bob", "carol"}, "body", "one too many"));
    EXPECT_EQ(alice->expect(out::kMailSent).payload, "carol");
    EXPECT_EQ(alice->expect(out::kMailError).payload,
              "Your message was not delivered to bob: the inbox is full (it keeps 2 messages).");

    // Nothing was dropped to make room.
    auto bob = member("bob");
    const auto bobs = inbox(*bob);
    ASSERT_EQ(bobs.size(), 2u);
    EXPECT_EQ(bobs[0][1], "newer");
    EXPECT_EQ(bobs[1][1], "oldest");

    // Room again after a delete.
    bob->send(in::kDeleteMail, rows({bobs[1]}));
    EXPECT_EQ(bob->expect(out::kMailContents).payload, "1;2");
    alice->send(in::kSendMail, mail({"bob"}, "body", "now it fits"));
    EXPECT_EQ(alice->expect(out::kMailSent).payload, "bob");
}

TEST_F(MailTest, MessagesThatBreakARuleAreRefusedWholeAndNothingIsKept) {
    addMembers({"alice", "bob"});
    startServer({"--max-mail-body", "50", "--max-mail-subject", "10", "--max-mail-to", "2",
                 "--frame-rate", "100000", "--flood-limit", "100000", "--flood-lines", "100"});
    auto alice = member("alice");
    auto bob = member("bob");
    const std::string refused = "Your message was not sent: ";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {mail({"bob"}, std::string(51, 'x'), "s"), "a message holds at most 50 characters."},
        {mail({"bob"}, "b", std::string(11, 's')), "a subject holds at most 10 characters."},
        {mail({"bob", "alice", "carol"}, "b", "s"), "a message goes to at most 2 members."},
        {mail({"bob"}, "", ""), "it is empty."},
        {mail({"bob"}, "b", "tab\tit"), "a subject holds no control characters."},
        {mail({"bob"}, "bell\a", "s"), "a message holds no control characters but line breaks."},
        {mail({" ", ""}, "b", "s"), "it has no addressee."},
        {"", "it has no addressee."},
    };
    for (const auto& [payload, reason] : cases) {
        alice->send(in::kSendMail, payload);
        EXPECT_EQ(alice->expect(out::kMailError).payload, refused + reason);
    }
    // At the bounds exactly, and with line breaks as typed, it goes.
    alice->send(in::kSendMail, mail({"bob"}, std::string(48, 'x') + "\r\n", std::string(10, 's')));
    EXPECT_EQ(alice->expect(out::kMailSent).payload, "bob");
    bob->expect(out::kNewMail);
    EXPECT_EQ(inbox(*bob).size(), 1u);
}

TEST_F(MailTest, MailCostsALineLikeAnyMessage) {
    addMembers({"alice", "bob"});
    startServer({"--flood-lines", "2", "--flood-interval", "60"});
    auto alice = member("alice");
    alice->send(in::kSendMail, mail({"bob"}, "1", "s"));
    alice->expect(out::kMailSent);
    alice->send(in::kPrivateMessage, "bob:2");
    alice->expect(out::kPrivateNotice);  // bob is offline
    alice->send(in::kSendMail, mail({"bob"}, "3", "s"));
    EXPECT_EQ(alice->expect(out::kMailError).payload,
              "You are sending messages too fast. Wait a moment, then try again.");
    auto bob = member("bob");
    EXPECT_EQ(inbox(*bob).size(), 1u);
}

}  // namespace
}  // namespace tavren::test
