#include "contacts/DataFiles.h"

namespace tavren {

DataFiles::DataFiles(const QString& dataRoot, QObject* parent)
    : QObject(parent),
      away_(dataRoot + QStringLiteral("/away.dat")),
      ignore_(dataRoot + QStringLiteral("/ignore.dat")),
      perform_(dataRoot + QStringLiteral("/perform.dat")) {}

void DataFiles::load() {
    away_.load();
    perform_.load();
    ignore_.load();
}

bool DataFiles::save() const {
    const bool ignoreSaved = ignore_.save();
    const bool awaySaved = away_.save();
    const bool performSaved = perform_.save();
    return ignoreSaved && awaySaved && performSaved;
}

}  // namespace tavren
