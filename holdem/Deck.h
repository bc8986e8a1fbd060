#pragma once

#include <array>
#include <cstdint>
#include <functional>

namespace tavren::holdem {

// The 52 card numbers in the order they are dealt.
using Deck = std::array<int, 52>;

// A uniformly shuffled deck (Fisher-Yates). `uniformBelow(n)` returns an unbiased number in
// 0..n-1; the server passes a cryptographically secure source so that no player can predict the
// cards, tests pass a seeded one so that hands replay.
Deck ShuffledDeck(const std::function<std::uint32_t(std::uint32_t)>& uniformBelow);

// The cards 1..52 in order; a start for tests that stack the deck.
Deck OrderedDeck();

// True when every card 1..52 appears exactly once.
bool IsFullDeck(const Deck& deck);

}  // namespace tavren::holdem
