// The frame hook of the conversion. Each task carries the effect list (item column 53) of its own row,
// taken when the queue is prepared: the lists are published by the main thread as one immutable
// snapshot and read by the encoder's worker threads for every output frame, so every file gets its own
// effects whatever row the panel shows and however many tasks run at once. Publishing never waits for
// a frame; a frame never waits for the main thread.
#pragma once

#include "EncoderHook.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace morvane {

class TaskEffects {
public:
    using Lists = std::vector<std::string>; // UTF-8 effect lists by task number

    // Main thread: the lists of a prepared queue, replacing those of the run before.
    void Publish(Lists byTask);
    // Any thread: the latest lists. The lock is held only to copy the pointer.
    std::shared_ptr<const Lists> Snapshot() const;
    // Whether the task's frames need the hook at all: without effects they skip its colour conversions.
    bool Active(int task) const;

private:
    mutable std::mutex m_lock; // guards m_current, never held during a frame
    std::shared_ptr<const Lists> m_current = std::make_shared<const Lists>();
};

// Runs the task's effect list over one BGRA output frame in place, seeded by the frame's number so that
// the noise-like effects give the same output on every run.
void Hook_OutputFrame(const TaskEffects& effects, const HookFrame& frame);

} // namespace morvane
