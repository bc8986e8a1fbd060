#pragma once

namespace tavren::holdem {

// What a table is made with: its number of seats, the blinds and the buy-in every player brings
// to the seat. No-limit: the blinds also set the smallest bet and the smallest raise.
struct TableRules {
    static constexpr int kMinSeats = 2;
    static constexpr int kMaxSeats = 10;
    // Bounds that keep every sum of a table's chips far inside an int.
    static constexpr int kMaxBigBlind = 1'000'000;
    static constexpr int kMaxBuyIn = 100'000'000;

    int seats = kMaxSeats;
    int smallBlind = 5;
    int bigBlind = 10;
    int buyIn = 1000;

    // 2..10 seats, 0 < small blind <= big blind, and a buy-in of at least two big blinds.
    constexpr bool valid() const {
        return seats >= kMinSeats && seats <= kMaxSeats && smallBlind > 0 &&
               smallBlind <= bigBlind && bigBlind <= kMaxBigBlind && buyIn >= 2 * bigBlind &&
               buyIn <= kMaxBuyIn;
    }
};

}  // namespace tavren::holdem
