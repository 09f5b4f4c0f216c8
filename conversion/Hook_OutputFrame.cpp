#include "Hook_OutputFrame.h"

#include "Effect_Chain.h"

namespace morvane {

void TaskEffects::Publish(Lists byTask) {
    auto next = std::make_shared<const Lists>(std::move(byTask));
    const std::lock_guard<std::mutex> guard(m_lock);
    m_current = std::move(next);
}

namespace {

// The task's list in a snapshot; nothing for a task the snapshot does not know.
const std::string* ListOf(const TaskEffects::Lists& lists, int task) {
    return task >= 0 && task < static_cast<int>(lists.size()) ? &lists[static_cast<std::size_t>(task)]
                                                              : nullptr;
}

} // namespace

std::shared_ptr<const TaskEffects::Lists> TaskEffects::Snapshot() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_current;
}

bool TaskEffects::Active(int task) const {
    const auto lists = Snapshot();
    const std::string* list = ListOf(*lists, task);
    return list && list->find_first_not_of(" \t,") != std::string::npos;
}

void Hook_OutputFrame(const TaskEffects& effects, const HookFrame& frame) {
    const auto lists = effects.Snapshot(); // keeps the list alive while the frame runs, without a copy
    if (const std::string* list = ListOf(*lists, frame.task); list && !list->empty())
        imaging::Run_EffectChain(imaging::Frame{frame.bits, frame.width, frame.height, frame.bytesPerLine},
                                 *list, static_cast<std::uint32_t>(frame.index));
}

} // namespace morvane
