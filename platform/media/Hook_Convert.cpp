#include "Hook_Convert.h"

#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace morvane {

namespace {

// One 2x2 block: four luma samples and the block's averaged chroma.
inline void Block(const std::uint8_t* p0, const std::uint8_t* p1, std::uint8_t* y0, std::uint8_t* y1,
                  std::uint8_t* u, std::uint8_t* v) {
    const auto luma = [](const std::uint8_t* p) {
        return static_cast<std::uint8_t>(((66 * p[2] + 129 * p[1] + 25 * p[0] + 128) >> 8) + 16);
    };
    y0[0] = luma(p0);
    y0[1] = luma(p0 + 4);
    y1[0] = luma(p1);
    y1[1] = luma(p1 + 4);
    const int b = p0[0] + p0[4] + p1[0] + p1[4];
    const int g = p0[1] + p0[5] + p1[1] + p1[5];
    const int r = p0[2] + p0[6] + p1[2] + p1[6];
    *u = static_cast<std::uint8_t>(((-38 * r - 74 * g + 112 * b + 512) >> 10) + 128);
    *v = static_cast<std::uint8_t>(((112 * r - 94 * g - 18 * b + 512) >> 10) + 128);
}

#if defined(__SSE2__)
// Eight BGRA pixels as 16-bit lanes of blue, green and red.
inline void Split8(const std::uint8_t* p, __m128i& b, __m128i& g, __m128i& r) {
    const __m128i lo = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i hi = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16));
    const __m128i byte = _mm_set1_epi32(0xFF);
    b = _mm_packs_epi32(_mm_and_si128(lo, byte), _mm_and_si128(hi, byte));
    g = _mm_packs_epi32(_mm_and_si128(_mm_srli_epi32(lo, 8), byte),
                        _mm_and_si128(_mm_srli_epi32(hi, 8), byte));
    r = _mm_packs_epi32(_mm_and_si128(_mm_srli_epi32(lo, 16), byte),
                        _mm_and_si128(_mm_srli_epi32(hi, 16), byte));
}

// The same sums as Block's, in 16-bit lanes: at most 56228, so they wrap nowhere.
inline __m128i Luma8(__m128i b, __m128i g, __m128i r) {
    const __m128i sum = _mm_add_epi16(
        _mm_add_epi16(_mm_mullo_epi16(r, _mm_set1_epi16(66)), _mm_mullo_epi16(g, _mm_set1_epi16(129))),
        _mm_add_epi16(_mm_mullo_epi16(b, _mm_set1_epi16(25)), _mm_set1_epi16(128)));
    return _mm_add_epi16(_mm_srli_epi16(sum, 8), _mm_set1_epi16(16));
}

// Four blocks' chroma from their channel sums (32-bit lanes, at most 1020): (r, g) and (b, 1) pairs
// multiplied and added in one step each.
inline __m128i Chroma4(__m128i r, __m128i g, __m128i b, short kr, short kg, short kb) {
    const __m128i r16 = _mm_packs_epi32(r, r), g16 = _mm_packs_epi32(g, g), b16 = _mm_packs_epi32(b, b);
    const __m128i rg =
        _mm_madd_epi16(_mm_unpacklo_epi16(r16, g16), _mm_setr_epi16(kr, kg, kr, kg, kr, kg, kr, kg));
    const __m128i b1 = _mm_madd_epi16(_mm_unpacklo_epi16(b16, _mm_set1_epi16(1)),
                                      _mm_setr_epi16(kb, 512, kb, 512, kb, 512, kb, 512));
    return _mm_add_epi32(_mm_srai_epi32(_mm_add_epi32(rg, b1), 10), _mm_set1_epi32(128));
}

inline void Store4(std::uint8_t* to, __m128i lanes32) {
    const __m128i bytes = _mm_packus_epi16(_mm_packs_epi32(lanes32, lanes32), _mm_setzero_si128());
    const int word = _mm_cvtsi128_si32(bytes);
    std::memcpy(to, &word, 4);
}
#endif

} // namespace

void Bgra_ToYuv420(const std::uint8_t* bgra, int bgraStride, int width, int height, std::uint8_t* y,
                   int yStride, std::uint8_t* u, int uStride, std::uint8_t* v, int vStride) {
    for (int row = 0; row + 1 < height; row += 2) {
        const std::uint8_t* p0 = bgra + static_cast<std::ptrdiff_t>(row) * bgraStride;
        const std::uint8_t* p1 = p0 + bgraStride;
        std::uint8_t* y0 = y + static_cast<std::ptrdiff_t>(row) * yStride;
        std::uint8_t* y1 = y0 + yStride;
        std::uint8_t* uo = u + static_cast<std::ptrdiff_t>(row / 2) * uStride;
        std::uint8_t* vo = v + static_cast<std::ptrdiff_t>(row / 2) * vStride;
        int x = 0;
#if defined(__SSE2__)
        // Eight pixels of both rows at a time; the scalar blocks finish the row.
        const __m128i ones = _mm_set1_epi16(1);
        for (; x + 8 <= width; x += 8) {
            __m128i b0, g0, r0, b1, g1, r1;
            Split8(p0 + x * 4, b0, g0, r0);
            Split8(p1 + x * 4, b1, g1, r1);
            _mm_storel_epi64(reinterpret_cast<__m128i*>(y0 + x),
                             _mm_packus_epi16(Luma8(b0, g0, r0), _mm_setzero_si128()));
            _mm_storel_epi64(reinterpret_cast<__m128i*>(y1 + x),
                             _mm_packus_epi16(Luma8(b1, g1, r1), _mm_setzero_si128()));
            const __m128i sb = _mm_add_epi32(_mm_madd_epi16(b0, ones), _mm_madd_epi16(b1, ones));
            const __m128i sg = _mm_add_epi32(_mm_madd_epi16(g0, ones), _mm_madd_epi16(g1, ones));
            const __m128i sr = _mm_add_epi32(_mm_madd_epi16(r0, ones), _mm_madd_epi16(r1, ones));
            Store4(uo + x / 2, Chroma4(sr, sg, sb, -38, -74, 112));
            Store4(vo + x / 2, Chroma4(sr, sg, sb, 112, -94, -18));
        }
#endif
        for (; x + 1 < width; x += 2)
            Block(p0 + x * 4, p1 + x * 4, y0 + x, y1 + x, uo + x / 2, vo + x / 2);
    }
}

} // namespace morvane
