#include "contacts/ui/ChatProfile.h"

#include <QMouseEvent>
#include <QTextBlock>
#include <QVBoxLayout>

#include "contacts/Profiles.h"
#include "core/ClientSession.h"
#include "pm/PrivateChats.h"
#include "render/ui/ChatPane.h"

namespace tavren {

ChatProfile::ChatProfile(ClientSession& session, QWidget* parent)
    : QWidget(parent, Qt::Window), session_(session) {
    setObjectName(QStringLiteral("ChatProfile"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    pane_ = new ChatPane(this);
    pane_->setObjectName(QStringLiteral("WebBrowser1"));
    pane_->setDataRoot(session_.dataRoot());
    pane_->viewport()->installEventFilter(this);
    layout->addWidget(pane_);
    resize(520, 560);
}

void ChatProfile::showPage(const QString& name, const QString& page, bool preview) {
    owner_ = name;
    setWindowTitle(Profiles::caption(name));
    pane_->navigate(preview ? Profiles::previewPrologue() : Profiles::viewPrologue());
    pane_->AddChat(page);
    pane_->flush();
    pane_->moveCursor(QTextCursor::Start);
}

QString ChatProfile::elementIdAt(const QPoint& viewportPos) const {
    const QString href = pane_->anchorAt(viewportPos);
    if (href.isEmpty()) {
        return {};
    }
    // The link's run of text: walk back to its first character, which carries the id.
    const QTextCursor at = pane_->cursorForPosition(viewportPos);
    const QTextBlock block = at.block();
    QStringList names;
    for (QTextBlock::iterator it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        if (fragment.position() > at.position()) {
            break;
        }
        const QTextCharFormat format = fragment.charFormat();
        if (format.anchorHref() != href) {
            names.clear();
            continue;
        }
        names << format.anchorNames();
    }
    for (const char* known : {"nick", "radio"}) {
        if (names.contains(QString::fromLatin1(known), Qt::CaseInsensitive)) {
            return QString::fromLatin1(known);
        }
    }
    return names.value(0);
}

bool ChatProfile::activateElement(const QString& id, const QString& href) {
    if (id == QLatin1String("nick")) {
        if (!owner_.isEmpty()) {
            session_.privateChats().openConversation(owner_);
        }
        return true;
    }
    if (id == QLatin1String("radio")) {
        emit radioRequested(href);
        return true;
    }
    return false;
}

bool ChatProfile::eventFilter(QObject* watched, QEvent* event) {
    if (watched == pane_->viewport() && event->type() == QEvent::MouseButtonRelease) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::LeftButton &&
            activateElement(elementIdAt(mouse->position().toPoint()),
                            pane_->anchorAt(mouse->position().toPoint()))) {
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace tavren
