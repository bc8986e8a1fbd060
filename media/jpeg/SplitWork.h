#pragma once

#include <algorithm>
#include <exception>
#include <thread>
#include <vector>

namespace tavren::jpeg {

// Runs work(part, begin, end) over [0, count) cut into `parts` contiguous ranges of nearly equal
// size, one thread per range, the calling thread taking the first. An exception from any range
// is rethrown here once all threads have finished.
template <typename Work>
void SplitWork(long count, int parts, Work&& work) {
    parts = static_cast<int>(std::clamp<long>(parts, 1, std::max<long>(count, 1)));
    if (parts == 1) {
        work(0, 0L, count);
        return;
    }
    std::vector<std::exception_ptr> errors(parts);
    std::vector<std::thread> helpers;
    helpers.reserve(parts - 1);
    auto run = [&](int part) {
        try {
            work(part, count * part / parts, count * (part + 1) / parts);
        } catch (...) {
            errors[part] = std::current_exception();
        }
    };
    for (int part = 1; part < parts; ++part) {
        helpers.emplace_back(run, part);
    }
    run(0);
    for (std::thread& helper : helpers) {
        helper.join();
    }
    for (const std::exception_ptr& error : errors) {
        if (error) {
            std::rethrow_exception(error);
        }
    }
}

}  // namespace tavren::jpeg
