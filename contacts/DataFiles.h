#pragma once

#include <QObject>
#include <QString>

#include "contacts/AwayMessages.h"
#include "contacts/IgnoreList.h"
#include "contacts/PerformList.h"

namespace tavren {

// The three member lists kept as files in the data root: "away.dat", "ignore.dat" and
// "perform.dat". One object so that start-up reads them together and the settings window
// writes them together.
class DataFiles : public QObject {
    Q_OBJECT

  public:
    explicit DataFiles(const QString& dataRoot, QObject* parent = nullptr);

    AwayMessages& away() { return away_; }
    IgnoreList& ignore() { return ignore_; }
    PerformList& perform() { return perform_; }
    const AwayMessages& away() const { return away_; }
    const IgnoreList& ignore() const { return ignore_; }
    const PerformList& perform() const { return perform_; }

    // Away messages first, then the perform commands, then the ignore list.
    void load();
    // Writes all three, each whole, even if one fails; false when any could not be written.
    bool save() const;

  private:
    AwayMessages away_;
    IgnoreList ignore_;
    PerformList perform_;
};

}  // namespace tavren
