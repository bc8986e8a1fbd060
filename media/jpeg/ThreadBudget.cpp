#include "media/jpeg/ThreadBudget.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <thread>

namespace tavren::jpeg {

int ThreadBudget::Available(int most) {
    const int cores = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    most = std::clamp(most, 1, cores);
#if defined(__unix__) || defined(__APPLE__)
    double load = 0;
    if (getloadavg(&load, 1) == 1) {
        // Our own thread is running and counted; what is left is everyone else.
        const double others = std::max(0.0, load - 1.0);
        const int idle = static_cast<int>(std::floor(cores - others + 0.5));
        return std::clamp(idle, 1, most);
    }
#endif
    return most;
}

}  // namespace tavren::jpeg
