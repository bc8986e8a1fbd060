#pragma once

namespace tavren::jpeg {

// Which vector units the encoder may use, probed once. Tests switch the vector kernels off to
// check that both routes produce the same file.
class CpuFeatures {
  public:
    // AVX2 together with BMI1/BMI2 and LZCNT (every AVX2 processor in practice has them).
    static bool HasAvx2();
    // AVX-512 F, BW, VL, DQ, VBMI and VBMI2 (with everything HasAvx2 asks for).
    static bool HasAvx512();

    static void AllowVectorUnits(bool allowed);
};

}  // namespace tavren::jpeg
