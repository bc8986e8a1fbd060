#include "server/contacts/ProfilePages.h"

#include <ctime>

#include "server/base/AsciiText.h"

namespace tavren::server {

namespace {

constexpr std::size_t kLongestLink = 300;

std::string dayOf(std::int64_t unixSeconds) {
    const auto when = static_cast<std::time_t>(unixSeconds);
    std::tm utc{};
    gmtime_r(&when, &utc);
    char text[16];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%d", &utc);
    return std::string(text, length);
}

bool endsLink(char c) {
    return static_cast<unsigned char>(c) <= ' ' || c == '"' || c == '\'' || c == '<' || c == '>';
}

}  // namespace

std::string ProfilePages::defaultPage(const Account& account) {
    // Names hold letters, digits, "_", "-" and "." only, so they go into the markup as they are.
    return "<table border='0' cellpadding='6' cellspacing='0' width='100%'>"
           "<tr><td bgcolor='#DADADA'><font face='Verdana' size='4'><b><a id='nick' href='#nick'>" +
           account.name +
           "</a></b></font></td></tr>"
           "<tr><td><font face='Verdana' size='2'>Member since " +
           dayOf(account.createdAt) + ".<br><br>" + account.name +
           " has not written a profile yet.</font></td></tr></table>";
}

std::string ProfilePages::firstWebLink(std::string_view page) {
    const std::string lower = AsciiText::lower(page);
    std::size_t start = std::string::npos;
    for (const std::string_view scheme : {"http://", "https://"}) {
        const std::size_t found = lower.find(scheme);
        if (found != std::string::npos && (start == std::string::npos || found < start)) {
            start = found;
        }
    }
    if (start == std::string::npos) {
        return {};
    }
    std::size_t end = start;
    while (end < page.size() && !endsLink(page[end])) {
        ++end;
    }
    const std::size_t schemeLength = lower.compare(start, 8, "https://") == 0 ? 8 : 7;
    if (end - start <= schemeLength || end - start > kLongestLink) {
        return {};
    }
    return std::string(page.substr(start, end - start));
}

}  // namespace tavren::server
