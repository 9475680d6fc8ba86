#include "tests/faults/Runs.h"

#include <gtest/gtest.h>

#include <iostream>
#include <thread>

#include "tests/support/AllocationFailure.h"

namespace ZqTest {

namespace {

// No answer of a producer may make the library allocate more; nothing that it needs is near it.
constexpr size_t largestAllocation = 64u << 20;

/// The threads of a process that has had others: a sanitizer starts one of its own beside the first.
size_t LastingThreads() {
    std::thread([] {}).join();
    return ThreadCount();
}

uint64_t AllocationsOf(const Outcome& outcome) {
    const size_t inside = std::string().capacity();
    uint64_t count = 0;
    for (const std::string* text :
         {&outcome.step, &outcome.locksHeld, &outcome.failure.kind, &outcome.failure.text,
          &outcome.failure.function, &outcome.inCallback.kind, &outcome.inCallback.text,
          &outcome.inCallback.function})
        count += text->capacity() > inside ? 1 : 0;
    return count;
}

} // namespace

LeftOpen LeftOpenBy(const std::string& function) {
    static const std::map<std::string, LeftOpen> leftOpen = {
        {"GCCloseLib", {"LIB", 1}},
        {"TLClose", {"TL", 1}},
        {"IFClose", {"IF", 1}},
        {"DevClose", {"DEV", 1}},
        {"DSClose", {"DS", 1}},
        {"DSRevokeBuffer", {"BUF", 1}},
        // Buffers that are still queued can't be revoked; they go with their stream.
        {"DSFlushQueue", {"BUF", 2}},
        {"GCUnregisterEvent", {"EVENT", 1}},
    };
    const auto found = leftOpen.find(function);
    return found == leftOpen.end() ? LeftOpen() : found->second;
}

Runs::Runs(const Way& way, const std::string& variant)
    : m_Way(way), m_pProducer(std::make_unique<ScriptedProducer>(variant)),
      m_ThreadsBefore(LastingThreads()) {
    ZqApiInitialize(ZqApiBuildVersion);
}

Runs::~Runs() {
    ZqApiTerminate();
    std::cout << m_Way.name << ": " << m_Runs << " runs, " << m_Faults << " of them with a fault\n";
}

Outcome Runs::Run(const std::string& what, const std::function<void()>& arrange,
                  const std::function<LeftOpen()>& leftOpen) {
    Producer().Resolve<decltype(&Zqsp_Reset)>("Zqsp_Reset")();
    Producer().Resolve<decltype(&Zqsp_KeepScript)>("Zqsp_KeepScript")(1);
    ++m_Runs;
    Outcome outcome;
    uint64_t live = LiveAllocations();
    {
        Scenario scenario(m_Way, Producer());
        scenario.patienceMs = patienceMs;
        scenario.onStep = onStep;
        scenario.Prepare();
        const AllocationLimit limit(largestAllocation);
        const uint64_t before = LiveAllocations();
        if (arrange)
            arrange();
        live += LiveAllocations() - before; // what the caller keeps
        outcome = scenario.Run();
    }
    // The first runs build what there is once in a process.
    if (m_Runs > 2) {
        EXPECT_EQ(LiveAllocations() - AllocationsOf(outcome), live)
            << m_Way.name << ", " << what << ": memory is left";
    }
    Check(what, outcome, leftOpen ? leftOpen() : LeftOpen());
    return outcome;
}

void Runs::Check(const std::string& what, const Outcome& outcome, const LeftOpen& leftOpen) const {
    for (const char* const kind : {"LIB", "TL", "IF", "DEV", "DS", "BUF", "EVENT"}) {
        if (!looksAtWhatIsOpen)
            break;
        const uint64_t left = leftOpen.kind == kind ? leftOpen.count : 0;
        EXPECT_EQ(Producer().Opened(kind), Producer().Closed(kind) + left)
            << m_Way.name << ", " << what << ": " << kind << " left open";
    }
    EXPECT_EQ(ThreadCount(), m_ThreadsBefore) << m_Way.name << ", " << what << ": threads left running";
    EXPECT_EQ(outcome.locksHeld, "") << m_Way.name << ", " << what << ": locks left taken";
}

void Runs::RunHealthy(const std::string& after) {
    const std::string what = "healthy run after " + after;
    EXPECT_EQ(JudgeHealthy(m_Way, Run(what)), "") << m_Way.name << ", " << what;
}

Runs::Recorded Runs::Record() {
    Recorded recorded;
    std::vector<size_t> begins;
    std::vector<size_t> beginsOfThreads;
    uint64_t before = 0;
    const auto endStep = [&] {
        if (!recorded.steps.empty())
            recorded.allocations[recorded.steps.back()] = AllocationCountOfThisThread() - before;
    };
    onStep = [&](const char* step) {
        endStep();
        begins.push_back(CallsOf(Producer(), true).size());
        beginsOfThreads.push_back(CallsOf(Producer(), false).size());
        if (*step == '\0')
            return;
        recorded.steps.emplace_back(step);
        before = AllocationCountOfThisThread();
    };
    RunHealthy("nothing");
    onStep = nullptr;
    for (const std::string& call : CallsOf(Producer(), true))
        recorded.calls.push_back(WithoutResult(call));
    recorded.threadCalls = CallsOf(Producer(), false);
    for (size_t step = 0; step < recorded.steps.size(); ++step) {
        recorded.stepOfCall.resize(begins[step + 1], recorded.steps[step]);
        recorded.stepOfThreadCall.resize(beginsOfThreads[step + 1], recorded.steps[step]);
    }
    return recorded;
}

} // namespace ZqTest
