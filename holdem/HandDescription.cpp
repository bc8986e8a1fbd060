#include "holdem/HandDescription.h"

#include "holdem/Cards.h"
#include "holdem/HandEvaluator.h"

namespace tavren::holdem {

namespace {

std::string SuitOfHighestCard(int rank, std::span<const int> cards) {
    for (int card : cards) {
        if (IsCardNumber(card) && HighRankOfCard(card) == rank) {
            return SuitofCard(card);
        }
    }
    return {};
}

}  // namespace

std::string DescribeHand(HandValue value, std::span<const int> cards) {
    const int first = value.rank(0);
    const int second = value.rank(1);
    switch (value.category()) {
        case HandCategory::StraightFlush:
            if (first == kAceHigh) {
                return "Royal Flush!";
            }
            return "Straight Flush " + CardDesc1(first) + " High";
        case HandCategory::FourOfAKind:
            return "Four of a kind - " + CardDesc(first);
        case HandCategory::FullHouse:
            // "FullHouse" is one word in every table client's display; keep it so.
            return "FullHouse - " + CardDesc(first) + " Full of " + CardDesc(second);
        case HandCategory::Flush:
            return "Flush - " + CardDesc1(first) + " High";
        case HandCategory::Straight:
            return "Straight " + CardDesc1(first) + " High";
        case HandCategory::ThreeOfAKind:
            return "3 of a kind - " + CardDesc(first);
        case HandCategory::TwoPairs:
            return "2 Pairs - " + CardDesc(first) + " and " + CardDesc(second);
        case HandCategory::OnePair:
            return "Pair of " + CardDesc(first);
        case HandCategory::HighCard:
            return "High Card - " + CardDesc1(first) + " of " + SuitOfHighestCard(first, cards);
        case HandCategory::None:
            break;
    }
    return {};
}

ShownHand BestHand(const KnownCards& cards) {
    static const HandEvaluator evaluator;
    const HandValue value = evaluator.evaluate(cards.hand());
    return {DescribeHand(value, cards.cards()), value};
}

std::optional<ShownHand> BestHand(std::span<const int> cards) {
    const std::optional<KnownCards> known = KnownCards::from(cards);
    if (!known) {
        return std::nullopt;
    }
    return BestHand(*known);
}

}  // namespace tavren::holdem
