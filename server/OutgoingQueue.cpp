#include "server/OutgoingQueue.h"

namespace tavren::server {

bool OutgoingQueue::push(std::string frame) {
    if (frames_.size() >= frameLimit_ || frame.size() > byteLimit_ - bytes_) {
        return false;
    }
    bytes_ += frame.size();
    frames_.push_back(std::move(frame));
    return true;
}

void OutgoingQueue::pop() {
    bytes_ -= frames_.front().size();
    frames_.pop_front();
}

}  // namespace tavren::server
