#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>

namespace tavren {

// The ignored members of "ignore.dat": one name per line after an apostrophe. Names compare
// without regard to letter case, as member names do everywhere in the client.
class IgnoreList : public QObject {
    Q_OBJECT

  public:
    explicit IgnoreList(const QString& filePath, QObject* parent = nullptr);

    const QStringList& names() const { return names_; }
    bool contains(const QString& name) const;
    // Replaces the list in memory (nothing is written); emits changed().
    void setNames(const QStringList& names);
    // False when the name is empty or already listed.
    bool add(const QString& name);
    // False when the name was not listed.
    bool remove(const QString& name);

    void load();
    bool save() const;

    // The name as it would be listed, or nothing when it is empty or already among `names`.
    static std::optional<QString> admissible(const QString& name, const QStringList& names);
    // One line of the file as a name; nothing for a line too short to hold one.
    static std::optional<QString> parseLine(const QString& line);

    QString filePath() const { return filePath_; }

  signals:
    void changed();

  private:
    QString filePath_;
    QStringList names_;
};

}  // namespace tavren
