#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "config/ColorScheme.h"

namespace tavren {

class Prompter;

// The colour-scheme files in the "schemes" folder under the data root, and the short dialogs
// around them (name, overwrite, delete, refusal of a damaged file), asked through a Prompter.
class SchemeLibrary {
  public:
    explicit SchemeLibrary(const QString& dataRoot);

    QString folder() const { return folder_; }
    // Scheme names (file names without ".tvx"), sorted case-insensitively.
    QStringList names() const;
    bool exists(const QString& name) const;
    // The file's scheme, or nothing when it is missing, unreadable or not 14 colours.
    std::optional<ColorScheme> read(const QString& name) const;
    // Creates the folder when needed and writes the file whole; false when it cannot be written.
    bool write(const QString& name, const ColorScheme& scheme) const;
    bool remove(const QString& name) const;

    // Asks for a name (and whether to overwrite an existing file), then writes the scheme.
    // Returns the name it was saved under, or nothing when the user backed out or it failed.
    std::optional<QString> saveAsking(Prompter& prompter, const ColorScheme& scheme) const;
    // Asks before deleting; true when the file is gone.
    bool removeAsking(Prompter& prompter, const QString& name) const;
    // Reads a scheme the user picked; a damaged file is refused with a message.
    std::optional<ColorScheme> applyAsking(Prompter& prompter, const QString& name) const;

    // A scheme name becomes a file name: path separators and characters that no file system
    // accepts are replaced, so a name can never leave the schemes folder.
    static QString safeName(const QString& name);

  private:
    QString filePath(const QString& name) const;

    QString folder_;
};

}  // namespace tavren
