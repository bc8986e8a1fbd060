#pragma once

#include <QString>
#include <optional>

#include "config/WinColor.h"
#include "render/TextStyle.h"

namespace tavren {

// How a member's own lines look to others: kept by the server and attached to every channel
// line the member sends. The text is
//     name colour ";" text colour ";" bold ";" italic ";" underline ";" size ";" font face
// with decimal 0x00BBGGRR colours, "True"/"False" flags, a size of 1 to 7 and a font family.
// It arrives from other members over the network, so reading it trusts nothing.
struct NicknameFormat {
    static constexpr int MinSize = 1;
    static constexpr int MaxSize = 7;
    static constexpr int DefaultSize = 2;
    static constexpr int MaxFaceLength = 40;

    WinColor nameColor = 0;
    WinColor textColor = 0;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    int size = DefaultSize;
    QString face;

    // The format in `wireText`, or nothing when the text is empty or malformed: a wrong number
    // of fields, a colour that is not a decimal number up to 0xFFFFFF, a flag other than
    // "True"/"False", a size outside 1..7, or a face longer than 40 characters or holding ";",
    // ":" or a control character.
    static std::optional<NicknameFormat> parse(const QString& wireText);
    // Whether `face` may stand in a format (see parse).
    static bool isAcceptableFace(const QString& face);

    QString toText() const;
    // The decoration the message text gets; colours, size and bold travel separately.
    TextStyle textStyle() const;

    bool operator==(const NicknameFormat&) const = default;
};

}  // namespace tavren
