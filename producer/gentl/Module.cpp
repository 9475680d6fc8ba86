#include "producer/gentl/Module.h"

#include "producer/sim/Failure.h"

namespace zqgentl {

Module::~Module() {
    UnregisterEvents();
}

const Port& Module::ModulePort() const {
    throw Failure(GenTL::GC_ERR_NOT_IMPLEMENTED, "this module has no port");
}

std::shared_ptr<Event> Module::MakeEvent(GenTL::EVENT_TYPE type) {
    const bool known = type == GenTL::EVENT_ERROR || type == GenTL::EVENT_MODULE;
    if (!known)
        throw Failure(GenTL::GC_ERR_NOT_IMPLEMENTED,
                      "this module has no events of type " + std::to_string(type));
    return std::make_shared<QueuedEvent>(type);
}

void* Module::RegisterEvent(GenTL::EVENT_TYPE type) {
    std::lock_guard<std::mutex> guard(m_eventLock);
    if (m_events.count(type) != 0)
        throw Failure(GenTL::GC_ERR_RESOURCE_IN_USE, "this event is registered already");
    std::shared_ptr<Event> event = MakeEvent(type);
    Registration& registration = m_events[type];
    registration = {nullptr, event};
    try {
        registration.handle = HandleRegistry::Instance().Add(Kind::Event, event);
    } catch (...) {
        m_events.erase(type);
        throw;
    }
    return registration.handle;
}

void Module::UnregisterEvent(GenTL::EVENT_TYPE type) {
    std::lock_guard<std::mutex> guard(m_eventLock);
    const auto found = m_events.find(type);
    if (found == m_events.end())
        throw Failure(GenTL::GC_ERR_NOT_INITIALIZED, "this event is not registered");
    HandleRegistry::Instance().Remove(Kind::Event, found->second.handle);
    found->second.event->Close();
    m_events.erase(found);
}

void Module::UnregisterEvents() {
    std::lock_guard<std::mutex> guard(m_eventLock);
    for (auto& [type, registration] : m_events) {
        HandleRegistry::Instance().Remove(Kind::Event, registration.handle);
        registration.event->Close();
    }
    m_events.clear();
}

void Module::Fire(GenTL::EVENT_TYPE type, std::string bytes) {
    std::lock_guard<std::mutex> guard(m_eventLock);
    const auto found = m_events.find(type);
    // Only queued events are fired by their module; new buffers come from the stream's own queue.
    if (found != m_events.end())
        static_cast<QueuedEvent&>(*found->second.event).Fire(std::move(bytes));
}

} // namespace zqgentl
