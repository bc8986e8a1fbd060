#include "render/RoomCaptions.h"

namespace tavren {

int FirstRoomWithCaption(const QStringList& captions, const QString& channel) {
    const QString wanted = channel.toLower();
    for (int index = 0; index < captions.size(); ++index) {
        if (captions.at(index).toLower() == wanted) {
            return index;
        }
    }
    return -1;
}

}  // namespace tavren
