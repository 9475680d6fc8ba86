#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/support/ScriptedProducer.h"

namespace ZqTest {

/// How much of a series of faults a test takes: all where the environment has ZQAPI_EVERY_FAULT, else what is
/// usual, or samples in builds in which everything takes several times as long.
template <class T>
T Amount(T everything, T usual, T samples) {
    if (std::getenv("ZQAPI_EVERY_FAULT") != nullptr)
        return everything;
#ifdef ZQAPI_SLOWED_DOWN
    (void)usual;
    return samples;
#else
    (void)samples;
    return usual;
#endif
}

/// What goes wrong with one call: a result, and what is done to the outputs of a call that succeeds.
struct Fault {
    const char* name;
    GenTL::GC_ERROR result;
    size_t size; ///< reported in place of the true one, see `hasSize`
    bool hasSize;
    int unwritten; ///< ZQSP_NO_DATA, ...
    bool unterminated;
    bool garbled = false; ///< every bit of the answer is set
    int32_t type = 0;     ///< reported in place of the true one, unless 0
    [[nodiscard]] bool IsFailure() const { return result != GenTL::GC_ERR_SUCCESS; }
};

/// Which call a fault is for: the n-th on the thread that opened the library, or the n-th of a function on
/// the others.
struct Target {
    bool onOpener;
    std::string function; ///< empty: of any
    std::string handle;   ///< symbol of a handle that the call has; empty: any
    uint64_t number;
    bool andAllAfter = false;
};

/// The text that the producer has for each failure.
constexpr const char* scriptedText = "scripted failure";

/// A fault in the producer's script while it lives there.
class PlacedFault {
public:
    PlacedFault(const ScriptedProducer& producer, const Target& target, const Fault& fault, bool alsoRuns);
    /// The call that had it, as in the log; empty when there was none.
    [[nodiscard]] std::string Answered() const;

private:
    const ScriptedProducer& m_Producer;
    uint32_t m_Rule;
};

/// The calls of the opening thread, or of the others; a failed one ends with " = " and its code.
std::vector<std::string> CallsOf(const ScriptedProducer& producer, bool onOpener);

/// "DSClose(DS1)" of "DSClose(DS1) = -1001".
std::string WithoutResult(const std::string& call);

/// Where to find each of the calls that were made on the library's threads in another run. Which of the
/// threads is first is up to them, so EventGetData is counted for each event.
std::vector<Target> TargetsOfThreads(const std::vector<std::string>& calls);

/// "DSClose" of "DSClose(DS1) = -1001".
std::string FunctionOf(const std::string& call);

} // namespace ZqTest
