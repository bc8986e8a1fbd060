#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace tavren {

// What installing the bundled smileys and sounds did. Installing never throws: a read-only or
// full disk shows up here as failures, for the caller to show or log.
struct AssetInstallReport {
    struct Failure {
        QString relativePath;  // "smiles/101.gif", or a folder such as "sounds/"
        QString reason;        // the system's description of the error
    };

    QStringList written;  // relative to the data root, in the order they were written
    QList<Failure> failures;
    bool customSmileys = false;  // "smiles/" holds the user's own set and was left alone

    bool ok() const { return failures.isEmpty(); }
    // One line for a message box or the error log, empty when nothing failed.
    QString failureSummary() const;
};

}  // namespace tavren
