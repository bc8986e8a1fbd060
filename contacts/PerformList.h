#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>

namespace tavren {

// The commands of "perform.dat", run after signing on: one text command per line after an
// apostrophe. Only commands beginning with "/" are kept, and a command is kept once however its
// letter case or surrounding blanks differ.
class PerformList : public QObject {
    Q_OBJECT

  public:
    explicit PerformList(const QString& filePath, QObject* parent = nullptr);

    const QStringList& commands() const { return commands_; }
    // Replaces the list in memory (nothing is written); emits changed().
    void setCommands(const QStringList& commands);
    // False when the command does not begin with "/" or is already listed.
    bool add(const QString& command);
    bool contains(const QString& command) const;

    void load();
    bool save() const;

    // The command as it would be listed, or nothing when it does not begin with "/" or is
    // already among `commands`.
    static std::optional<QString> admissible(const QString& command, const QStringList& commands);
    // One line of the file as a command; nothing unless its second character is "/".
    static std::optional<QString> parseLine(const QString& line);

    QString filePath() const { return filePath_; }

  signals:
    void changed();

  private:
    QString filePath_;
    QStringList commands_;
};

}  // namespace tavren
