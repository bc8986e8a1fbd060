#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "holdem/Hand.h"

namespace tavren::holdem {

// The cards one player is known to hold: the hole cards and the community cards shown so far,
// checked once so that evaluation can trust them. Card numbers come from the network and from
// users, so nothing here assumes they are sane.
class KnownCards {
  public:
    static constexpr int kMaxCards = 7;

    // Card numbers 1..52, 0 meaning not shown (skipped); fails on any other number, a card given
    // twice, or more than seven cards. On failure `error`, when given, says why.
    static std::optional<KnownCards> from(std::span<const int> cards, std::string* error = nullptr);

    // A line of whitespace-separated card numbers, two to seven of 1..52, as typed by a user.
    static std::optional<KnownCards> parse(std::string_view line, std::string* error = nullptr);

    std::span<const int> cards() const { return {cards_.data(), static_cast<std::size_t>(count_)}; }
    const Hand& hand() const { return hand_; }

  private:
    KnownCards() = default;
    bool add(int card, std::string* error);

    std::array<int, kMaxCards> cards_{};
    int count_ = 0;
    Hand hand_;
};

}  // namespace tavren::holdem
