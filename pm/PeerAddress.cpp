#include "pm/PeerAddress.h"

#include "core/protocol/Codecs.h"

namespace tavren {

namespace {

QHostAddress plain(const QHostAddress& address) {
    bool isV4 = false;
    const quint32 v4 = address.toIPv4Address(&isV4);
    if (isV4) {
        return QHostAddress(v4);
    }
    QHostAddress unscoped = address;
    unscoped.setScopeId(QString());
    return unscoped;
}

}  // namespace

QHostAddress PeerAddress::parse(const QString& field) {
    const QString text = field.trimmed();
    if (text.isEmpty()) {
        return {};
    }
    bool isNumber = false;
    const qulonglong number = text.toULongLong(&isNumber);
    if (isNumber) {
        if (number > 0xFFFFFFFFull) {
            return {};
        }
        return QHostAddress(
            QString::fromStdString(protocol::NumberToDottedQuad(static_cast<double>(number))));
    }
    QHostAddress address;
    if (!address.setAddress(text)) {
        return {};
    }
    return plain(address);
}

QString PeerAddress::text(const QHostAddress& address) {
    return plain(address).toString();
}

bool PeerAddress::same(const QHostAddress& from, const QHostAddress& expected) {
    return !from.isNull() && !expected.isNull() && plain(from) == plain(expected);
}

}  // namespace tavren
