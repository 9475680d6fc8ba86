#include "tests/faults/Fault.h"

#include <map>
#include <sstream>

namespace ZqTest {

namespace {

/// The text of a control function that takes a buffer and says how large it must be.
template <class Ask>
std::string TextFrom(Ask ask) {
    std::string text;
    for (size_t needed = ask(nullptr, 0); text.size() < needed;) {
        text.resize(needed);
        needed = ask(text.data(), text.size());
    }
    return text.c_str();
}

} // namespace

PlacedFault::PlacedFault(const ScriptedProducer& producer, const Target& target, const Fault& fault,
                         bool alsoRuns)
    : m_Producer(producer) {
    ZqspRule rule{};
    rule.function = target.function.c_str();
    rule.thread = target.onOpener ? ZQSP_OPENING_THREAD : ZQSP_OTHER_THREADS;
    rule.handle = target.handle.empty() ? nullptr : target.handle.c_str();
    rule.firstCall = target.number;
    rule.calls = target.andAllAfter ? 0 : 1;
    rule.hasResult = fault.IsFailure() ? 1 : 0;
    rule.result = fault.result;
    rule.alsoRuns = alsoRuns ? 1 : 0;
    rule.lastErrorText = fault.IsFailure() ? scriptedText : nullptr;
    rule.hasSize = fault.hasSize ? 1 : 0;
    rule.size = fault.size;
    rule.unwritten = fault.unwritten;
    rule.unterminated = fault.unterminated ? 1 : 0;
    rule.garbled = fault.garbled ? 1 : 0;
    rule.hasType = fault.type != 0 ? 1 : 0;
    rule.type = fault.type;
    m_Rule = producer.Resolve<decltype(&Zqsp_AddRule)>("Zqsp_AddRule")(&rule);
}

std::string PlacedFault::Answered() const {
    const auto answered = m_Producer.Resolve<decltype(&Zqsp_Answered)>("Zqsp_Answered");
    return TextFrom([&](char* text, size_t capacity) { return answered(m_Rule, text, capacity); });
}

std::vector<std::string> CallsOf(const ScriptedProducer& producer, bool onOpener) {
    const auto log = producer.Resolve<decltype(&Zqsp_LogOfThreads)>("Zqsp_LogOfThreads");
    std::istringstream text(TextFrom([&](char* to, size_t capacity) {
        return log(onOpener ? ZQSP_OPENING_THREAD : ZQSP_OTHER_THREADS, to, capacity);
    }));
    std::vector<std::string> calls;
    for (std::string line; std::getline(text, line);)
        calls.push_back(line);
    return calls;
}

std::string WithoutResult(const std::string& call) {
    return call.substr(0, call.find(" = "));
}

std::vector<Target> TargetsOfThreads(const std::vector<std::string>& calls) {
    std::map<std::string, uint64_t> counts;
    std::vector<Target> targets;
    for (const std::string& call : calls) {
        Target target{false, FunctionOf(call), {}, 0};
        if (target.function == "EventGetData") {
            const size_t begin = target.function.size() + 1;
            target.handle = call.substr(begin, call.find(',') - begin);
        }
        target.number = ++counts[target.function + target.handle];
        targets.push_back(target);
    }
    return targets;
}

std::string FunctionOf(const std::string& call) {
    return call.substr(0, call.find('('));
}

} // namespace ZqTest
