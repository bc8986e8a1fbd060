#pragma once

#include <QObject>
#include <QString>

#include "core/ServerMessage.h"

namespace tavren {

class ServerLink;

// "Locate User": asks the server where a member is, and hands on the sentence it answers with
// ("bob is Online in channel(s): General").
class MemberLocator : public QObject {
    Q_OBJECT
  public:
    explicit MemberLocator(ServerLink& link, QObject* parent = nullptr);

    // False (nothing sent) for an empty name or one that could not be a member's.
    bool locate(const QString& name);
    void onLocateResult(const ServerMessage& message);

  signals:
    void located(const QString& sentence);

  private:
    ServerLink& link_;
};

}  // namespace tavren
