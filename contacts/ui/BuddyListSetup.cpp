#include "contacts/ui/BuddyListSetup.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QVBoxLayout>

#include "contacts/BuddyList.h"

namespace tavren {

namespace {
const QString kObjectName = QStringLiteral("BuddyListSetup");
}  // namespace

BuddyListSetup::BuddyListSetup(BuddyList& list, QWidget* parent) : QDialog(parent), list_(list) {
    setObjectName(kObjectName);
    setWindowTitle(tr("Buddy List Setup"));

    showOffline_ = new QCheckBox(tr("Show &offline buddies"), this);
    showOffline_->setObjectName(QStringLiteral("showOffline"));
    playSounds_ =
        new QCheckBox(tr("Play a &sound when a buddy comes online or goes offline"), this);
    playSounds_->setObjectName(QStringLiteral("playSounds"));
    notifyOnline_ = new QCheckBox(tr("&Tell me when a buddy comes online"), this);
    notifyOnline_->setObjectName(QStringLiteral("notifyOnline"));

    auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(showOffline_);
    layout->addWidget(playSounds_);
    layout->addWidget(notifyOnline_);
    layout->addStretch(1);
    layout->addWidget(box);

    const BuddyListOptions& options = list_.options();
    showOffline_->setChecked(options.showOffline);
    playSounds_->setChecked(options.playSounds);
    notifyOnline_->setChecked(options.notifyOnline);
    setMinimumWidth(sizeHint().width());
}

BuddyListSetup* BuddyListSetup::open(BuddyList& list, QWidget* parent) {
    auto* dialog = parent == nullptr ? nullptr : parent->findChild<BuddyListSetup*>(kObjectName);
    if (dialog == nullptr) {
        dialog = new BuddyListSetup(list, parent);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
    }
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
    return dialog;
}

void BuddyListSetup::accept() {
    BuddyListOptions options;
    options.showOffline = showOffline_->isChecked();
    options.playSounds = playSounds_->isChecked();
    options.notifyOnline = notifyOnline_->isChecked();
    list_.setOptions(options);
    QDialog::accept();
}

}  // namespace tavren
