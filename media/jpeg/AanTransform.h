#pragma once

// The one-dimensional scaled DCT of Arai, Agui and Nakajima on eight values, written once for
// any value type with + - * (a float, or a vector of floats holding eight columns at once) so the
// scalar and the vector transforms do the same arithmetic in the same order and agree bit for
// bit. Included after the target selection in vector translation units, hence no include guard
// beyond pragma once and everything inside an unnamed namespace.

namespace tavren::jpeg {
namespace {

template <typename V>
struct AanConstants {
    V c0707;  // cos(4 pi / 16)
    V c0382;  // cos(6 pi / 16)
    V c0541;  // cos(6 pi / 16) * sqrt(2)
    V c1306;  // cos(2 pi / 16) * sqrt(2)
};

template <typename V>
inline void AanForward(V* d, const AanConstants<V>& k) {
    const V tmp0 = d[0] + d[7];
    const V tmp7 = d[0] - d[7];
    const V tmp1 = d[1] + d[6];
    const V tmp6 = d[1] - d[6];
    const V tmp2 = d[2] + d[5];
    const V tmp5 = d[2] - d[5];
    const V tmp3 = d[3] + d[4];
    const V tmp4 = d[3] - d[4];

    // Even part.
    const V tmp10 = tmp0 + tmp3;
    const V tmp13 = tmp0 - tmp3;
    const V tmp11 = tmp1 + tmp2;
    const V tmp12 = tmp1 - tmp2;
    d[0] = tmp10 + tmp11;
    d[4] = tmp10 - tmp11;
    const V z1 = (tmp12 + tmp13) * k.c0707;
    d[2] = tmp13 + z1;
    d[6] = tmp13 - z1;

    // Odd part.
    const V odd10 = tmp4 + tmp5;
    const V odd11 = tmp5 + tmp6;
    const V odd12 = tmp6 + tmp7;
    const V z5 = (odd10 - odd12) * k.c0382;
    const V z2 = k.c0541 * odd10 + z5;
    const V z4 = k.c1306 * odd12 + z5;
    const V z3 = odd11 * k.c0707;
    const V z11 = tmp7 + z3;
    const V z13 = tmp7 - z3;
    d[5] = z13 + z2;
    d[3] = z13 - z2;
    d[1] = z11 + z4;
    d[7] = z11 - z4;
}

}  // namespace
}  // namespace tavren::jpeg
