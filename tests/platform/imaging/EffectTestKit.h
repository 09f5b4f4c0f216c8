// Frames for the effect tests: a BGRA buffer with optional bytes past each row, filled with a
// pattern, whose padding is checked afterwards (effects must never write past width * 4).
#pragma once

#include "Image_Frame.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

namespace morvane::imaging::testkit {

constexpr std::uint8_t kGuard = 0xA5;

struct TestFrame {
    int width, height, stride;
    std::vector<std::uint8_t> bytes;

    // A frame filled with a colourful pattern: gradients across, down and diagonally, so that every
    // effect has something to change.
    TestFrame(int w, int h, int padding = 0) : width(w), height(h), stride(w * 4 + padding) {
        bytes.assign(static_cast<std::size_t>(stride) * h, kGuard);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                Set(x, y, static_cast<std::uint8_t>(x * 255 / std::max(1, w - 1)),
                    static_cast<std::uint8_t>(y * 255 / std::max(1, h - 1)),
                    static_cast<std::uint8_t>(((x + y) * 37) & 255), 255);
    }
    Frame frame() { return Frame{bytes.data(), width, height, stride}; }
    std::uint8_t* at(int x, int y) { return bytes.data() + static_cast<std::size_t>(y) * stride + x * 4; }
    std::array<int, 4> Px(int x, int y) { // B, G, R, A
        const std::uint8_t* p = at(x, y);
        return {p[0], p[1], p[2], p[3]};
    }
    void Set(int x, int y, std::uint8_t b, std::uint8_t g, std::uint8_t r, std::uint8_t a = 255) {
        std::uint8_t* p = at(x, y);
        p[0] = b, p[1] = g, p[2] = r, p[3] = a;
    }
    void Fill(std::uint8_t b, std::uint8_t g, std::uint8_t r) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                Set(x, y, b, g, r);
    }
    // The bytes past width * 4 of every row are as they were made.
    bool PaddingIntact() const {
        for (int y = 0; y < height; ++y)
            for (int i = width * 4; i < stride; ++i)
                if (bytes[static_cast<std::size_t>(y) * stride + i] != kGuard) return false;
        return true;
    }
    // The pixels only (padding ignored), for comparing two frames of the same shape.
    std::vector<std::uint8_t> Pixels() const {
        std::vector<std::uint8_t> out;
        for (int y = 0; y < height; ++y)
            out.insert(out.end(), bytes.begin() + static_cast<long>(y) * stride,
                       bytes.begin() + static_cast<long>(y) * stride + width * 4);
        return out;
    }
};

// The largest difference of any colour channel between two frames of the same shape (alpha ignored).
inline int MaxColourDiff(const TestFrame& a, const TestFrame& b) {
    int worst = 0;
    const auto pa = a.Pixels(), pb = b.Pixels();
    for (std::size_t i = 0; i < pa.size(); ++i)
        if (i % 4 != 3) worst = std::max(worst, std::abs(pa[i] - pb[i]));
    return worst;
}

} // namespace morvane::imaging::testkit
