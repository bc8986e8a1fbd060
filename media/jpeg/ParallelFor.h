#pragma once

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace tavren::jpeg {

// Runs work(worker, index) for every index in [0, count) on up to `workers` threads, the calling
// thread being worker 0. Each thread takes the next index nobody has claimed yet, so a helper
// that gets the processor late (the machine is shared) simply does less instead of holding the
// others up. The first exception thrown is rethrown here once every thread has stopped.
template <typename Work>
void ParallelFor(long count, int workers, Work&& work) {
    workers = static_cast<int>(std::clamp<long>(workers, 1, std::max<long>(count, 1)));
    if (workers == 1) {
        for (long index = 0; index < count; ++index) {
            work(0, index);
        }
        return;
    }
    std::atomic<long> next{0};
    std::atomic<bool> failed{false};
    std::exception_ptr error;
    std::mutex errorLock;
    auto run = [&](int worker) {
        try {
            for (long index = next++; index < count && !failed; index = next++) {
                work(worker, index);
            }
        } catch (...) {
            const std::lock_guard<std::mutex> lock(errorLock);
            if (!error) {
                error = std::current_exception();
            }
            failed = true;
        }
    };
    std::vector<std::thread> helpers;
    helpers.reserve(workers - 1);
    for (int worker = 1; worker < workers; ++worker) {
        helpers.emplace_back(run, worker);
    }
    run(0);
    for (std::thread& helper : helpers) {
        helper.join();
    }
    if (error) {
        std::rethrow_exception(error);
    }
}

// How many pieces to cut work of `units` into for `workers` threads: one for a single thread,
// otherwise several per thread (so the split can follow who actually runs) but none smaller
// than `smallestPiece` units.
inline long PieceCount(long units, int workers, long smallestPiece) {
    if (workers <= 1) {
        return 1;
    }
    return std::clamp<long>(units / std::max<long>(smallestPiece, 1), 1, 8L * workers);
}

}  // namespace tavren::jpeg
