#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/faults/Fault.h"
#include "tests/faults/Outcomes.h"
#include "tests/faults/Scenario.h"

namespace ZqTest {

/// Objects that stay open because the call that closes them was made to fail.
struct LeftOpen {
    std::string kind;
    uint64_t count = 0;
};

/// What stays open when that function fails once.
LeftOpen LeftOpenBy(const std::string& function);

/// Runs scenarios on one variant of the producer, each on a fresh script, and looks after each for what it
/// left behind. Ends with the figures on the standard output.
class Runs {
public:
    explicit Runs(const Way& way, const std::string& variant = "full");
    ~Runs();
    Runs(const Runs&) = delete;
    Runs& operator=(const Runs&) = delete;

    /// One scenario; `arrange` is called when its script is fresh, `leftOpen` tells afterwards what the
    /// producer would not close.
    Outcome Run(const std::string& what, const std::function<void()>& arrange = {},
                const std::function<LeftOpen()>& leftOpen = {});
    /// One that must go well.
    void RunHealthy(const std::string& after);

    /// Steps and calls of a healthy run.
    struct Recorded {
        std::vector<std::string> calls;            ///< of the application's thread
        std::vector<std::string> threadCalls;      ///< of the library's threads, with their results
        std::vector<std::string> stepOfCall;       ///< for `calls`
        std::vector<std::string> stepOfThreadCall; ///< for `threadCalls`: that in which they began
        std::vector<std::string> steps;
        std::map<std::string, uint64_t> allocations; ///< in each step, on the application's thread
    };
    Recorded Record();

    void CountFault() { ++m_Faults; }
    [[nodiscard]] const Way& GetWay() const { return m_Way; }
    [[nodiscard]] const ScriptedProducer& Producer() const { return *m_pProducer; }

    uint32_t patienceMs = usualPatienceMs;
    bool looksAtWhatIsOpen = true;
    /// Called at each step of the next runs.
    std::function<void(const char*)> onStep;

private:
    void Check(const std::string& what, const Outcome& outcome, const LeftOpen& leftOpen) const;

    const Way& m_Way;
    std::unique_ptr<ScriptedProducer> m_pProducer;
    size_t m_ThreadsBefore;
    uint64_t m_Runs = 0;
    uint64_t m_Faults = 0;
};

} // namespace ZqTest
