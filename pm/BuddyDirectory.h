#pragma once

#include <QString>

namespace tavren {

// What the private conversations need to know of the buddy list: whether a member stands in
// it, and a way to put one there. The buddy list implements it; the conversation window's tab
// menu offers "Add User to Buddy List..." only for members it does not contain.
class BuddyDirectory {
  public:
    virtual ~BuddyDirectory() = default;
    // Names compare without regard to letter case.
    virtual bool contains(const QString& name) const = 0;
    // Adds the member (the buddy list sends the request and follows the server's answer).
    virtual void addBuddy(const QString& name) = 0;
};

}  // namespace tavren
