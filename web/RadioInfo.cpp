#include "web/RadioInfo.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace tavren {

namespace {

constexpr int kLongestText = 120;

QString text(const QJsonObject& object, const char* key) {
    return object.value(QLatin1String(key)).toString().simplified().left(kLongestText);
}

}  // namespace

std::optional<RadioInfo> RadioInfo::parse(const QByteArray& json, const QUrl& stream) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        return std::nullopt;
    }
    const QJsonValue sources = document.object()
                                   .value(QLatin1String("icestats"))
                                   .toObject()
                                   .value(QLatin1String("source"));
    QJsonArray list;
    if (sources.isArray()) {
        list = sources.toArray();
    } else if (sources.isObject()) {
        list.append(sources);
    }
    QJsonObject chosen;
    for (const QJsonValue& entry : list) {
        const QJsonObject source = entry.toObject();
        if (source.isEmpty()) {
            continue;
        }
        const QUrl listen(source.value(QLatin1String("listenurl")).toString());
        if (!stream.path().isEmpty() && listen.path() == stream.path()) {
            chosen = source;
            break;
        }
        if (chosen.isEmpty()) {
            chosen = source;
        }
    }
    if (chosen.isEmpty()) {
        return std::nullopt;
    }
    RadioInfo info;
    info.station = text(chosen, "server_name");
    info.genre = text(chosen, "genre");
    info.title = text(chosen, "title");
    const QString artist = text(chosen, "artist");
    if (!artist.isEmpty() && !info.title.contains(artist)) {
        info.title = info.title.isEmpty() ? artist : artist + QStringLiteral(" - ") + info.title;
    }
    const QJsonValue listeners = chosen.value(QLatin1String("listeners"));
    if (listeners.isDouble() && listeners.toDouble() >= 0 && listeners.toDouble() < 1e9) {
        info.listeners = listeners.toInt();
    }
    return info;
}

QUrl RadioInfo::statusPageOf(const QUrl& stream) {
    QUrl page = stream.adjusted(QUrl::RemoveQuery | QUrl::RemoveFragment | QUrl::RemoveUserInfo);
    page.setPath(QStringLiteral("/status-json.xsl"));
    return page;
}

QString RadioInfo::line() const {
    QString result = station.isEmpty() ? QStringLiteral("Now playing")
                                       : QStringLiteral("Now playing on ") + station;
    result += QStringLiteral(": ") +
              (title.isEmpty() ? QStringLiteral("(the station names no title)") : title);
    if (listeners) {
        result += QStringLiteral(" (%1 listener%2)")
                      .arg(*listeners)
                      .arg(*listeners == 1 ? QString() : QStringLiteral("s"));
    }
    return result;
}

}  // namespace tavren
