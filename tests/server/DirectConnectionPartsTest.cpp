// The parts of the direct-connection relay that need no network: the address the peer is given
// and the arguments that are relayed.
#include <gtest/gtest.h>

#include "server/contacts/DirectConnectionRequests.h"
#include "server/contacts/RequesterAddress.h"

namespace tavren::server {
namespace {

TEST(DirectConnectionPartsTest, ThePeerGetsThePlainAddressWithoutPortBracketsOrZone) {
    EXPECT_EQ(RequesterAddress::fromPeer("192.0.2.7:51000"), "192.0.2.7");
    EXPECT_EQ(RequesterAddress::fromPeer("::ffff:192.0.2.7:51000"), "192.0.2.7");
    EXPECT_EQ(RequesterAddress::fromPeer("2001:db8::7:51000"), "2001:db8::7");
    EXPECT_EQ(RequesterAddress::fromPeer("[2001:db8::7]:51000"), "2001:db8::7");
    EXPECT_EQ(RequesterAddress::fromPeer("fe80::1%eth0:51000"), "fe80::1");
    EXPECT_EQ(RequesterAddress::fromPeer("::1:5"), "::1");
    EXPECT_EQ(RequesterAddress::fromPeer("a test's peer"), "");
    EXPECT_EQ(RequesterAddress::fromPeer(""), "");
}

TEST(DirectConnectionPartsTest, ArgumentsAreRelayedOnlyInAFormThePeerCanSplit) {
    const auto relayed = DirectConnectionRequests::relayedArgument;
    EXPECT_EQ(relayed('1', "2000"), "2000");
    EXPECT_EQ(relayed('1', "0"), "0");
    EXPECT_EQ(relayed('5', "65535"), "65535");
    EXPECT_EQ(relayed('5', "00080"), "80");
    EXPECT_FALSE(relayed('1', "65536"));
    EXPECT_FALSE(relayed('1', "123456"));
    EXPECT_FALSE(relayed('1', "+1"));
    EXPECT_FALSE(relayed('5', ""));
    EXPECT_EQ(relayed('2', "anything"), "0");
    EXPECT_EQ(relayed('4', ""), "0");
    EXPECT_EQ(relayed('3', "a:b\x7f"), "a.b?");
    EXPECT_EQ(relayed('3', std::string(500, 'x'))->size(), DirectConnectionRequests::kMaxReason);
    EXPECT_FALSE(relayed('0', "0"));
    EXPECT_FALSE(relayed('7', "0"));

    // A certificate's fingerprint exactly as clients write it, nothing looser: the peer compares
    // it character for character.
    const std::string fingerprint =
        "AB:CD:EF:01:23:45:67:89:AB:CD:EF:01:23:45:67:89:AB:CD:EF:01:23:45:67:89:AB:CD:EF:01:23:45:"
        "67:89";
    EXPECT_EQ(relayed('6', fingerprint), fingerprint);
    EXPECT_FALSE(relayed('6', "0"));
    EXPECT_FALSE(relayed('6', ""));
    EXPECT_FALSE(relayed('6', "ab" + fingerprint.substr(2)));
    EXPECT_FALSE(relayed('6', fingerprint.substr(3)));
    EXPECT_FALSE(relayed('6', fingerprint + ":00"));
    EXPECT_FALSE(relayed('6', "ABCDEF0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF0123456789"));
    EXPECT_FALSE(relayed('6', fingerprint.substr(0, 94) + "G"));
}

}  // namespace
}  // namespace tavren::server
