#include "server/net/OutgoingQueue.h"

namespace tavren::server {

bool OutgoingQueue::push(SharedFrame frame) {
    if (size() >= frameLimit_ || frame->size() > byteLimit_ - bytes_) {
        return false;
    }
    bytes_ += frame->size();
    if (!frames_) {
        frames_.emplace();
    }
    frames_->push_back(std::move(frame));
    return true;
}

void OutgoingQueue::pop(std::size_t count) {
    for (; count > 0 && frames_; --count) {
        bytes_ -= frames_->front()->size();
        frames_->pop_front();
        if (frames_->empty()) {
            frames_.reset();
        }
    }
}

}  // namespace tavren::server
