// The frame hook of the conversion: the effect list of the row that the information panel shows
// (Info_Row), published by the main thread as an immutable snapshot and read by the encoder's worker
// threads for every output frame. Publishing never waits for a frame; a frame never waits for the
// main thread.
#pragma once

#include <QString>

#include <cstdint>
#include <memory>
#include <mutex>

namespace morvane {

class HookEffects {
public:
    // Main thread: the effect list (item column 53) of the row now at Info_Row; "" for none.
    void Publish(const QString& effectList);
    // Any thread: the latest list. The lock is held only to copy the pointer.
    std::shared_ptr<const QString> Snapshot() const;
    // Whether frames need the hook at all: with no effects they skip its colour conversions.
    bool Active() const { return !Snapshot()->isEmpty(); }

private:
    mutable std::mutex m_lock; // guards m_current, never held during a frame
    std::shared_ptr<const QString> m_current = std::make_shared<const QString>();
};

// Runs the effects of the snapshot over one BGRA frame in place. The effect engine comes later; until
// then the list names effects this build cannot run, and the frame passes unchanged.
void Hook_OutputFrame(const HookEffects& effects, int width, int height, int bytesPerLine,
                      std::uint8_t* bits);

} // namespace morvane
