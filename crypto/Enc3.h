// 32-bit word operations on signed integers, the building blocks of the hash class. Pure functions;
// any thread.
#pragma once

#include <cstdint>

namespace morvane {

class Enc3 {
public:
    // A positive count shifts left, a negative one right (zero fill, on the bit pattern); a count of
    // 0 returns the value and a count outside -31..31 returns 0.
    static std::int32_t w32Shift(std::int32_t value, int count);
    // The same counts, rotating instead of shifting; outside -31..31 also 0.
    static std::int32_t w32Rotate(std::int32_t value, int count);
    // a + b modulo 2^32, without signed overflow.
    static std::int32_t UnsignedAdd(std::int32_t a, std::int32_t b);
};

} // namespace morvane
