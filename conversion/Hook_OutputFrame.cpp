#include "Hook_OutputFrame.h"

#include "Effect_Chain.h"

namespace morvane {

void TaskEffects::Publish(Lists byTask) {
    auto next = std::make_shared<const Lists>(std::move(byTask));
    const std::lock_guard<std::mutex> guard(m_lock);
    m_current = std::move(next);
}

std::shared_ptr<const TaskEffects::Lists> TaskEffects::snapshot() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_current;
}

std::string TaskEffects::ListOf(int task) const {
    const auto lists = snapshot();
    return task >= 0 && task < static_cast<int>(lists->size()) ? (*lists)[static_cast<std::size_t>(task)]
                                                               : std::string();
}

bool TaskEffects::Active(int task) const {
    const auto lists = snapshot();
    return task >= 0 && task < static_cast<int>(lists->size()) &&
           (*lists)[static_cast<std::size_t>(task)].find_first_not_of(" \t,") != std::string::npos;
}

void Hook_OutputFrame(const TaskEffects& effects, const HookFrame& frame) {
    const std::string list = effects.ListOf(frame.task);
    if (list.empty()) return;
    imaging::Run_EffectChain(imaging::Frame{frame.bits, frame.width, frame.height, frame.bytesPerLine}, list,
                             static_cast<std::uint32_t>(frame.index));
}

} // namespace morvane
