#include "holdem/KnownCards.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace tavren::holdem {

namespace {

constexpr int kMinCardsOnLine = 2;

void SetError(std::string* error, std::string text) {
    if (error != nullptr) {
        *error = std::move(text);
    }
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

std::vector<std::string_view> SplitOnBlanks(std::string_view line) {
    std::vector<std::string_view> words;
    std::size_t at = 0;
    while (at < line.size()) {
        while (at < line.size() && IsBlank(line[at])) {
            ++at;
        }
        const std::size_t start = at;
        while (at < line.size() && !IsBlank(line[at])) {
            ++at;
        }
        if (at > start) {
            words.push_back(line.substr(start, at - start));
        }
    }
    return words;
}

// A card number written in plain decimal digits and inside 1..52; anything else is refused.
std::optional<int> ParseCardNumber(std::string_view word) {
    int value = 0;
    const char* end = word.data() + word.size();
    const auto [stop, problem] = std::from_chars(word.data(), end, value);
    if (problem != std::errc() || stop != end || word.front() == '-' || !IsCardNumber(value)) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

bool KnownCards::add(int card, std::string* error) {
    if (card == kNoCard) {
        return true;
    }
    if (!IsCardNumber(card)) {
        SetError(error, "bad card " + std::to_string(card) + " (cards are 1..52)");
        return false;
    }
    const auto known = cards();
    if (std::find(known.begin(), known.end(), card) != known.end()) {
        SetError(error, "card " + std::to_string(card) + " is given twice");
        return false;
    }
    if (count_ == kMaxCards) {
        SetError(error, "more than 7 cards");
        return false;
    }
    cards_[static_cast<std::size_t>(count_++)] = card;
    hand_ += HandOf(card);
    return true;
}

std::optional<KnownCards> KnownCards::from(std::span<const int> cards, std::string* error) {
    KnownCards known;
    for (int card : cards) {
        if (!known.add(card, error)) {
            return std::nullopt;
        }
    }
    return known;
}

std::optional<KnownCards> KnownCards::parse(std::string_view line, std::string* error) {
    KnownCards known;
    const std::vector<std::string_view> words = SplitOnBlanks(line);
    for (std::string_view word : words) {
        const std::optional<int> card = ParseCardNumber(word);
        if (!card) {
            SetError(error, "bad card \"" + std::string(word) + "\" (cards are 1..52)");
            return std::nullopt;
        }
        if (!known.add(*card, error)) {
            return std::nullopt;
        }
    }
    if (known.count_ < kMinCardsOnLine) {
        SetError(error, "a hand needs 2 to 7 cards, got " + std::to_string(known.count_));
        return std::nullopt;
    }
    return known;
}

}  // namespace tavren::holdem
