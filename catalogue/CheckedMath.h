// Checked arithmetic for the parameter rules and the argument builder. What the program counts as a
// run-time error (a division by zero, a 32-bit overflow, a text that is no number where a number is
// needed) is raised as RunTimeError, so that each routine traps it in one place and returns its own
// fallback value. Pure functions; any thread.
#pragma once

#include <QString>

#include <cstdint>
#include <stdexcept>

namespace morvane {

class RunTimeError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// 32-bit integer arithmetic that throws RunTimeError instead of wrapping.
std::int32_t addChecked(std::int32_t a, std::int32_t b);
std::int32_t subChecked(std::int32_t a, std::int32_t b);
std::int32_t mulChecked(std::int32_t a, std::int32_t b);

// a / b as doubles; b == 0 throws, whatever a is (0 / 0 included).
double divChecked(double a, double b);

// Rounds half to even; a result outside the 32-bit range, or a value that is no finite number, throws.
std::int32_t roundToInt32(double value);

// The text as a number: surrounding spaces are allowed, anything else that is not a plain decimal
// number (empty, letters, inner blanks, "inf") throws.
double textToNumber(const QString& text);

// textToNumber, rounded half to even into 32 bits.
std::int32_t textToInt32(const QString& text);

} // namespace morvane
