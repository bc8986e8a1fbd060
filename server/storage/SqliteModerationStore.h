#pragma once

#include "server/rooms/ModerationStore.h"

namespace tavren::server {

class SqliteDatabase;

// Bans, suspensions, banned ranges and referrals in the embedded SQLite database. Bans name
// accounts by id, so a list always reads back in the accounts' own spelling, and a channel's bans
// go with the channel when it expires.
class SqliteModerationStore : public ModerationStore {
  public:
    explicit SqliteModerationStore(SqliteDatabase& db) : db_(db) {}

    std::optional<Sanction> channelBan(std::int64_t channelId, std::int64_t accountId) override;
    void setChannelBan(std::int64_t channelId, std::int64_t accountId,
                       const Sanction& sanction) override;
    bool liftChannelBan(std::int64_t channelId, std::int64_t accountId) override;
    std::vector<ListedSanction> channelBans(std::int64_t channelId, std::size_t limit) override;

    std::optional<Sanction> accountBan(std::int64_t accountId) override;
    void setAccountBan(std::int64_t accountId, const Sanction& sanction) override;
    bool liftAccountBan(std::int64_t accountId) override;
    std::vector<ListedSanction> accountBans(std::size_t limit) override;

    std::optional<Sanction> suspension(std::int64_t accountId) override;
    void setSuspension(std::int64_t accountId, const Sanction& sanction) override;
    bool liftSuspension(std::int64_t accountId) override;
    std::vector<ListedSanction> suspensions(std::size_t limit) override;

    void setRangeBan(const std::string& range, const std::string& member,
                     const Sanction& sanction) override;
    bool liftRangeBan(const std::string& range) override;
    std::vector<ListedSanction> rangeBans() override;

    bool addReferral(std::int64_t referredId, std::int64_t referrerId, const std::string& channel,
                     std::int64_t at) override;
    std::optional<Referral> referrerOf(std::int64_t accountId) override;
    std::vector<std::string> referredBy(std::int64_t accountId, std::size_t limit) override;
    std::size_t referralCount(std::int64_t accountId) override;

  private:
    // The two account-wide tables (account_bans, suspensions) share their layout.
    std::optional<Sanction> accountSanction(const char* table, std::int64_t accountId);
    void setAccountSanction(const char* table, std::int64_t accountId, const Sanction& sanction);
    bool liftAccountSanction(const char* table, std::int64_t accountId);
    std::vector<ListedSanction> accountSanctions(const char* table, std::size_t limit);

    SqliteDatabase& db_;
};

}  // namespace tavren::server
