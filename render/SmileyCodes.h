#pragma once

#include <QLatin1String>
#include <QString>
#include <array>

namespace tavren {

// The codes a typed line can carry for a smiley picture. The pictures are numbered 1 to 53 and
// live in the data root's "smiles" folder as 101.gif .. 153.gif. Each number is typed as ";"
// followed by it (";5", ";49"); a few pictures can also be typed as the emoticon they show.
class SmileyCodes {
  public:
    static constexpr int First = 1;
    static constexpr int Last = 53;
    static constexpr int Count = Last - First + 1;

    struct Emoticon {
        QLatin1String code;
        int number;
    };
    static constexpr std::size_t EmoticonCount = 16;

    // The emoticons in the order lines substitute them. ":-)" comes before "o:-)" and "O:-)",
    // so those two never survive to be matched: "o:-)" reads as "o" and a smile.
    static const std::array<Emoticon, EmoticonCount>& emoticons();

    // ";" + number, e.g. ";5".
    static QString numberedCode(int number);
    // "1" + two-digit number + ".gif", e.g. "105.gif".
    static QString fileName(int number);
    // The emoticon that really brings up the picture, or empty when none does.
    static QString emoticonFor(int number);
};

}  // namespace tavren
