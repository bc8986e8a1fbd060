// Profiles and the member search against the real server: pages kept whole up to the bound,
// the page of a member who wrote none, and a search that finds members by the start of a name,
// a whole e-mail address or a profile's text without ever showing an address.
#include <vector>

#include "core/protocol/Fields.h"
#include "server/support/ServerFixture.h"

namespace tavren::test {

namespace {

constexpr protocol::CodePair kWholeResult{6, 1};
constexpr protocol::CodePair kCutResult{6, 2};

class ProfileSearchTest : public ServerFixture {
  protected:
    static std::string view(RawClient& client, const std::string& name) {
        client.send(in::kViewProfile, name);
        return client.expect(out::kProfile).payload;
    }
    static std::vector<std::vector<std::string>> search(RawClient& client, const std::string& field,
                                                        const std::string& text,
                                                        protocol::CodePair answer = kWholeResult) {
        client.send(in::kMemberSearch, field + "\x01" + text);
        return protocol::SplitRecords(client.expect(answer).payload);
    }
    static std::vector<std::string> names(const std::vector<std::vector<std::string>>& records) {
        std::vector<std::string> found;
        for (const auto& record : records) {
            found.push_back(record.at(0));
        }
        return found;
    }
};

TEST_F(ProfileSearchTest, ProfilesAreKeptWholeUpToTheBound) {
    addMembers({"alice", "Bob"});
    startServer();
    auto alice = member("alice");
    auto bob = member("bob");

    // Nobody has written one yet: a page made by the server, with the name to click.
    const std::string fresh = view(*alice, "BOB");
    EXPECT_EQ(fresh.rfind("Bob:", 0), 0u) << fresh;
    EXPECT_NE(fresh.find("<a id='nick' href='#nick'>Bob</a>"), std::string::npos) << fresh;
    EXPECT_NE(fresh.find("Bob has not written a profile yet."), std::string::npos);

    // Every ":" of the page comes back; only the first one separates the name.
    const std::string page = "<b>Time:</b> 10:30<br>Site: <a href='https://bob.example/x'>me</a>";
    bob->send(in::kUpdateProfile, page);
    EXPECT_EQ(view(*alice, "bob"), "Bob:" + page);

    // 10000 characters are kept; 10001 are refused and the page stays as it was.
    const std::string longest(10000, 'p');
    bob->send(in::kUpdateProfile, longest);
    EXPECT_EQ(view(*bob, "Bob"), "Bob:" + longest);
    bob->send(in::kUpdateProfile, longest + "p");
    EXPECT_EQ(bob->expect(kNotice).payload,
              "Your profile was not saved: a profile holds at most 10000 characters.");
    EXPECT_EQ(view(*alice, "bob"), "Bob:" + longest);

    // The empty page gives the member the server's page back.
    bob->send(in::kUpdateProfile, "");
    EXPECT_EQ(view(*alice, "bob"), fresh);

    // Names that are nobody's.
    for (const char* name : {"nobody", "", "a:b", "x\x01y"}) {
        alice->send(in::kViewProfile, name);
        EXPECT_EQ(alice->expect(kNotice).payload.rfind("There is no member called ", 0), 0u)
            << name;
    }
}

TEST_F(ProfileSearchTest, SearchFindsByNamePrefixWholeAddressAndProfileText) {
    addAccount("alice", "secret1", {"--email", "Alice@Example.org"});
    addAccount("Alfred", "secret1", {"--email", "alfred@example.org"});
    addAccount("al_x", "secret1");
    addAccount("alyx", "secret1");
    addAccount("bob", "secret1", {"--email", "bob@example.org"});
    startServer();
    auto bob = member("bob");
    auto alice = member("alice");
    alice->send(in::kJoinRoom, "General");
    alice->expect(out::kJoinedRoom);
    alice->ignore(out::kMemberList);
    alice->send(in::kUpdateProfile, "I like <i>chess</i>. See http://alice.example/home.");

    // The start of a name, without regard to case, in name order; "_" is a letter, not a
    // wildcard.
    EXPECT_EQ(names(search(*bob, "Name", "AL")),
              (std::vector<std::string>{"al_x", "Alfred", "alice", "alyx"}));
    EXPECT_EQ(names(search(*bob, "name", "al_")), (std::vector<std::string>{"al_x"}));
    EXPECT_EQ(names(search(*bob, "Name", "%")), std::vector<std::string>{});

    // Each record: name, presence, first channel, member since, own profile, link; never an
    // e-mail address.
    const auto found = search(*bob, "Name", "alice");
    ASSERT_EQ(found.size(), 1u);
    ASSERT_EQ(found[0].size(), 6u);
    EXPECT_EQ(found[0][1], "Online");
    EXPECT_EQ(found[0][2], "General");
    EXPECT_EQ(found[0][3].size(), 10u) << found[0][3];
    EXPECT_EQ(found[0][4], "Yes");
    EXPECT_EQ(found[0][5], "http://alice.example/home.");
    const auto alfred = search(*bob, "Name", "alf");
    ASSERT_EQ(alfred.size(), 1u);
    EXPECT_EQ(alfred[0][1], "Offline");
    EXPECT_EQ(alfred[0][2], "");
    EXPECT_EQ(alfred[0][4], "No");
    EXPECT_EQ(alfred[0][5], "");
    for (const auto& record : search(*bob, "Name", "a")) {
        for (const std::string& field : record) {
            EXPECT_EQ(field.find('@'), std::string::npos) << field;
        }
    }

    // A whole address finds its member in any letter case; a part of one finds nobody.
    EXPECT_EQ(names(search(*bob, "Email", "alice@example.org")),
              (std::vector<std::string>{"alice"}));
    EXPECT_EQ(names(search(*bob, "Email", " ALFRED@EXAMPLE.ORG ")),
              (std::vector<std::string>{"Alfred"}));
    for (const char* part :
         {"alice@", "alice@example", "a", "example.org", "%", "alice@example.or_"}) {
        EXPECT_TRUE(search(*bob, "Email", part).empty()) << part;
    }

    // Profile text, without regard to case.
    EXPECT_EQ(names(search(*bob, "Profile", "CHESS")), (std::vector<std::string>{"alice"}));
    EXPECT_TRUE(search(*bob, "Profile", "checkers").empty());

    // No result, an unknown field, an empty text: a whole answer with no record.
    EXPECT_TRUE(search(*bob, "Name", "zz").empty());
    EXPECT_TRUE(search(*bob, "Password", "a").empty());
    EXPECT_TRUE(search(*bob, "Name", "").empty());
    EXPECT_TRUE(search(*bob, "", "").empty());
}

TEST_F(ProfileSearchTest, ALargeResultIsCutAtTheBoundAndSaysSo) {
    addMembers({"m1", "m2", "m3", "m4", "bob"});
    startServer({"--max-search-results", "3"});
    auto bob = member("bob");
    EXPECT_EQ(names(search(*bob, "Name", "M", kCutResult)),
              (std::vector<std::string>{"m1", "m2", "m3"}));
    EXPECT_EQ(names(search(*bob, "Name", "m4")), (std::vector<std::string>{"m4"}));
}

}  // namespace
}  // namespace tavren::test
