#pragma once

#include <QString>
#include <QStringList>

namespace tavren {

// Reading and writing the client's small line-per-entry data files. Text is UTF-8; a file that
// is not valid UTF-8 (one left by an older client in the Windows code page) is read as Latin-1
// so no byte is lost or turned into a replacement mark.
class LineFile {
  public:
    // Far beyond any real list; the rest of a larger file is not read.
    static constexpr qint64 LargestFile = 1 << 20;

    // The file's lines without their line breaks (LF or CR LF); empty for a missing file.
    static QStringList readLines(const QString& path);
    // Writes the lines whole, each followed by a line break, replacing the file only once the
    // new text is safely on disk. False when the file could not be written.
    static bool writeLines(const QString& path, const QStringList& lines);
    // An entry must stay on its own line: line breaks inside it become spaces.
    static QString oneLine(const QString& text);
};

}  // namespace tavren
