#include "contacts/BuddyEditor.h"

#include <algorithm>

#include "contacts/BuddyList.h"
#include "contacts/BuddyListText.h"
#include "contacts/BuddyNames.h"
#include "core/Prompter.h"

namespace tavren {

namespace {

const QString kAddBuddyTitle = QStringLiteral("Add New Buddy");
const QString kAddFolderTitle = QStringLiteral("Add New Folder");
const QString kFolderPrompt = QStringLiteral("Enter folder name:");

}  // namespace

BuddyEditor::BuddyEditor(BuddyList& list, Prompter& prompter, QObject* parent)
    : QObject(parent), list_(list), prompter_(prompter), folders_(list.folders()) {}

void BuddyEditor::reload() {
    folders_ = list_.folders();
    modified_ = false;
    emit changed();
}

void BuddyEditor::touch() {
    modified_ = true;
    emit changed();
}

int BuddyEditor::folderIndex(const QString& name) const {
    return BuddyListText::findFolder(folders_, name);
}

bool BuddyEditor::admitBuddy(const QString& name, const BuddyFolders& folders, Prompter& prompter) {
    if (!BuddyNames::isUserName(name)) {
        prompter.message(QStringLiteral("Invalid Buddy Name: {buddies}"),
                         QStringLiteral("Invalid Buddy Name"), Prompter::Icon::Warning);
        return false;
    }
    if (BuddyListText::find(folders, name).found()) {
        prompter.message(QStringLiteral("A buddy with the user name ") + name +
                             QStringLiteral(" already exists."),
                         QStringLiteral("User Already Exists."), Prompter::Icon::Warning);
        return false;
    }
    return true;
}

bool BuddyEditor::askAndAddTo(BuddyList& list, Prompter& prompter) {
    const auto typed =
        prompter.askText(QStringLiteral("Enter user name:"), kAddBuddyTitle, QString());
    if (!typed || typed->trimmed().isEmpty()) {
        return false;
    }
    const QString name = typed->trimmed();
    if (!admitBuddy(name, list.folders(), prompter)) {
        return false;
    }
    list.addBuddy(name);
    return list.contains(name);
}

bool BuddyEditor::askAndAddBuddy(const QString& folder) {
    const auto typed =
        prompter_.askText(QStringLiteral("Enter user name:"), kAddBuddyTitle, QString());
    if (!typed || typed->trimmed().isEmpty()) {
        return false;
    }
    return addBuddy(typed->trimmed(), folder);
}

bool BuddyEditor::addBuddy(const QString& name, const QString& folder) {
    if (!admitBuddy(name, folders_, prompter_)) {
        return false;
    }
    int target = folderIndex(folder);
    if (target < 0) {
        target = folderIndex(BuddyNames::defaultFolder());
    }
    if (target < 0) {
        folders_.push_back(BuddyFolder{BuddyNames::defaultFolder(), {}});
        target = static_cast<int>(folders_.size()) - 1;
    }
    folders_[static_cast<std::size_t>(target)].buddies << name;
    touch();
    return true;
}

bool BuddyEditor::admitFolder(const QString& name, const QString& except) {
    if (!BuddyNames::isFolderName(name)) {
        prompter_.message(QStringLiteral("A folder name has 1 to %1 characters, none of them "
                                         "\".\", \":\" or \";\".")
                              .arg(BuddyNames::kFolderMaxLength),
                          QStringLiteral("Invalid Folder Name"), Prompter::Icon::Warning);
        return false;
    }
    const int existing = folderIndex(name);
    if (existing >= 0 && folders_[static_cast<std::size_t>(existing)].name != except) {
        prompter_.message(
            QStringLiteral("A folder with the name ") + name + QStringLiteral(" already exists."),
            QStringLiteral("Folder Already Exists."), Prompter::Icon::Warning);
        return false;
    }
    return true;
}

bool BuddyEditor::askAndAddFolder() {
    const auto typed = prompter_.askText(kFolderPrompt, kAddFolderTitle, QString());
    if (!typed || typed->trimmed().isEmpty()) {
        return false;
    }
    return addFolder(typed->trimmed());
}

bool BuddyEditor::addFolder(const QString& name) {
    if (!admitFolder(name, QString())) {
        return false;
    }
    folders_.push_back(BuddyFolder{name, {}});
    touch();
    return true;
}

bool BuddyEditor::askAndRenameFolder(const QString& folder) {
    if (folderIndex(folder) < 0) {
        return false;
    }
    const auto typed = prompter_.askText(kFolderPrompt, QStringLiteral("Rename Folder"), folder);
    if (!typed || typed->trimmed().isEmpty()) {
        return false;
    }
    return renameFolder(folder, typed->trimmed());
}

bool BuddyEditor::renameFolder(const QString& folder, const QString& newName) {
    const int index = folderIndex(folder);
    if (index < 0 || newName == folders_[static_cast<std::size_t>(index)].name) {
        return false;
    }
    // A new spelling of the same name is a rename, not a clash with itself.
    if (!admitFolder(newName, folders_[static_cast<std::size_t>(index)].name)) {
        return false;
    }
    folders_[static_cast<std::size_t>(index)].name = newName;
    touch();
    return true;
}

bool BuddyEditor::removeBuddy(const QString& name) {
    const BuddyListText::Position at = BuddyListText::find(folders_, name);
    if (!at.found()) {
        return false;
    }
    folders_[static_cast<std::size_t>(at.folder)].buddies.removeAt(at.index);
    touch();
    return true;
}

bool BuddyEditor::removeFolder(const QString& folder) {
    const int index = folderIndex(folder);
    if (index < 0) {
        return false;
    }
    const Prompter::Answer answer = prompter_.askYesNo(
        QStringLiteral("Are you sure you want to remove the entire group of buddies?"),
        QStringLiteral("Remove Group?"));
    if (answer != Prompter::Answer::Yes) {
        return false;
    }
    folders_.erase(folders_.begin() + index);
    touch();
    return true;
}

bool BuddyEditor::moveBuddy(const QString& name, const QString& folder, int beforeIndex) {
    const BuddyListText::Position from = BuddyListText::find(folders_, name);
    const int target = folderIndex(folder);
    if (!from.found() || target < 0) {
        return false;
    }
    QStringList& source = folders_[static_cast<std::size_t>(from.folder)].buddies;
    QStringList& destination = folders_[static_cast<std::size_t>(target)].buddies;
    if (from.folder == target && (beforeIndex == from.index || beforeIndex == from.index + 1 ||
                                  (beforeIndex < 0 && from.index == source.size() - 1))) {
        return false;  // dropped where it already is
    }
    const QString moved = source.takeAt(from.index);
    qsizetype at = beforeIndex < 0 ? destination.size() : beforeIndex;
    // Taking the buddy out moved everything after it in the same folder up by one.
    if (from.folder == target && beforeIndex > from.index) {
        --at;
    }
    destination.insert(std::clamp<qsizetype>(at, 0, destination.size()), moved);
    touch();
    return true;
}

bool BuddyEditor::save() {
    if (!list_.replace(folders_)) {
        prompter_.message(QStringLiteral("You are not connected: your buddy list was not saved."),
                          QStringLiteral("Buddy List"), Prompter::Icon::Warning);
        return false;
    }
    // Empty folders do not travel; the copy now matches what the server will keep.
    folders_ = list_.folders();
    modified_ = false;
    emit changed();
    return true;
}

}  // namespace tavren
