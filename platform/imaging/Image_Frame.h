// The frame every effect works on: 32-bit BGRA pixels owned by the caller, rows top-down, changed in
// place. Effects are pure functions of the frame and their parameters; any thread may call them, each
// on its own frame. Helpers shared by the effect families live here too.
#pragma once

#include <opencv2/core.hpp>

#include <algorithm>
#include <cstdint>

namespace morvane::imaging {

struct Frame {
    std::uint8_t* bits = nullptr; // first byte of the top row
    int width = 0;
    int height = 0;
    int stride = 0; // bytes per row, at least width * 4; the bytes past width * 4 are never touched
    bool Valid() const { return bits != nullptr && width > 0 && height > 0 && stride >= width * 4; }
};

// A header over the frame's own bytes (no copy): what OpenCV writes lands in the frame.
inline cv::Mat MatOf(const Frame& f) {
    return cv::Mat(f.height, f.width, CV_8UC4, f.bits, static_cast<std::size_t>(f.stride));
}

// Parameters in pixels are given for a frame this wide and scale with the frame's width, so that the
// small preview and the full-size output look alike.
inline constexpr int kReferenceWidth = 640;

// `px` reference pixels at this frame's width, rounded, never below `minimum`.
inline int ScalePx(const Frame& f, double px, int minimum = 1) {
    return std::max(minimum, static_cast<int>(px * f.width / kReferenceWidth + 0.5));
}

template <class T>
T Clamp(T value, T lo, T hi) {
    return std::min(hi, std::max(lo, value));
}

inline std::uint8_t Sat8(int v) {
    return static_cast<std::uint8_t>(Clamp(v, 0, 255));
}

// A colour as the colour pickers give it: R + 256 * G + 65536 * B.
struct Bgr {
    std::uint8_t b = 0, g = 0, r = 0;
};
inline Bgr BgrOf(std::uint32_t rgbNumber) {
    return {static_cast<std::uint8_t>(rgbNumber >> 16), static_cast<std::uint8_t>(rgbNumber >> 8),
            static_cast<std::uint8_t>(rgbNumber)};
}

// Maps each colour channel through its table of 256 entries; the fourth byte keeps its value.
void ApplyChannelLuts(const Frame& f, const std::uint8_t* lutB, const std::uint8_t* lutG,
                      const std::uint8_t* lutR);
// The same table for all three colour channels.
inline void ApplyLut(const Frame& f, const std::uint8_t* lut) {
    ApplyChannelLuts(f, lut, lut, lut);
}

// A small, fast generator for noise-like effects. Seeded from the frame's seed, so that the same
// frame gives the same result on every run and every machine.
class Random {
public:
    explicit Random(std::uint64_t seed) : m_state(seed * 0x9E3779B97F4A7C15ull + 0xD1B54A32D192ED03ull) {}
    std::uint32_t Next() { // splitmix64, upper half
        std::uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return static_cast<std::uint32_t>((z ^ (z >> 31)) >> 32);
    }
    // Uniform in [lo, hi].
    int Range(int lo, int hi) {
        return lo + static_cast<int>(
                        (static_cast<std::uint64_t>(Next()) * static_cast<std::uint64_t>(hi - lo + 1)) >> 32);
    }

private:
    std::uint64_t m_state;
};

} // namespace morvane::imaging
