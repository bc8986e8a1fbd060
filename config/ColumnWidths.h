#pragma once

#include <QString>

namespace tavren {

class SettingsStore;

// Column widths of the client's list views, in section "General" under the list's key followed
// by the column number ("Searchcolumn2", "mailcolumn0", ...).
class ColumnWidths {
  public:
    static constexpr const char* Search = "Searchcolumn";
    static constexpr const char* Mail = "mailcolumn";
    static constexpr const char* Table = "tablecolumn";
    static constexpr const char* Join = "Joincolumn";

    // The stored width, or `fallback` when absent or unreadable.
    static int read(const SettingsStore& store, const char* list, int column, int fallback);
    static void write(SettingsStore& store, const char* list, int column, int width);
};

}  // namespace tavren
