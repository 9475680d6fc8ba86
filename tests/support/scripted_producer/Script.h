#pragma once

#include "tests/support/scripted_producer/Call.h"
#include "tests/support/scripted_producer/Control.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Scripted {

using Lock = std::unique_lock<std::mutex>;

/// One rule with its own copies of the texts, and the latch of the calls that it holds.
class Rule {
public:
    Rule(uint32_t id, const ZqspRule& rule);

    [[nodiscard]] bool Matches(const Call& call, const std::vector<std::string>& handleSymbols,
                               bool onOpener) const;

    /// Counts a matching call; true when the rule answers this one.
    bool Take();

    /// Waits until the rule is released, with the lock given away meanwhile.
    void Hold(Lock& lock);
    bool WaitHeld(Lock& lock, uint32_t count, uint32_t timeoutMs);
    void Release();

    /// Writes what the rule says of the outputs.
    void WriteOutputs(const Out& out) const;

    [[nodiscard]] bool ReplacesBehaviour() const;

    const uint32_t id;
    ZqspRule what;
    const std::string function;
    const std::string lastErrorText;
    uint64_t seen = 0;
    /// The latest call that it answered, as the log has it.
    std::string answered;

private:
    std::string m_handle;
    std::string m_identifier;
    std::vector<uint8_t> m_value;
    uint32_t m_held = 0;
    bool m_released = false;
    std::condition_variable m_changed;
};

/// The rules of the test, the newest first.
class Script {
public:
    ~Script() { Clear(); }

    uint32_t Add(const ZqspRule& rule);
    void Clear();
    [[nodiscard]] std::shared_ptr<Rule> Find(uint32_t id) const;

    /// The rule that answers this call, or null.
    std::shared_ptr<Rule> Take(const Call& call, const std::vector<std::string>& handleSymbols,
                               bool onOpener);

private:
    uint32_t m_lastId = 0;
    std::vector<std::shared_ptr<Rule>> m_rules;
};

/// True when the symbol is the named module, one of the named kind, or an event of such a module.
bool SymbolMatches(const std::string& symbol, const std::string& wanted);

} // namespace Scripted
