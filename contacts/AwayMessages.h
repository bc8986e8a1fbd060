#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <optional>

namespace tavren {

struct AwayMessage {
    QString name;  // the away menu's caption
    QString text;  // what others are told
    bool operator==(const AwayMessage&) const = default;
};

// The away messages of "away.dat": each line an apostrophe, then name, U+0001, text. A list
// that is empty after reading gets the two stock messages, so the away menu is never bare.
class AwayMessages : public QObject {
    Q_OBJECT

  public:
    explicit AwayMessages(const QString& filePath, QObject* parent = nullptr);

    static QList<AwayMessage> defaults();

    const QList<AwayMessage>& entries() const { return entries_; }
    // Replaces the list in memory (nothing is written); emits changed().
    void setEntries(const QList<AwayMessage>& entries);
    void add(const AwayMessage& message);

    // Reads the file (a missing one is no error); emits changed().
    void load();
    // Writes the whole list; false when the file could not be written.
    bool save() const;

    // One line of the file as an entry; nothing for a line too short to hold one.
    static std::optional<AwayMessage> parseLine(const QString& line);
    static QString formatLine(const AwayMessage& message);

    QString filePath() const { return filePath_; }

  signals:
    void changed();

  private:
    QString filePath_;
    QList<AwayMessage> entries_;
};

}  // namespace tavren
