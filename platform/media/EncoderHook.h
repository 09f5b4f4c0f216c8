// Callback types shared by the encoder engine and its users.
#pragma once

#include <cstdint>
#include <functional>

namespace morvane {

// One output frame as the hook sees it: BGRA bits to be changed in place, rows top-down.
struct HookFrame {
    int task = -1;          // the task the frame belongs to
    std::int64_t index = 0; // the frame's number in its task's output, from 0
    int width = 0;
    int height = 0;
    int bytesPerLine = 0;
    std::uint8_t* bits = nullptr;
};

// Called on a worker thread, once per output frame.
using VideoHook = std::function<void(const HookFrame&)>;

// Whether the hook has work for the task's next frame (for the program: the task's effect list is not
// empty). When it says no, the frame skips the BGRA round trip altogether. Called on a worker thread,
// once per frame, with the task number.
using VideoHookActive = std::function<bool(int)>;

// A small BGRA copy of an output frame for the preview: width, height, bytes per row, bits. Called on a
// worker thread; the bits are valid during the call only.
using PreviewFn = std::function<void(int, int, int, const std::uint8_t*)>;

// Position and duration of the output, in microseconds. Called on a worker thread.
using ProgressFn = std::function<void(std::int64_t, std::int64_t)>;

} // namespace morvane
