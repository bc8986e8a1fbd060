#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "server/accounts/Account.h"

namespace tavren::server {

// Where accounts live. The server talks to this interface only, so a shared database can take
// the embedded one's place when several servers serve one community. Implementations throw
// StorageError when the storage itself fails; a missing account is not an error.
class AccountStore {
  public:
    virtual ~AccountStore() = default;

    // Names are compared without regard to case.
    virtual std::optional<Account> findByName(std::string_view name) = 0;
    // Adds the account (its id and creation time are assigned here). Returns false, and changes
    // nothing, when the name is already taken in any spelling.
    virtual bool create(Account& account) = 0;
    virtual void setPasswordHash(std::int64_t accountId, const std::string& passwordHash) = 0;
    virtual void setEmail(std::int64_t accountId, const std::string& email) = 0;
    virtual void setNicknameFormat(std::int64_t accountId, const std::string& format) = 0;
};

}  // namespace tavren::server
