#include "ResidentMemory.h"

#include <chrono>
#include <fstream>
#include <string>

namespace tavren::bench {

long ResidentMemory::nowKb() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        if (word == "VmRSS:") {
            long kb = 0;
            status >> kb;
            return kb;
        }
    }
    return 0;
}

ResidentMemory::ResidentMemory() : start_(nowKb()), peak_(start_) {
    sampler_ = std::thread([this] {
        while (!stop_.load()) {
            const long now = nowKb();
            long seen = peak_.load();
            while (now > seen && !peak_.compare_exchange_weak(seen, now)) {
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    });
}

ResidentMemory::~ResidentMemory() {
    stop_ = true;
    sampler_.join();
}

}  // namespace tavren::bench
