#pragma once

#include <QString>

namespace tavren {

// The rank a member list shows in front of a name, and the icon that stands for it. The marks
// all begin with "@", so the staff marks are tested before the plain host mark.
class MemberRank {
  public:
    enum Icon { Member = 1, Host = 2, StaffThird = 3, StaffSecond = 4, StaffHighest = 5 };

    static Icon iconFor(const QString& listedName);
};

}  // namespace tavren
