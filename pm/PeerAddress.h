#pragma once

#include <QHostAddress>
#include <QString>

namespace tavren {

// The other member's address as the server relays it in the fourth field of (2, 17). Our server
// sends it as text (dotted IPv4, or IPv6); a server that sends an IPv4 address as one 32-bit
// decimal number is understood too (read as NumberToDottedQuad reads it).
class PeerAddress {
  public:
    // A null address when the field holds neither.
    static QHostAddress parse(const QString& field);
    // Whether a connection from `from` comes from `expected`: an IPv4-mapped IPv6 address counts
    // as the IPv4 address it carries, and a scope does not matter.
    static bool same(const QHostAddress& from, const QHostAddress& expected);
    // How an address is shown to the member: an IPv4-mapped IPv6 address as the IPv4 address.
    static QString text(const QHostAddress& address);
};

}  // namespace tavren
