#include "Enc3.h"

namespace morvane {

namespace {

std::uint32_t bits(std::int32_t value) {
    return static_cast<std::uint32_t>(value);
}
std::int32_t word(std::uint32_t value) {
    return static_cast<std::int32_t>(value);
}

} // namespace

std::int32_t Enc3::w32Shift(std::int32_t value, int count) {
    if (count == 0) return value;
    if (count < -31 || count > 31) return 0;
    return count > 0 ? word(bits(value) << count) : word(bits(value) >> -count);
}

std::int32_t Enc3::w32Rotate(std::int32_t value, int count) {
    if (count == 0) return value;
    if (count < -31 || count > 31) return 0;
    const int left = count > 0 ? count : 32 + count;
    return word((bits(value) << left) | (bits(value) >> (32 - left)));
}

std::int32_t Enc3::UnsignedAdd(std::int32_t a, std::int32_t b) {
    return word(bits(a) + bits(b));
}

} // namespace morvane
