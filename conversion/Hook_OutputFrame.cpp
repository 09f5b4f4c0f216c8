#include "Hook_OutputFrame.h"

namespace morvane {

void HookEffects::Publish(const QString& effectList) {
    auto next = std::make_shared<const QString>(effectList);
    const std::lock_guard<std::mutex> guard(m_lock);
    m_current = std::move(next);
}

std::shared_ptr<const QString> HookEffects::Snapshot() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_current;
}

void Hook_OutputFrame(const HookEffects& effects, int width, int height, int bytesPerLine,
                      std::uint8_t* bits) {
    const std::shared_ptr<const QString> list = effects.Snapshot();
    (void)list;
    (void)width;
    (void)height;
    (void)bytesPerLine;
    (void)bits;
}

} // namespace morvane
