#pragma once

#include <QWidget>

namespace tavren {

class ChatPane;
class ClientSession;

// The profile window (one, reused): a member's page in a pane that runs no script and fetches
// nothing, captioned name + "'s Profile.". A click on the element with the id "nick" opens a
// conversation with the member; "radio" offers the link's station in the radio player (the
// member presses Play: another member's page never starts anything on its own); other links
// open in the member's browser.
//
// Qt keeps an element's id only as the anchor name of its first character, so "nick" and
// "radio" are recognised on links (<a id='nick' href='...'>), whose whole text is one run.
class ChatProfile : public QWidget {
    Q_OBJECT
  public:
    explicit ChatProfile(ClientSession& session, QWidget* parent = nullptr);

    // Shows another member's page, or (preview) the member's own page as edited.
    void showPage(const QString& name, const QString& page, bool preview = false);
    QString owner() const { return owner_; }
    ChatPane& pane() const { return *pane_; }

    // The id ("nick", "radio", ...) of the link at this point of the pane's viewport, or empty.
    QString elementIdAt(const QPoint& viewportPos) const;
    // What a click on the element with this id does; true when it was one of the page's own
    // actions (and the click goes no further).
    bool activateElement(const QString& id, const QString& href = QString());

  signals:
    // The page's "radio" element was clicked; `station` is its link (maybe not a station).
    void radioRequested(const QString& station);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    ClientSession& session_;
    ChatPane* pane_ = nullptr;
    QString owner_;
};

}  // namespace tavren
