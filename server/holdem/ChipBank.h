#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavren::server {

// Where a member's chips live when they are not on a table: the member's score is the bank. A
// seat's chips are a stake taken out of the bank and written down per table, so that chips on a
// table survive the server stopping: at the next start every stake goes back to its bank. Each
// move is one transaction, so the banks plus the stakes never change in sum except by a grant.
// Implementations throw StorageError when the storage fails.
class ChipBank {
  public:
    virtual ~ChipBank() = default;

    // The member's bank; nothing for a name with no account.
    virtual std::optional<std::int64_t> balance(std::string_view name) = 0;
    // Raises the bank to `chips` when it holds less (the stake a member is given to play with).
    virtual void grantUpTo(std::string_view name, std::int64_t chips) = 0;
    // Moves chips from the bank to a stake at the table. False, moving nothing, when the bank
    // holds fewer chips or the member has a stake there already.
    virtual bool buyIn(std::string_view name, std::string_view table, std::int64_t chips) = 0;
    // Writes down what the seats hold at the end of a hand: {name, chips} per seated member.
    virtual void setStakes(std::string_view table,
                           const std::vector<std::pair<std::string, std::int64_t>>& stakes) = 0;
    // The seat's chips go back to the bank and its stake is closed.
    virtual void cashOut(std::string_view name, std::string_view table, std::int64_t chips) = 0;
    // Every stake still open goes back to its bank (at start-up: tables do not outlive a stop).
    virtual void returnAllStakes() = 0;
};

}  // namespace tavren::server
