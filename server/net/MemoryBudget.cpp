#include "server/net/MemoryBudget.h"

namespace tavren::server {

bool MemoryBudget::resize(std::size_t& held, std::size_t wanted) {
    if (wanted > held && wanted - held > total_ - used_) {
        return false;
    }
    used_ = used_ - held + wanted;
    held = wanted;
    return true;
}

}  // namespace tavren::server
