#include "holdem/Deck.h"

#include <utility>

#include "holdem/Cards.h"

namespace tavren::holdem {

Deck OrderedDeck() {
    Deck deck{};
    for (int card = kFirstCard; card <= kLastCard; ++card) {
        deck[static_cast<std::size_t>(card - 1)] = card;
    }
    return deck;
}

Deck ShuffledDeck(const std::function<std::uint32_t(std::uint32_t)>& uniformBelow) {
    Deck deck = OrderedDeck();
    for (std::size_t i = deck.size() - 1; i > 0; --i) {
        const std::size_t j = uniformBelow(static_cast<std::uint32_t>(i + 1)) % (i + 1);
        std::swap(deck[i], deck[j]);
    }
    return deck;
}

bool IsFullDeck(const Deck& deck) {
    std::array<bool, kLastCard + 1> seen{};
    for (int card : deck) {
        if (!IsCardNumber(card) || seen[static_cast<std::size_t>(card)]) {
            return false;
        }
        seen[static_cast<std::size_t>(card)] = true;
    }
    return true;
}

}  // namespace tavren::holdem
