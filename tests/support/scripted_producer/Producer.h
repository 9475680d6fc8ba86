#pragma once

#include "tests/support/scripted_producer/CallLog.h"
#include "tests/support/scripted_producer/Descriptions.h"
#include "tests/support/scripted_producer/Modules.h"
#include "tests/support/scripted_producer/Plan.h"
#include "tests/support/scripted_producer/Script.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace Scripted {

/// Everything that this copy of the producer knows. One lock guards it all; no call keeps it while it waits.
class Producer {
public:
    /// Lives until the process ends: threads may be inside calls when it does.
    static Producer& Get();

    std::mutex mutex;
    std::condition_variable eventCame;
    std::condition_variable callCame;

    Script script;
    CallLog log;
    Plan plan;
    Ports ports;
    Modules modules;

    bool keepScript = false;
    bool severalSystems = false;
    uint64_t initialised = 0;
    uint64_t autoStream = 0;
    std::thread::id opener; ///< the thread of the latest GCInitLib
    int systemNumber = 0;
    int bufferNumber = 0;
    uint64_t blockNumber = 0;

    /// Script, model and log as after loading. Open handles and the count of initialisations stay.
    void Reset();

    /// The port of a module, or null where the handle is none or its kind has no port.
    Port* PortOf(const void* handle);

    /// Reads a 4-byte little-endian register of the camera that the stream belongs to.
    uint32_t RemoteNumber(const Module& stream, uint64_t address);

    /// What GCGetLastError says on the calling thread.
    void SetLastError(GenTL::GC_ERROR code, const std::string& text);
    GenTL::GC_ERROR GetLastError(const Out& out);

private:
    Producer();

    uint64_t m_epoch = 0;
};

/// What a function does when no rule replaces it. Runs with the lock held; EventGetData gives it away to
/// wait.
using Behaviour = std::function<GenTL::GC_ERROR(Producer&, const Out&, Lock&)>;

/// Logs the call, lets the script answer or spoil it, and else behaves.
GenTL::GC_ERROR Run(const Call& call, const Behaviour& behaviour);

/// Behaviour of a function that takes a handle: GC_ERR_INVALID_HANDLE unless that is an open module of class
/// T.
template <class T, class Action>
Behaviour With(const void* handle, Action action) {
    return [handle, action](Producer& producer, const Out& out, Lock&) -> GenTL::GC_ERROR {
        const auto module = producer.modules.Find<T>(handle);
        return module == nullptr ? GenTL::GC_ERR_INVALID_HANDLE : action(producer, *module, out);
    };
}

} // namespace Scripted
