#include "contacts/ui/ChatBuddy.h"

#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>
#include <memory>

#include "contacts/BuddyEditor.h"
#include "contacts/BuddyList.h"
#include "contacts/BuddyListText.h"
#include "contacts/ui/BuddyDropTree.h"
#include "contacts/ui/BuddyTreeItems.h"
#include "core/Prompter.h"

namespace tavren {

namespace {
const QString kObjectName = QStringLiteral("ChatBuddy");
const QString kTitle = QStringLiteral("Edit Buddies");
}  // namespace

ChatBuddy::ChatBuddy(BuddyList& list, Prompter& prompter, QWidget* parent)
    : QDialog(parent),
      list_(list),
      prompter_(prompter),
      editor_(new BuddyEditor(list, prompter, this)) {
    setObjectName(kObjectName);
    setWindowTitle(kTitle);
    setModal(false);

    tree_ = new BuddyDropTree(this);
    tree_->setObjectName(QStringLiteral("TreeView2"));
    tree_->setHeaderHidden(true);
    tree_->setRootIsDecorated(false);
    tree_->setIconSize(QSize(16, 16));
    tree_->setMinimumSize(180, 160);
    tree_->setContextMenuPolicy(Qt::CustomContextMenu);

    auto* hint = new QLabel(
        tr("Drag buddies between folders, or use Move to. Folders without buddies are not kept."),
        this);
    hint->setObjectName(QStringLiteral("hint"));
    hint->setWordWrap(true);

    auto* buttons = new QVBoxLayout;
    connect(addButton(QStringLiteral("mnuaddbuddy"), tr("Add &Buddy..")), &QPushButton::clicked,
            this, &ChatBuddy::addBuddy);
    connect(addButton(QStringLiteral("mnuaddfolder"), tr("Add &Folder..")), &QPushButton::clicked,
            editor_, &BuddyEditor::askAndAddFolder);
    connect(addButton(QStringLiteral("rename"), tr("Re&name..")), &QPushButton::clicked, this,
            [this] { editor_->askAndRenameFolder(selectedFolder()); });
    connect(addButton(QStringLiteral("remove"), tr("&Remove")), &QPushButton::clicked, this,
            &ChatBuddy::removeSelected);
    QPushButton* move = addButton(QStringLiteral("moveto"), tr("&Move to"));
    moveMenu_ = new QMenu(move);
    moveMenu_->setObjectName(QStringLiteral("moveMenu"));
    move->setMenu(moveMenu_);
    connect(moveMenu_, &QMenu::aboutToShow, this,
            [this] { fillMoveMenu(moveMenu_, selectedBuddy()); });
    for (const char* name : {"mnuaddbuddy", "mnuaddfolder", "rename", "remove", "moveto"}) {
        buttons->addWidget(buttons_.value(QString::fromLatin1(name)));
    }
    buttons->addStretch(1);
    QPushButton* saveButton = addButton(QStringLiteral("save"), tr("&Save"));
    saveButton->setDefault(true);
    connect(saveButton, &QPushButton::clicked, this, [this] {
        if (save()) {
            accept();
        }
    });
    connect(addButton(QStringLiteral("close"), tr("&Close")), &QPushButton::clicked, this,
            &ChatBuddy::reject);
    buttons->addWidget(saveButton);
    buttons->addWidget(buttons_.value(QStringLiteral("close")));

    auto* left = new QVBoxLayout;
    left->addWidget(tree_, 1);
    left->addWidget(hint);
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(left, 1);
    layout->addLayout(buttons);

    connect(editor_, &BuddyEditor::changed, this, &ChatBuddy::rebuildTree);
    connect(tree_, &BuddyDropTree::moveRequested, editor_, &BuddyEditor::moveBuddy);
    connect(tree_, &QTreeWidget::currentItemChanged, this, &ChatBuddy::refreshButtons);
    connect(tree_, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) {
        BuddyTreeItems::showExpanded(item, true);
        collapsed_.remove(BuddyTreeItems::nameOf(item).toLower());
    });
    connect(tree_, &QTreeWidget::itemCollapsed, this, [this](QTreeWidgetItem* item) {
        BuddyTreeItems::showExpanded(item, false);
        collapsed_.insert(BuddyTreeItems::nameOf(item).toLower());
    });
    connect(tree_, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        QTreeWidgetItem* item = tree_->itemAt(at);
        if (item != nullptr) {
            tree_->setCurrentItem(item);
        }
        const std::unique_ptr<QMenu> menu(menuFor(item));
        menu->exec(tree_->viewport()->mapToGlobal(at));
    });
    // A list that changes on the server while nothing is edited here is shown as it is now.
    connect(&list_, &BuddyList::listChanged, this, [this] {
        if (!editor_->modified()) {
            editor_->reload();
        }
    });
    connect(&list_, &BuddyList::presenceChanged, this, [this](const QString& name) {
        for (int i = 0; i < tree_->topLevelItemCount(); ++i) {
            QTreeWidgetItem* folder = tree_->topLevelItem(i);
            for (int j = 0; j < folder->childCount(); ++j) {
                QTreeWidgetItem* buddy = folder->child(j);
                if (BuddyTreeItems::nameOf(buddy).compare(name, Qt::CaseInsensitive) == 0) {
                    BuddyTreeItems::showPresence(buddy, list_.presence(name));
                }
            }
        }
    });
    rebuildTree();
    // Room for the tree, the buttons and the two lines of the hint: a word-wrapped label does
    // not make its dialog keep that room by itself.
    setMinimumSize(380, 320);
    resize(420, 380);
}

ChatBuddy::~ChatBuddy() = default;

ChatBuddy* ChatBuddy::open(BuddyList& list, Prompter& prompter, QWidget* parent) {
    ChatBuddy* editor = parent == nullptr ? nullptr : parent->findChild<ChatBuddy*>(kObjectName);
    if (editor == nullptr) {
        editor = new ChatBuddy(list, prompter, parent);
        editor->setAttribute(Qt::WA_DeleteOnClose);
    }
    editor->show();
    editor->raise();
    editor->activateWindow();
    return editor;
}

QPushButton* ChatBuddy::addButton(const QString& name, const QString& caption) {
    auto* button = new QPushButton(caption, this);
    button->setObjectName(name);
    button->setAutoDefault(false);
    buttons_.insert(name, button);
    return button;
}

void ChatBuddy::rebuildTree() {
    const QString selected = BuddyTreeItems::nameOf(tree_->currentItem());
    const QSet<QString> collapsed = collapsed_;
    tree_->clear();
    QTreeWidgetItem* again = nullptr;
    for (const BuddyFolder& folder : editor_->folders()) {
        const bool expanded = !collapsed.contains(folder.name.toLower());
        QTreeWidgetItem* folderItem = BuddyTreeItems::folder(folder.name, folder.name, expanded);
        // Folders stay where they are; only buddies are dragged.
        folderItem->setFlags(folderItem->flags() & ~Qt::ItemIsDragEnabled);
        tree_->addTopLevelItem(folderItem);
        if (folder.name == selected) {
            again = folderItem;
        }
        for (const QString& name : folder.buddies) {
            QTreeWidgetItem* buddy = BuddyTreeItems::buddy(name);
            BuddyTreeItems::showPresence(buddy, list_.presence(name));
            folderItem->addChild(buddy);
            if (name == selected) {
                again = buddy;
            }
        }
        folderItem->setExpanded(expanded);
    }
    collapsed_ = collapsed;
    tree_->setCurrentItem(again);
    setWindowTitle(editor_->modified() ? kTitle + QStringLiteral(" *") : kTitle);
    refreshButtons();
}

void ChatBuddy::refreshButtons() {
    const QTreeWidgetItem* current = tree_->currentItem();
    buttons_.value(QStringLiteral("rename"))->setEnabled(BuddyTreeItems::isFolder(current));
    buttons_.value(QStringLiteral("remove"))->setEnabled(current != nullptr);
    buttons_.value(QStringLiteral("moveto"))
        ->setEnabled(BuddyTreeItems::isBuddy(current) && editor_->folders().size() > 1);
}

QString ChatBuddy::selectedFolder() const {
    const QTreeWidgetItem* current = tree_->currentItem();
    if (BuddyTreeItems::isBuddy(current)) {
        current = current->parent();
    }
    return BuddyTreeItems::nameOf(current);
}

QString ChatBuddy::selectedBuddy() const {
    const QTreeWidgetItem* current = tree_->currentItem();
    return BuddyTreeItems::isBuddy(current) ? BuddyTreeItems::nameOf(current) : QString();
}

void ChatBuddy::fillMoveMenu(QMenu* menu, const QString& buddy) {
    menu->clear();
    const BuddyListText::Position at = BuddyListText::find(editor_->folders(), buddy);
    if (!at.found()) {
        return;
    }
    const QString from = editor_->folders()[static_cast<std::size_t>(at.folder)].name;
    for (const BuddyFolder& folder : editor_->folders()) {
        if (folder.name == from) {
            continue;
        }
        QAction* action = menu->addAction(folder.name);
        action->setObjectName(QStringLiteral("moveto:") + folder.name);
        connect(action, &QAction::triggered, this,
                [this, buddy, target = folder.name] { editor_->moveBuddy(buddy, target); });
    }
    if (menu->isEmpty()) {
        menu->addAction(tr("(no other folder)"))->setEnabled(false);
    }
}

QMenu* ChatBuddy::menuFor(QTreeWidgetItem* item) {
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("editorMenu"));
    const auto add = [menu](const char* objectName, const QString& caption) {
        QAction* action = menu->addAction(caption);
        action->setObjectName(QString::fromLatin1(objectName));
        return action;
    };
    connect(add("mnuaddbuddy", tr("Add &Buddy..")), &QAction::triggered, this,
            &ChatBuddy::addBuddy);
    connect(add("mnuaddfolder", tr("Add &Folder..")), &QAction::triggered, editor_,
            &BuddyEditor::askAndAddFolder);
    if (BuddyTreeItems::isFolder(item)) {
        menu->addSeparator();
        const QString folder = BuddyTreeItems::nameOf(item);
        connect(add("rename", tr("Re&name Folder..")), &QAction::triggered, this,
                [this, folder] { editor_->askAndRenameFolder(folder); });
        connect(add("remove", tr("&Remove Folder")), &QAction::triggered, this,
                [this, folder] { editor_->removeFolder(folder); });
    } else if (BuddyTreeItems::isBuddy(item)) {
        menu->addSeparator();
        const QString buddy = BuddyTreeItems::nameOf(item);
        connect(add("remove", tr("&Remove Buddy")), &QAction::triggered, this,
                [this, buddy] { editor_->removeBuddy(buddy); });
        QMenu* moveTo = menu->addMenu(tr("&Move to folder"));
        moveTo->setObjectName(QStringLiteral("moveto"));
        fillMoveMenu(moveTo, buddy);
    }
    return menu;
}

void ChatBuddy::addBuddy() {
    editor_->askAndAddBuddy(selectedFolder());
}

void ChatBuddy::removeSelected() {
    const QTreeWidgetItem* current = tree_->currentItem();
    if (BuddyTreeItems::isFolder(current)) {
        editor_->removeFolder(BuddyTreeItems::nameOf(current));
    } else if (BuddyTreeItems::isBuddy(current)) {
        editor_->removeBuddy(BuddyTreeItems::nameOf(current));
    }
}

bool ChatBuddy::save() {
    return editor_->save();
}

void ChatBuddy::reject() {
    // Esc, Close and the title bar's close button all end here.
    if (editor_->modified()) {
        switch (prompter_.askYesNoCancel(tr("Save the changes to your buddy list?"), kTitle)) {
            case Prompter::Answer::Yes:
                if (!save()) {
                    return;
                }
                break;
            case Prompter::Answer::No:
                editor_->reload();
                break;
            case Prompter::Answer::Cancel:
                return;
        }
    }
    QDialog::reject();
}

}  // namespace tavren
