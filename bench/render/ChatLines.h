#pragma once

// A deterministic mix of chat messages as a busy room sees them: mostly plain talk, some with
// smiley codes or emoticons, some with links, a few with both. Shared by the formatter and the
// pane benchmarks.

#include <QRandomGenerator>
#include <QString>
#include <QStringList>

namespace tavren::bench {

inline QStringList ChatMessages(int count) {
    static const QStringList words = {
        "hi",       "hello", "anyone", "here", "from",  "the",    "game",   "last",
        "night",    "was",   "so",     "good", "lol",   "really", "what",   "about",
        "tomorrow", "I",     "think",  "you",  "are",   "right",  "nope",   "maybe",
        "brb",      "back",  "coffee", "time", "ok",    "sure",   "poker",  "table",
        "join",     "me",    "at",     "room", "music", "today",  "thanks", "bye"};
    static const QStringList smileys = {";5",  ";12", ";49", ":-)", ":-(", ";-)",
                                        ":-D", ";53", ":-P", "=-O", ";1",  "[=)"};
    static const QStringList links = {"www.example.org", "http://example.com/page?id=7",
                                      "https://tavren.example/news", "WWW.Example.net/x",
                                      "mailto:someone@example.org"};
    QRandomGenerator random(2024);
    QStringList messages;
    for (int i = 0; i < count; ++i) {
        const int length = 2 + int(random.bounded(18));
        const bool withSmiley = random.bounded(100) < 35;
        const bool withLink = random.bounded(100) < 12;
        QStringList parts;
        for (int w = 0; w < length; ++w) {
            parts << words.at(random.bounded(words.size()));
        }
        if (withSmiley) {
            parts.insert(random.bounded(parts.size() + 1),
                         smileys.at(random.bounded(smileys.size())));
        }
        if (withLink) {
            parts.insert(random.bounded(parts.size() + 1), links.at(random.bounded(links.size())));
        }
        messages << parts.join(' ');
    }
    return messages;
}

}  // namespace tavren::bench
