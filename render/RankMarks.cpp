#include "render/RankMarks.h"

namespace tavren {

QString StripRankMarks(const QString& name) {
    QString plain = name;
    plain.remove(QChar(0x00B9));  // ¹
    plain.remove(QChar(0x00B2));  // ²
    plain.remove(QChar(0x00B3));  // ³
    plain.remove(QLatin1Char('@'));
    return plain;
}

}  // namespace tavren
