#include "contacts/BuddyListText.h"

#include <QSet>

#include "contacts/BuddyNames.h"

namespace tavren {

BuddyFolders BuddyListText::parse(const QString& text) {
    BuddyFolders folders;
    QSet<QString> seen;
    for (const QStringView entry : QStringView(text).split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
        const qsizetype dot = entry.indexOf(QLatin1Char('.'));
        QString folder = dot < 0 ? QString() : entry.left(dot).toString();
        const QString name = (dot < 0 ? entry : entry.mid(dot + 1)).toString();
        if (folder.isEmpty()) {
            folder = BuddyNames::defaultFolder();
        }
        if (!BuddyNames::isUserName(name) || !BuddyNames::isFolderName(folder) ||
            seen.contains(name.toLower())) {
            continue;
        }
        seen.insert(name.toLower());
        const int at = findFolder(folders, folder);
        if (at < 0) {
            folders.push_back(BuddyFolder{folder, {name}});
        } else {
            folders[static_cast<std::size_t>(at)].buddies << name;
        }
    }
    return folders;
}

QString BuddyListText::serialise(const BuddyFolders& folders) {
    QString text;
    for (const BuddyFolder& folder : folders) {
        for (const QString& name : folder.buddies) {
            text += folder.name + QLatin1Char('.') + name + QLatin1Char(':');
        }
    }
    return text.isEmpty() ? QStringLiteral(":") : text;
}

BuddyListText::Position BuddyListText::find(const BuddyFolders& folders, const QString& name) {
    for (std::size_t f = 0; f < folders.size(); ++f) {
        const QStringList& buddies = folders[f].buddies;
        for (qsizetype i = 0; i < buddies.size(); ++i) {
            if (buddies[i].compare(name, Qt::CaseInsensitive) == 0) {
                return Position{static_cast<int>(f), static_cast<int>(i)};
            }
        }
    }
    return {};
}

int BuddyListText::findFolder(const BuddyFolders& folders, const QString& name) {
    for (std::size_t f = 0; f < folders.size(); ++f) {
        if (folders[f].name.compare(name, Qt::CaseInsensitive) == 0) {
            return static_cast<int>(f);
        }
    }
    return -1;
}

}  // namespace tavren
