#include "tests/support/scripted_producer/Modules.h"

namespace Scripted {

void Modules::Close(const void* handle) {
    const auto closed = Find<Module>(handle);
    if (closed == nullptr)
        return;
    std::vector<void*> children;
    for (const auto& [childHandle, child] : m_modules)
        if (child->parent == closed.get())
            children.push_back(childHandle);
    for (void* child : children)
        Close(child);
    if (const auto event = std::dynamic_pointer_cast<EventModule>(closed))
        event->unregistered = true;
    m_modules.erase(closed->handle);
}

void Modules::CloseAll() {
    while (!m_modules.empty())
        Close(m_modules.begin()->first);
}

std::string Modules::SymbolOf(const void* handle) const {
    if (handle == nullptr)
        return "null";
    const auto module = Find<Module>(handle);
    return module == nullptr ? "?" : module->symbol;
}

} // namespace Scripted
