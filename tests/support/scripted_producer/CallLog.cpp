#include "tests/support/scripted_producer/CallLog.h"

#include "tests/support/scripted_producer/Control.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace Scripted {

namespace {

struct Balance {
    const char* kind;
    const char* function;
    bool opens;
};

constexpr Balance balances[] = {
    {"LIB", "GCInitLib", true},
    {"LIB", "GCCloseLib", false},
    {"TL", "TLOpen", true},
    {"TL", "TLClose", false},
    {"IF", "TLOpenInterface", true},
    {"IF", "IFClose", false},
    {"DEV", "IFOpenDevice", true},
    {"DEV", "DevClose", false},
    {"DS", "DevOpenDataStream", true},
    {"DS", "DSClose", false},
    {"BUF", "DSAnnounceBuffer", true},
    {"BUF", "DSAllocAndAnnounceBuffer", true},
    {"BUF", "DSRevokeBuffer", false},
    {"EVENT", "GCRegisterEvent", true},
    {"EVENT", "GCUnregisterEvent", false},
};

constexpr size_t bytesShown = 16;

std::string Hex(const void* bytes, size_t size) {
    if (bytes == nullptr)
        return "null";
    if (size > bytesShown)
        return "[" + std::to_string(size) + "]";
    std::string text;
    for (size_t i = 0; i < size; ++i) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<const uint8_t*>(bytes)[i]);
        text += digits;
    }
    return text;
}

std::string Show(const Call::Argument& argument) {
    using Kind = Call::Argument::Kind;
    switch (argument.kind) {
    case Kind::Number:
        return argument.isSigned ? std::to_string(static_cast<int64_t>(argument.number))
                                 : std::to_string(argument.number);
    case Kind::Hex: {
        char text[24];
        std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(argument.number));
        return text;
    }
    case Kind::Text:
        return argument.pointer == nullptr ? "null" : static_cast<const char*>(argument.pointer);
    case Kind::Bytes:
        return Hex(argument.pointer, argument.number);
    case Kind::Handle:
        break;
    }
    return "null";
}

} // namespace

uint64_t CallLog::At(const Counts& counts, const std::string& key) {
    const auto found = counts.find(key);
    return found == counts.end() ? 0 : found->second;
}

uint64_t CallLog::Add(const Call& call, const std::vector<std::string>& handleSymbols, bool onOpener) {
    ++m_counts[call.function];
    ++m_lastNumber;
    if (m_left.count(call.function) != 0)
        return m_lastNumber;
    std::string text = std::string(call.function) + "(";
    auto symbol = handleSymbols.begin();
    for (const auto& argument : call.arguments) {
        if (&argument != &call.arguments.front())
            text += ", ";
        text += argument.kind == Call::Argument::Kind::Handle ? *symbol++ : Show(argument);
    }
    m_lines.push_back({m_lastNumber, call.function, onOpener, text + ")"});
    return m_lastNumber;
}

void CallLog::Finish(uint64_t number, const Call& call, GenTL::GC_ERROR result) {
    if (result != GenTL::GC_ERR_SUCCESS) {
        const auto line =
            std::lower_bound(m_lines.begin(), m_lines.end(), number,
                             [](const Line& each, uint64_t wanted) { return each.number < wanted; });
        if (line != m_lines.end() && line->number == number)
            line->text += " = " + std::to_string(result);
        return;
    }
    for (const auto& balance : balances)
        if (std::strcmp(balance.function, call.function) == 0)
            ++(balance.opens ? m_opened : m_closed)[balance.kind];
}

void CallLog::Reset() {
    m_lines.clear();
    m_left.clear();
    m_counts.clear();
    m_opened.clear();
    m_closed.clear();
}

template <class Wanted>
std::string CallLog::Lines(Wanted wanted) const {
    std::string text;
    for (const auto& line : m_lines) {
        if (!wanted(line))
            continue;
        if (!text.empty())
            text += "\n";
        text += line.text;
    }
    return text;
}

std::string CallLog::Text(const std::string& function) const {
    return Lines([&](const Line& line) { return function.empty() || function == line.function; });
}

std::string CallLog::TextOfThreads(int threads) const {
    return Lines([&](const Line& line) {
        return threads == ZQSP_ANY_THREAD || line.onOpener == (threads == ZQSP_OPENING_THREAD);
    });
}

std::string CallLog::LineText(uint64_t number) const {
    return Lines([&](const Line& line) { return line.number == number; });
}

} // namespace Scripted
