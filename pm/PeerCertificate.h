#pragma once

#include <QSslCertificate>
#include <QSslKey>
#include <QString>
#include <memory>

namespace tavren {

// The throwaway certificate one side of a direct connection presents: a fresh key made for one
// connection attempt and never written anywhere. Nobody vouches for it; the other member's client
// recognises it by the fingerprint the chat server relayed for this member.
//
// A new one per attempt rather than one per run: a key that lives for a single connection is
// worth nothing once that connection is over, and making one takes well under a millisecond.
class PeerCertificate {
  public:
    // A new key and certificate; null when this computer cannot do TLS (no OpenSSL for Qt).
    static std::shared_ptr<const PeerCertificate> make();

    const QSslCertificate& certificate() const { return certificate_; }
    const QSslKey& key() const { return key_; }
    // SHA-256 of the certificate, "AB:CD:…" (95 characters).
    const QString& fingerprint() const { return fingerprint_; }

    static QString fingerprintOf(const QSslCertificate& certificate);
    // Exactly a fingerprint as clients announce it: 32 upper-case hex pairs joined by ":".
    static bool isFingerprint(const QString& text);

  private:
    QSslCertificate certificate_;
    QSslKey key_;
    QString fingerprint_;
};

}  // namespace tavren
