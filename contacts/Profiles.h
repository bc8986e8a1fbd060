#pragma once

#include <QObject>
#include <QString>

#include "core/ServerMessage.h"

namespace tavren {

class ServerSession;

// Member profiles: asking for a member's page (2, 11), the answer name ":" page, and saving the
// member's own page (2, 10) after the checks the editor makes. Pages are the members' own
// markup; whoever shows one shows it in a pane that runs no script and fetches nothing.
class Profiles : public QObject {
    Q_OBJECT
  public:
    static constexpr int kMaxLength = 10000;

    enum class Check { Empty, TooLong, Ok };

    explicit Profiles(ServerSession& server, QObject* parent = nullptr);

    static Check check(const QString& page);
    // The editor's count label, "Count: (n)".
    static QString countText(const QString& page);
    // The refusals of the editor, text and title.
    static QString emptyText() { return QStringLiteral("No profile to updated!"); }
    static QString emptyTitle() { return QStringLiteral("Profile Updated Failed."); }
    static QString tooLongText(const QString& page);
    static QString tooLongTitle() { return QStringLiteral("Profile Limit Exceeded!"); }
    // The progress label at each of the 25 steps of the save display, and after them.
    static constexpr int kProgressSteps = 25;
    static QString progressText(int step);
    static QString completeText() { return QStringLiteral("Complete..."); }

    // The profile window's caption and page prologues (viewing another member's page, and the
    // preview of one's own).
    static QString caption(const QString& name) { return name + QStringLiteral("'s Profile."); }
    static QString viewPrologue();
    static QString previewPrologue();

    // Asks for the member's page; false (nothing sent) for an empty name or while offline.
    bool view(const QString& name);
    // Asks for the member's own page for the editor: the answer comes as ownPageArrived.
    bool fetchOwn();
    // Saves the member's own page; false (nothing sent) unless check() says Ok and online.
    bool update(const QString& page);

    void onProfile(const ServerMessage& message);

  signals:
    void profileArrived(const QString& name, const QString& page);
    void ownPageArrived(const QString& page);

  private:
    ServerSession& server_;
    bool ownPageWanted_ = false;
};

}  // namespace tavren
