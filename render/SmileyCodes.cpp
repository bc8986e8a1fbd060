#include "render/SmileyCodes.h"

namespace tavren {

const std::array<SmileyCodes::Emoticon, SmileyCodes::EmoticonCount>& SmileyCodes::emoticons() {
    static const std::array<Emoticon, EmoticonCount> table{{
        {QLatin1String(":-)"), 49},
        {QLatin1String("=-o"), 47},
        {QLatin1String("=-O"), 47},
        {QLatin1String(":-\\"), 39},
        {QLatin1String(":-("), 38},
        {QLatin1String(":-*"), 28},
        {QLatin1String(";-)"), 53},
        {QLatin1String("[=)"), 43},
        {QLatin1String(":-x"), 31},
        {QLatin1String(":-X"), 31},
        {QLatin1String(":-p"), 50},
        {QLatin1String(":-P"), 50},
        {QLatin1String("o:-)"), 52},
        {QLatin1String("O:-)"), 52},
        {QLatin1String(":-d"), 24},
        {QLatin1String(":-D"), 24},
    }};
    return table;
}

QString SmileyCodes::numberedCode(int number) {
    return QLatin1Char(';') + QString::number(number);
}

QString SmileyCodes::fileName(int number) {
    return QStringLiteral("1%1.gif").arg(number, 2, 10, QLatin1Char('0'));
}

QString SmileyCodes::emoticonFor(int number) {
    for (const Emoticon& emoticon : emoticons()) {
        // The two four-character halo codes never survive the smile substituted before them.
        if (emoticon.number == number && emoticon.code.size() == 3) {
            return emoticon.code;
        }
    }
    return {};
}

}  // namespace tavren
