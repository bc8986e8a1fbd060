#include "core/HelpPages.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTextDocumentFragment>
#include <algorithm>

namespace tavren {

HelpPages::HelpPages(const QString& folder) {
    const QDir dir(folder.isEmpty() ? QStringLiteral(":/tavren/help") : folder);
    QStringList files = dir.entryList({QStringLiteral("*.html")}, QDir::Files, QDir::Name);
    for (const QString& file : files) {
        QFile in(dir.filePath(file));
        if (!in.open(QIODevice::ReadOnly)) {
            continue;
        }
        Page page;
        page.name = file.chopped(5);
        page.html = QString::fromUtf8(in.readAll());
        static const QRegularExpression heading(QStringLiteral("<h1>(.*?)</h1>"),
                                                QRegularExpression::DotMatchesEverythingOption);
        const auto match = heading.match(page.html);
        page.title = match.hasMatch()
                         ? QTextDocumentFragment::fromHtml(match.captured(1)).toPlainText()
                         : page.name;
        page.text = QTextDocumentFragment::fromHtml(page.html).toPlainText();
        pages_ << page;
    }
}

int HelpPages::find(const QString& nameOrTitle) const {
    for (int i = 0; i < pages_.size(); ++i) {
        if (pages_[i].name.compare(nameOrTitle, Qt::CaseInsensitive) == 0 ||
            pages_[i].title.compare(nameOrTitle, Qt::CaseInsensitive) == 0) {
            return i;
        }
    }
    return -1;
}

QList<int> HelpPages::search(const QString& query) const {
    const QStringList words = query.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QList<std::pair<int, int>> scored;  // (score, page)
    for (int i = 0; i < pages_.size(); ++i) {
        int score = 0;
        bool all = true;
        for (const QString& word : words) {
            const int inText = int(pages_[i].text.count(word, Qt::CaseInsensitive));
            const int inTitle = int(pages_[i].title.count(word, Qt::CaseInsensitive));
            if (inText == 0) {
                all = false;
                break;
            }
            score += inText + 10 * inTitle;
        }
        if (all) {
            scored << std::make_pair(score, i);
        }
    }
    if (!words.isEmpty()) {
        std::stable_sort(scored.begin(), scored.end(),
                         [](const auto& a, const auto& b) { return a.first > b.first; });
    }
    QList<int> found;
    for (const auto& entry : scored) {
        found << entry.second;
    }
    return found;
}

}  // namespace tavren
