#pragma once

#include "producer/sim/Failure.h"
#include "producer/sim/RegisterMap.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>

namespace zqgentl {

/// How long a search for interfaces or devices takes, and how long the command of the node map waits for it.
class UpdateTimes {
public:
    /// The search. GC_ERR_TIMEOUT, after that time, when it takes longer than is waited for it.
    void Search(uint64_t timeoutMs) const {
        const auto takes = static_cast<uint64_t>(searchMs.load());
        std::this_thread::sleep_for(std::chrono::milliseconds(std::min(takes, timeoutMs)));
        if (takes > timeoutMs)
            throw Failure(GenTL::GC_ERR_TIMEOUT,
                          "the search takes longer than " + std::to_string(timeoutMs) + " ms");
    }

    std::atomic<int64_t> searchMs{0};
    std::atomic<int64_t> commandTimeoutMs{1000};
};

inline int64_t TimeUpTo(int64_t maxMs, const RegisterValue& value) {
    const int64_t time = std::get<int64_t>(value);
    if (time > maxMs)
        throw Failure(GenTL::GC_ERR_INVALID_VALUE,
                      std::to_string(time) + " ms are more than " + std::to_string(maxMs));
    return time;
}

/// The registers of any module that has a list: the command that updates it, and the times of that.
template <class Module>
constexpr RegisterRow<Module> updateRows[] = {
    // A command that is done as soon as it is written, so it always reads as done. A port has no time-outs.
    {0x0400, 4, RegisterKind::Integer, [](const Module&) { return RegisterValue(int64_t{0}); },
     [](Module& module, const RegisterValue&) {
         try {
             module.UpdateList(static_cast<uint64_t>(module.Times().commandTimeoutMs.load()));
         } catch (const Failure& failure) {
             throw Failure(GenTL::GC_ERR_IO, failure.what());
         }
     }},
    {0x0420, 4, RegisterKind::Integer,
     [](const Module& module) { return RegisterValue(module.Times().commandTimeoutMs.load()); },
     [](Module& module, const RegisterValue& value) {
         module.Times().commandTimeoutMs = TimeUpTo(3'600'000, value);
     }},
    {0x0424, 4, RegisterKind::Integer,
     [](const Module& module) { return RegisterValue(module.Times().searchMs.load()); },
     [](Module& module, const RegisterValue& value) { module.Times().searchMs = TimeUpTo(10'000, value); }},
};

} // namespace zqgentl
