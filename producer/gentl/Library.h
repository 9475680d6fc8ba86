#pragma once

#include "producer/gentl/SystemModule.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace zqgentl {

/// The state of the process between GCInitLib and GCCloseLib. Any thread may call any member.
class Library {
public:
    static void Init();
    /// Closes whatever is open; every thread of the library has ended when it returns.
    static void Close();
    /// Throws GC_ERR_NOT_INITIALIZED outside Init and Close.
    static void RequireInitialised();

    [[nodiscard]] static void* OpenSystem();
    static void CloseSystem(void* handle);

private:
    struct State {
        std::mutex lock;
        std::atomic<bool> initialised{false};
        std::shared_ptr<Inventory> inventory;
        std::shared_ptr<SystemModule> system;
    };
    [[nodiscard]] static State& Instance();
};

} // namespace zqgentl
