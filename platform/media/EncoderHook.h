// Callback types shared by the encoder engine and its users.
#pragma once

#include <cstdint>
#include <functional>

namespace morvane {

// The BGRA bits of one output frame, to be changed in place: width, height, bytes per row, pointer to
// the first row (top-down). Called on a worker thread, once per output frame.
using VideoHook = std::function<void(int, int, int, std::uint8_t*)>;

// Whether the hook has work for the next frame (for the program: its effect list is not empty). When it
// says no, the frame skips the BGRA round trip altogether. Called on a worker thread, once per frame.
using VideoHookActive = std::function<bool()>;

// A small BGRA copy of an output frame for the preview: width, height, bytes per row, bits. Called on a
// worker thread; the bits are valid during the call only.
using PreviewFn = std::function<void(int, int, int, const std::uint8_t*)>;

// Position and duration of the output, in microseconds. Called on a worker thread.
using ProgressFn = std::function<void(std::int64_t, std::int64_t)>;

} // namespace morvane
