// Aspect texts: the decimal form in which a stream's display aspect is stored, and the plain ratio.
// Shared by probing and by the argument builder.
#pragma once

#include <QString>

#include <cstdint>

namespace morvane {

// width / height to two decimals ("1.78", "1.5"); "1.1" when height is 0.
QString Aspect_Ratio(std::int32_t width, std::int32_t height);

// The aspect text stored for a probed stream: from the display aspect numerator and denominator,
// overridden by a known ratio, else Aspect_Ratio of the size. "1.1" on a run-time error.
QString Aspect_Text(std::int32_t width, std::int32_t height, std::int32_t numerator, std::int32_t denominator,
                    double ratio);

} // namespace morvane
