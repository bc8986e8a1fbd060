#pragma once

#include <atomic>
#include <thread>

namespace tavren::bench {

// Samples the process's resident memory (VmRSS) every few milliseconds while it runs, and keeps
// the first and the largest sample.
class ResidentMemory {
  public:
    ResidentMemory();
    ~ResidentMemory();
    ResidentMemory(const ResidentMemory&) = delete;
    ResidentMemory& operator=(const ResidentMemory&) = delete;

    static long nowKb();
    long startKb() const { return start_; }
    long peakKb() const { return peak_.load(); }

  private:
    long start_;
    std::atomic<long> peak_;
    std::atomic<bool> stop_{false};
    std::thread sampler_;
};

}  // namespace tavren::bench
