#include <gtest/gtest.h>

#include <set>
#include <string>
#include <unordered_set>

#include "core/protocol/Catalogue.h"

namespace tavren::protocol {
namespace {

void ExpectOrderedAndUnique(std::span<const CatalogueEntry> entries) {
    std::set<std::string_view> names;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (i > 0) {
            EXPECT_LT(entries[i - 1].code, entries[i].code) << entries[i].name;
        }
        EXPECT_TRUE(names.insert(entries[i].name).second) << entries[i].name;
        EXPECT_FALSE(entries[i].meaning.empty()) << entries[i].name;
    }
}

TEST(CatalogueTest, EachDirectionListsEveryNamedPairOnceInCodeOrder) {
    ExpectOrderedAndUnique(ServerToClientCatalogue());
    ExpectOrderedAndUnique(ClientToServerCatalogue());
    // Groups 1 and 2 from the server pair by pair: (1, 1..18) and (2, 1..20) without (2, 6).
    EXPECT_EQ(ServerToClientCatalogue().size(), 18u + 19u);
    EXPECT_EQ(ClientToServerCatalogue().size(), 13u + 15u + 1u + 1u + 9u);
}

TEST(CatalogueTest, SamePairMeansDifferentThingsPerDirection) {
    EXPECT_EQ(server_to_client::kAwayMenu, client_to_server::kDirectConnection);
    EXPECT_EQ(FindServerToClient({2, 15})->name, "AwayMenu");
    EXPECT_EQ(FindClientToServer({2, 15})->name, "DirectConnection");
    EXPECT_EQ(FindServerToClient({1, 10})->name, "Ping");
    EXPECT_EQ(FindClientToServer({1, 10})->name, "Pong");
    // Gaps that must stay unrouted.
    EXPECT_EQ(FindServerToClient({2, 6}), nullptr);
    EXPECT_EQ(FindClientToServer({2, 12}), nullptr);
    EXPECT_EQ(FindServerToClient({5, 1}), nullptr);
    EXPECT_EQ(FindServerToClient({1, 19}), nullptr);
}

TEST(CatalogueTest, WholeGroupServerMessages) {
    EXPECT_TRUE(IsServerGroupMessage({3, 0}));
    EXPECT_TRUE(IsServerGroupMessage({4, 999}));
    EXPECT_TRUE(IsServerGroupMessage({6, 1}));
    EXPECT_TRUE(IsServerGroupMessage({7, 1}));
    EXPECT_TRUE(IsServerGroupMessage({7, 16}));
    EXPECT_FALSE(IsServerGroupMessage({7, 17}));
    EXPECT_FALSE(IsServerGroupMessage({7, 0}));
    EXPECT_FALSE(IsServerGroupMessage({5, 1}));
    EXPECT_FALSE(IsServerGroupMessage({2, 7}));
}

TEST(CatalogueTest, CodePairsWorkAsHashKeys) {
    std::unordered_set<CodePair> seen;
    for (const CatalogueEntry& entry : ServerToClientCatalogue()) {
        seen.insert(entry.code);
    }
    EXPECT_EQ(seen.size(), ServerToClientCatalogue().size());
    // Swapped codes are different pairs.
    EXPECT_NE(std::hash<CodePair>{}({1, 2}), std::hash<CodePair>{}({2, 1}));
    EXPECT_TRUE(seen.contains({2, 20}));
    EXPECT_FALSE(seen.contains({20, 2}));
}

}  // namespace
}  // namespace tavren::protocol
