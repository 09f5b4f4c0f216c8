#include "CheckedMath.h"

#include "mMain.h"

#include <cmath>

namespace morvane {

std::int32_t addChecked(std::int32_t a, std::int32_t b) {
    std::int32_t result = 0;
    if (__builtin_add_overflow(a, b, &result)) throw RunTimeError("overflow");
    return result;
}

std::int32_t subChecked(std::int32_t a, std::int32_t b) {
    std::int32_t result = 0;
    if (__builtin_sub_overflow(a, b, &result)) throw RunTimeError("overflow");
    return result;
}

std::int32_t mulChecked(std::int32_t a, std::int32_t b) {
    std::int32_t result = 0;
    if (__builtin_mul_overflow(a, b, &result)) throw RunTimeError("overflow");
    return result;
}

double divChecked(double a, double b) {
    if (b == 0.0) throw RunTimeError("division by zero");
    return a / b;
}

std::int32_t roundToInt32(double value) {
    if (!std::isfinite(value)) throw RunTimeError("overflow");
    const double rounded = Round_HalfEven(value);
    if (rounded < -2147483648.0 || rounded > 2147483647.0) throw RunTimeError("overflow");
    return static_cast<std::int32_t>(rounded);
}

double textToNumber(const QString& text) {
    const QString trimmed = Trim_Spaces(text);
    // QString::toDouble would also skip tabs and line breaks; only blanks may surround a number here.
    if (trimmed.isEmpty() || trimmed.front().isSpace() || trimmed.back().isSpace())
        throw RunTimeError("type mismatch");
    bool ok = false;
    const double value = trimmed.toDouble(&ok);
    if (!ok || !std::isfinite(value)) throw RunTimeError("type mismatch");
    return value;
}

std::int32_t textToInt32(const QString& text) {
    return roundToInt32(textToNumber(text));
}

} // namespace morvane
