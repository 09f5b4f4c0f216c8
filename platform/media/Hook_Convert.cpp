#include "Hook_Convert.h"

namespace morvane {

void Bgra_ToYuv420(const std::uint8_t* bgra, int bgraStride, int width, int height, std::uint8_t* y,
                   int yStride, std::uint8_t* u, int uStride, std::uint8_t* v, int vStride) {
    for (int row = 0; row + 1 < height; row += 2) {
        const std::uint8_t* p0 = bgra + static_cast<std::ptrdiff_t>(row) * bgraStride;
        const std::uint8_t* p1 = p0 + bgraStride;
        std::uint8_t* y0 = y + static_cast<std::ptrdiff_t>(row) * yStride;
        std::uint8_t* y1 = y0 + yStride;
        std::uint8_t* uo = u + static_cast<std::ptrdiff_t>(row / 2) * uStride;
        std::uint8_t* vo = v + static_cast<std::ptrdiff_t>(row / 2) * vStride;
        for (int x = 0; x + 1 < width; x += 2, p0 += 8, p1 += 8) {
            const auto luma = [](const std::uint8_t* p) {
                return static_cast<std::uint8_t>(((66 * p[2] + 129 * p[1] + 25 * p[0] + 128) >> 8) + 16);
            };
            y0[x] = luma(p0);
            y0[x + 1] = luma(p0 + 4);
            y1[x] = luma(p1);
            y1[x + 1] = luma(p1 + 4);
            const int b = p0[0] + p0[4] + p1[0] + p1[4];
            const int g = p0[1] + p0[5] + p1[1] + p1[5];
            const int r = p0[2] + p0[6] + p1[2] + p1[6];
            uo[x / 2] = static_cast<std::uint8_t>(((-38 * r - 74 * g + 112 * b + 512) >> 10) + 128);
            vo[x / 2] = static_cast<std::uint8_t>(((112 * r - 94 * g - 18 * b + 512) >> 10) + 128);
        }
    }
}

} // namespace morvane
