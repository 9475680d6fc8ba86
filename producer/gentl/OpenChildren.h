#pragma once

#include "producer/gentl/Module.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace zqgentl {

/// The modules that are open below another one, by ID. Each can be open once.
template <class Child>
class OpenChildren {
public:
    /// Opens a child and returns its handle; GC_ERR_RESOURCE_IN_USE while it is open.
    template <class Make>
    [[nodiscard]] void* Open(const std::string& id, Make make) {
        std::lock_guard<std::mutex> guard(m_lock);
        if (m_closed)
            throw Failure(GenTL::GC_ERR_INVALID_HANDLE, "the parent of '" + id + "' has been closed");
        if (m_open.count(id) != 0)
            throw Failure(GenTL::GC_ERR_RESOURCE_IN_USE, "'" + id + "' is open already");
        std::shared_ptr<Child>& child = m_open[id];
        try {
            child = Publish<Child>(make());
        } catch (...) {
            m_open.erase(id);
            throw;
        }
        return child->Handle();
    }

    /// To be called by a child at the end of its closing.
    void Forget(const Child& child) {
        std::lock_guard<std::mutex> guard(m_lock);
        for (auto open = m_open.begin(); open != m_open.end(); ++open) {
            if (open->second.get() == &child) {
                m_open.erase(open);
                return;
            }
        }
    }

    /// Closes every child, as if by its handle, and lets no other be opened.
    void CloseAll() {
        std::map<std::string, std::shared_ptr<Child>> closing;
        {
            std::lock_guard<std::mutex> guard(m_lock);
            m_closed = true;
            closing.swap(m_open);
        }
        for (auto& [id, child] : closing) {
            if (HandleRegistry::Instance().Remove(Child::kind, child->Handle()))
                child->Close();
        }
    }

    template <class Visit>
    void ForEach(Visit visit) {
        std::lock_guard<std::mutex> guard(m_lock);
        for (auto& [id, child] : m_open)
            visit(*child);
    }

private:
    std::mutex m_lock;
    bool m_closed = false;
    std::map<std::string, std::shared_ptr<Child>> m_open;
};

/// Closes a module by its handle.
template <class T>
void CloseModule(void* handle) {
    HandleRegistry& registry = HandleRegistry::Instance();
    const auto module = registry.Get<T>(handle);
    if (!registry.Remove(T::kind, handle))
        throw Failure(GenTL::GC_ERR_INVALID_HANDLE, "another thread is closing this handle");
    module->Close();
}

} // namespace zqgentl
