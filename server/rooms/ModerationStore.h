#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavren::server {

// Who imposed a ban or suspension, when, and why.
struct Sanction {
    std::string by;  // the staff member or host, spelled as their account
    std::string reason;
    std::int64_t at = 0;  // seconds since the Unix epoch
};

// One entry of a list of bans: an account's name or an address range, with the sanction.
struct ListedSanction {
    std::string target;  // the member's name, or the range ("203.0.113.0/24")
    std::string member;  // for a range: the member whose address it was taken from
    Sanction sanction;
};

// A member who came through somebody else: the first invitation the member accepted.
struct Referral {
    std::string referrer;
    std::string channel;
    std::int64_t at = 0;
};

// Everything moderation keeps between restarts: bans from one channel, bans from every channel,
// suspended accounts, banned address ranges, and who brought whom. An interface like the other
// stores, so that a shared database can take the embedded one's place; implementations throw
// StorageError when the storage itself fails. Setting a sanction that exists replaces it.
// Lists come in the order the sanctions were imposed, at most `limit` entries.
class ModerationStore {
  public:
    virtual ~ModerationStore() = default;

    virtual std::optional<Sanction> channelBan(std::int64_t channelId, std::int64_t accountId) = 0;
    virtual void setChannelBan(std::int64_t channelId, std::int64_t accountId,
                               const Sanction& sanction) = 0;
    virtual bool liftChannelBan(std::int64_t channelId, std::int64_t accountId) = 0;
    virtual std::vector<ListedSanction> channelBans(std::int64_t channelId, std::size_t limit) = 0;

    virtual std::optional<Sanction> accountBan(std::int64_t accountId) = 0;
    virtual void setAccountBan(std::int64_t accountId, const Sanction& sanction) = 0;
    virtual bool liftAccountBan(std::int64_t accountId) = 0;
    virtual std::vector<ListedSanction> accountBans(std::size_t limit) = 0;

    virtual std::optional<Sanction> suspension(std::int64_t accountId) = 0;
    virtual void setSuspension(std::int64_t accountId, const Sanction& sanction) = 0;
    virtual bool liftSuspension(std::int64_t accountId) = 0;
    virtual std::vector<ListedSanction> suspensions(std::size_t limit) = 0;

    // Ranges are few and checked at every login, so they are read whole once and kept.
    virtual void setRangeBan(const std::string& range, const std::string& member,
                             const Sanction& sanction) = 0;
    virtual bool liftRangeBan(const std::string& range) = 0;
    virtual std::vector<ListedSanction> rangeBans() = 0;

    // Keeps the referral unless the member was referred before; false then.
    virtual bool addReferral(std::int64_t referredId, std::int64_t referrerId,
                             const std::string& channel, std::int64_t at) = 0;
    virtual std::optional<Referral> referrerOf(std::int64_t accountId) = 0;
    // The members this one referred, in the order they came, and how many there are in all.
    virtual std::vector<std::string> referredBy(std::int64_t accountId, std::size_t limit) = 0;
    virtual std::size_t referralCount(std::int64_t accountId) = 0;
};

}  // namespace tavren::server
