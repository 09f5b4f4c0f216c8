// The fitted side of the builder's cuts; declared in Make_EncoderArgs.h.
#include "Make_EncoderArgs.h"

namespace morvane {

std::int32_t Fit_Size(std::int32_t sourceWidth, std::int32_t sourceHeight, std::int32_t targetWidth,
                      std::int32_t targetHeight) {
    if (targetWidth == -1) return roundToInt32(divChecked(targetHeight, sourceHeight) * sourceWidth);
    if (targetHeight == -1) return roundToInt32(divChecked(targetWidth, sourceWidth) * sourceHeight);
    return 0;
}

} // namespace morvane
