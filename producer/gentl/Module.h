#pragma once

#include "producer/gentl/Event.h"
#include "producer/gentl/HandleRegistry.h"
#include "producer/gentl/Port.h"

#include <map>
#include <memory>
#include <mutex>

namespace zqgentl {

/// What system, interface, device, stream and buffer have in common: a handle, perhaps a port, and events.
/// Any thread may call any member.
class Module : public Object {
public:
    explicit Module(Kind moduleKind) : m_moduleKind(moduleKind) {}
    ~Module() override;

    [[nodiscard]] void* Handle() const noexcept { return m_handle; }
    /// Gives the module its handle, once, before any other thread knows it.
    void SetHandle(void* handle) noexcept { m_handle = handle; }
    [[nodiscard]] Kind ModuleKind() const noexcept { return m_moduleKind; }

    /// The module's own register space; GC_ERR_NOT_IMPLEMENTED when it has none.
    [[nodiscard]] virtual const Port& ModulePort() const;

    [[nodiscard]] void* RegisterEvent(GenTL::EVENT_TYPE type);
    void UnregisterEvent(GenTL::EVENT_TYPE type);
    void UnregisterEvents();
    /// Queues the event if anybody registered for it; else it is lost.
    void Fire(const EventData& data) { Fire(data.type, data.ToBytes()); }
    void Fire(GenTL::EVENT_TYPE type, std::string bytes);

protected:
    /// The event object for a new registration; GC_ERR_NOT_IMPLEMENTED when the module has no such event.
    [[nodiscard]] virtual std::shared_ptr<Event> MakeEvent(GenTL::EVENT_TYPE type);

private:
    struct Registration {
        void* handle;
        std::shared_ptr<Event> event;
    };

    const Kind m_moduleKind;
    void* m_handle = nullptr;
    std::mutex m_eventLock;
    std::map<GenTL::EVENT_TYPE, Registration> m_events;
};

/// Makes an object known under a new handle and returns it.
template <class T>
std::shared_ptr<T> Publish(std::shared_ptr<T> module) {
    module->SetHandle(HandleRegistry::Instance().Add(T::kind, module));
    return module;
}

} // namespace zqgentl
