// The way back from the hook's BGRA into the frame's 4:2:0 planes, for the common case: one pass of
// integer arithmetic with each 2x2 block's chroma averaged (SSE2, eight pixels at a time), about a
// third of the general scaler's time on a 720p frame, which the pipeline waits for on every frame
// with effects. The same
// BT.601 limited-range coefficients as the scaler's way in, so that a frame without effects comes back
// as it was. Any thread.
#pragma once

#include <cstdint>

namespace morvane {

// BGRA rows (top-down, `bgraStride` bytes apart) into Y, U and V planes of a 4:2:0 frame of even width
// and height.
void Bgra_ToYuv420(const std::uint8_t* bgra, int bgraStride, int width, int height, std::uint8_t* y,
                   int yStride, std::uint8_t* u, int uStride, std::uint8_t* v, int vStride);

} // namespace morvane
