#pragma once

#include <string>
#include <string_view>

#include "server/accounts/Account.h"

namespace tavren::server {

// What the server makes of profile pages: the page of a member who has not written one, and
// the web address a page links to first, which the member search shows as the member's link.
class ProfilePages {
  public:
    // The member's name (a link with the id "nick", which opens a conversation with the member)
    // and the day the account was made.
    static std::string defaultPage(const Account& account);
    // The first "http://" or "https://" address in the page (letter case ignored), up to the
    // first blank, quote or angle bracket; empty when the page has none or it is too long to be
    // a useful link.
    static std::string firstWebLink(std::string_view page);
};

}  // namespace tavren::server
