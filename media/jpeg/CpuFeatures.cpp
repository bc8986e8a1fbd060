#include "media/jpeg/CpuFeatures.h"

#include <atomic>

namespace tavren::jpeg {
namespace {

std::atomic<bool> gVectorUnitsAllowed{true};

#if defined(__GNUC__) && defined(__x86_64__)
bool ProbeAvx2() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
           __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("lzcnt");
}
bool ProbeAvx512() {
    __builtin_cpu_init();
    return ProbeAvx2() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq") &&
           __builtin_cpu_supports("avx512vbmi");
}
#else
bool ProbeAvx2() {
    return false;
}
bool ProbeAvx512() {
    return false;
}
#endif

}  // namespace

bool CpuFeatures::HasAvx2() {
    static const bool present = ProbeAvx2();
    return present && gVectorUnitsAllowed.load(std::memory_order_relaxed);
}

bool CpuFeatures::HasAvx512() {
    static const bool present = ProbeAvx512();
    return present && gVectorUnitsAllowed.load(std::memory_order_relaxed);
}

void CpuFeatures::AllowVectorUnits(bool allowed) {
    gVectorUnitsAllowed.store(allowed, std::memory_order_relaxed);
}

}  // namespace tavren::jpeg
