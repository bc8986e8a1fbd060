#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace tavren {

// The client's one crossing between Unicode text and payload bytes. Payloads are Windows-1252,
// one byte per character; every byte survives a round trip, so the separators ":", ";", U+0001
// and U+0002 reach the feature code as the sender wrote them.
class WireText {
  public:
    static std::string toWire(const QString& text);
    static QString fromWire(std::string_view bytes);
    // True when every character of `text` has a byte of its own on the wire. The others would
    // arrive as "?", so two passwords that differ only there would be one and the same.
    static bool fitsWire(const QString& text);
    // The text of a refusal naming the first character that does not fit, for a field such as
    // "password"; empty when everything fits.
    static QString refusalForWire(const QString& text, const QString& field);
};

}  // namespace tavren
