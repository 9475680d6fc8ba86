#include "tests/support/scripted_producer/Script.h"

#include "tests/support/scripted_producer/Registers.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace Scripted {

namespace {

std::string TextOf(const char* text) {
    return text == nullptr ? std::string() : std::string(text);
}

bool QueryMatches(int query, const Out& out) {
    if (query == ZQSP_ANY_QUERY)
        return true;
    return (query == ZQSP_SIZE_QUERY) == (out.data == nullptr);
}

} // namespace

bool SymbolMatches(const std::string& symbol, const std::string& wanted) {
    const std::string source = symbol.substr(0, symbol.find('/'));
    return symbol == wanted || source == wanted || Ports::KindOf(source) == wanted;
}

Rule::Rule(uint32_t number, const ZqspRule& rule)
    : id(number), what(rule), function(TextOf(rule.function)), lastErrorText(TextOf(rule.lastErrorText)),
      m_handle(TextOf(rule.handle)), m_identifier(TextOf(rule.id)) {
    if (rule.value != nullptr) {
        const auto* bytes = static_cast<const uint8_t*>(rule.value);
        m_value.assign(bytes, bytes + rule.valueSize);
    }
}

bool Rule::Matches(const Call& call, const std::vector<std::string>& handleSymbols, bool onOpener) const {
    if (!function.empty() && function != call.function)
        return false;
    if (what.thread != ZQSP_ANY_THREAD && onOpener != (what.thread == ZQSP_OPENING_THREAD))
        return false;
    if (what.handle != nullptr &&
        std::none_of(handleSymbols.begin(), handleSymbols.end(),
                     [&](const auto& symbol) { return SymbolMatches(symbol, m_handle); }))
        return false;
    if (what.id != nullptr && (call.id == nullptr || m_identifier != call.id))
        return false;
    return (what.hasCommand == 0 || call.command == what.command) &&
           (what.hasEvent == 0 || call.event == what.event) &&
           (what.hasIndex == 0 || call.index == what.index) &&
           (what.hasAddress == 0 || call.address == what.address) && QueryMatches(what.query, call.out);
}

bool Rule::Take() {
    ++seen;
    const uint64_t first = std::max<uint64_t>(what.firstCall, 1);
    return seen >= first && (what.calls == 0 || seen - first < what.calls);
}

void Rule::Hold(Lock& lock) {
    if (m_released)
        return;
    ++m_held;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return m_released; });
    --m_held;
}

bool Rule::WaitHeld(Lock& lock, uint32_t count, uint32_t timeoutMs) {
    return m_changed.wait_for(lock, std::chrono::milliseconds(timeoutMs), [&] { return m_held >= count; });
}

void Rule::Release() {
    m_released = true;
    m_changed.notify_all();
}

bool Rule::ReplacesBehaviour() const {
    const bool fails = what.hasResult != 0 && what.result != GenTL::GC_ERR_SUCCESS;
    return what.alsoRuns == 0 && (fails || what.hasValue != 0);
}

void Rule::WriteOutputs(const Out& out) const {
    if (what.hasValue != 0) {
        const size_t capacity =
            out.fixedSize != 0 ? out.fixedSize : (out.size == nullptr ? 0 : *out.size * out.unit);
        if (out.data != nullptr && !m_value.empty())
            std::memcpy(out.data, m_value.data(), std::min(capacity, m_value.size()));
        if (out.size != nullptr)
            *out.size = m_value.size() / out.unit;
    }
    const size_t written =
        out.fixedSize != 0 ? out.fixedSize : (out.size == nullptr ? 0 : *out.size * out.unit);
    if (what.garbled != 0 && out.data != nullptr)
        std::memset(out.data, 0xFF, written);
    if (what.unterminated != 0 && out.data != nullptr && out.size != nullptr && *out.size > 0)
        static_cast<char*>(out.data)[*out.size * out.unit - 1] = 'x';
    if (what.hasSize != 0 && out.size != nullptr)
        *out.size = what.size;
    if (what.hasType != 0 && out.type != nullptr)
        *out.type = what.type;
}

uint32_t Script::Add(const ZqspRule& rule) {
    m_rules.insert(m_rules.begin(), std::make_shared<Rule>(++m_lastId, rule));
    return m_lastId;
}

void Script::Clear() {
    for (const auto& rule : m_rules)
        rule->Release();
    m_rules.clear();
}

std::shared_ptr<Rule> Script::Find(uint32_t id) const {
    const auto rule = std::find_if(m_rules.begin(), m_rules.end(),
                                   [id](const auto& candidate) { return candidate->id == id; });
    return rule == m_rules.end() ? nullptr : *rule;
}

std::shared_ptr<Rule> Script::Take(const Call& call, const std::vector<std::string>& handleSymbols,
                                   bool onOpener) {
    std::shared_ptr<Rule> answering;
    for (const auto& rule : m_rules) {
        if (rule->Matches(call, handleSymbols, onOpener) && rule->Take() && answering == nullptr)
            answering = rule;
    }
    return answering;
}

} // namespace Scripted
