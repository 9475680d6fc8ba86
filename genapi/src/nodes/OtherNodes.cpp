#include "genapi/src/nodes/OtherNodes.h"

namespace GENAPI_NAMESPACE::inside {

using GENICAM_NAMESPACE::gcstring;

namespace {

gcstring ToText(std::string_view text) {
    return gcstring(text.data(), text.size());
}

std::string_view View(const gcstring& text) {
    return {text.c_str(), text.size()};
}

/// True for "1" and "true", false for "0" and "false" in any case; nothing for other texts.
std::optional<bool> BooleanFromText(const gcstring& text) {
    const std::string_view trimmed = Trim(View(text));
    if (trimmed == "1" || EqualIgnoringCase(trimmed, "true"))
        return true;
    if (trimmed == "0" || EqualIgnoringCase(trimmed, "false"))
        return false;
    return std::nullopt;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

const auto kNoCheck = [](Engine&, const auto&) {};

} // namespace

gcstring HexText(const std::string& bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    gcstring text = "0x";
    for (const char c : bytes) {
        text += kDigits[static_cast<unsigned char>(c) >> 4];
        text += kDigits[static_cast<unsigned char>(c) & 15];
    }
    return text;
}

std::string HexBytes(const gcstring& text) {
    std::string_view digits = Trim(View(text));
    if (digits.substr(0, 2) == "0x" || digits.substr(0, 2) == "0X")
        digits.remove_prefix(2);
    std::string bytes;
    bool good = digits.size() % 2 == 0;
    for (size_t i = 0; good && i < digits.size(); i += 2) {
        const int high = HexDigit(digits[i]);
        const int low = HexDigit(digits[i + 1]);
        good = high >= 0 && low >= 0;
        if (good)
            bytes += static_cast<char>(high << 4 | low);
    }
    if (!good)
        throw INVALID_ARGUMENT_EXCEPTION("'%s' is no sequence of hexadecimal bytes.", text.c_str());
    return bytes;
}

void BooleanNode::SetValue(bool Value, bool Verify) {
    WriteChecked(Verify, [&](Engine& engine) { engine.WriteInteger(m_index, Value ? 1 : 0, Verify); });
}
IBoolean& BooleanNode::operator=(bool Value) {
    SetValue(Value, true);
    return *this;
}
bool BooleanNode::GetValue(bool Verify, bool IgnoreCache) const {
    return ReadNumberChecked(
        Verify, IgnoreCache, [](const NodeState& state) { return state.integer != 0; },
        [this](Engine& engine) { return engine.ReadInteger(m_index) != 0; }, kNoCheck);
}
bool BooleanNode::operator()() const {
    return GetValue(false, false);
}
gcstring BooleanNode::ToString(bool Verify, bool IgnoreCache) {
    return GetValue(Verify, IgnoreCache) ? "1" : "0";
}
void BooleanNode::FromString(const gcstring& ValueStr, bool Verify) {
    const auto value = BooleanFromText(ValueStr);
    if (!value)
        throw INVALID_ARGUMENT_EXCEPTION("'%s' is no value of '%s': 0, 1, true or false is needed.",
                                         ValueStr.c_str(), GetName(false).c_str());
    SetValue(*value, Verify);
}

void CommandNode::Execute(bool Verify) {
    WriteChecked(Verify, [&](Engine& engine) { engine.Execute(m_index, Verify); });
}
void CommandNode::operator()() {
    Execute(true);
}
bool CommandNode::IsDone(bool) {
    return Do([this](Engine& engine) { return engine.IsDone(m_index); });
}
gcstring CommandNode::ToString(bool Verify, bool) {
    return IsDone(Verify) ? "0" : "1";
}
void CommandNode::FromString(const gcstring& ValueStr, bool Verify) {
    if (BooleanFromText(ValueStr) != std::optional<bool>(true))
        throw INVALID_ARGUMENT_EXCEPTION("'%s' does not execute '%s': 1 or true is needed.", ValueStr.c_str(),
                                         GetName(false).c_str());
    Execute(Verify);
}

void StringNode::SetValue(const gcstring& Value, bool Verify) {
    const std::string value(Value.c_str(), Value.size());
    WriteChecked(Verify, [&](Engine& engine) { engine.WriteText(m_index, value, Verify); });
}
IString& StringNode::operator=(const gcstring& Value) {
    SetValue(Value, true);
    return *this;
}
gcstring StringNode::GetValue(bool Verify, bool IgnoreCache) {
    const std::string value = ReadChecked(
        Verify, IgnoreCache, [this](Engine& engine) { return engine.ReadText(m_index); }, kNoCheck);
    return gcstring(value.data(), value.size());
}
gcstring StringNode::operator()() {
    return GetValue(false, false);
}
gcstring StringNode::operator*() {
    return GetValue(false, false);
}
int64_t StringNode::GetMaxLength() {
    return Do([this](Engine& engine) { return engine.MaxTextLength(m_index); });
}
gcstring StringNode::ToString(bool Verify, bool IgnoreCache) {
    return GetValue(Verify, IgnoreCache);
}
void StringNode::FromString(const gcstring& ValueStr, bool Verify) {
    SetValue(ValueStr, Verify);
}

gcstring RegisterNode::ToString(bool, bool IgnoreCache) {
    return HexText(Bytes(IgnoreCache));
}
void RegisterNode::FromString(const gcstring& ValueStr, bool Verify) {
    const std::string bytes = HexBytes(ValueStr);
    WriteChecked(Verify, [&](Engine& engine) { engine.WriteBytes(m_index, bytes); });
}

IEnumEntry* EnumerationNode::EntryAt(NodeIndex entry) const {
    return dynamic_cast<IEnumEntry*>(m_map.NodeOrNull(entry));
}
void EnumerationNode::GetSymbolics(StringList_t& Symbolics) {
    Symbolics.clear();
    Do([&](Engine& engine) {
        for (const NodeIndex entry : Description().entries)
            if (engine.IsEntryAvailable(entry))
                Symbolics.push_back(ToText(engine.Node(entry).entry->symbolic));
    });
}
void EnumerationNode::GetEntries(NodeList_t& Entries) {
    Entries.clear();
    for (const NodeIndex entry : Description().entries)
        Entries.push_back(m_map.NodeAt(entry));
}
IEnumeration& EnumerationNode::operator=(const gcstring& ValueStr) {
    FromString(ValueStr, true);
    return *this;
}
void EnumerationNode::SetIntValue(int64_t Value, bool Verify) {
    WriteChecked(Verify, [&](Engine& engine) { engine.WriteInteger(m_index, Value, Verify); });
}
gcstring EnumerationNode::operator*() {
    return ToString(false, false);
}
int64_t EnumerationNode::GetIntValue(bool Verify, bool IgnoreCache) {
    return ReadNumberChecked(
        Verify, IgnoreCache, [](const NodeState& state) { return state.integer; },
        [this](Engine& engine) { return engine.ReadInteger(m_index); },
        [this](Engine& engine, int64_t value) {
            if (engine.EntryOf(m_index, value) == kNoNode)
                throw OUT_OF_RANGE_EXCEPTION("Value %lld of '%s' has no entry.",
                                             static_cast<long long>(value), GetName(false).c_str());
        });
}
IEnumEntry* EnumerationNode::GetEntryByName(const gcstring& Symbolic) {
    return Do([&](Engine& engine) { return EntryAt(engine.EntryNamed(m_index, View(Symbolic))); });
}
IEnumEntry* EnumerationNode::GetEntry(int64_t IntValue) {
    return Do([&](Engine& engine) { return EntryAt(engine.EntryOf(m_index, IntValue)); });
}
IEnumEntry* EnumerationNode::GetCurrentEntry(bool Verify, bool IgnoreCache) {
    return Do(
        [&](Engine& engine) { return EntryAt(engine.EntryOf(m_index, GetIntValue(Verify, IgnoreCache))); });
}
gcstring EnumerationNode::ToString(bool Verify, bool IgnoreCache) {
    return Do([&](Engine& engine) {
        const int64_t value = GetIntValue(Verify, IgnoreCache);
        const NodeIndex entry = engine.EntryOf(m_index, value);
        if (entry == kNoNode)
            throw RUNTIME_EXCEPTION("Value %lld of '%s' has no entry.", static_cast<long long>(value),
                                    GetName(false).c_str());
        return ToText(engine.Node(entry).entry->symbolic);
    });
}
void EnumerationNode::FromString(const gcstring& ValueStr, bool Verify) {
    WriteChecked(Verify, [&](Engine& engine) {
        const NodeIndex entry = engine.EntryNamed(m_index, Trim(View(ValueStr)));
        if (entry == kNoNode)
            throw INVALID_ARGUMENT_EXCEPTION("'%s' is no entry of '%s'.", ValueStr.c_str(),
                                             GetName(false).c_str());
        if (Verify)
            engine.RequireEntry(m_index, entry);
        engine.WriteInteger(m_index, engine.Node(entry).entry->value, Verify);
    });
}

int64_t EnumEntryNode::GetValue() {
    return Description().entry->value;
}
gcstring EnumEntryNode::GetSymbolic() const {
    return ToText(Description().entry->symbolic);
}
double EnumEntryNode::GetNumericValue() {
    return Description().entry->numericValue;
}
bool EnumEntryNode::IsSelfClearing() {
    return Description().entry->selfClearing;
}
gcstring EnumEntryNode::ToString(bool, bool) {
    return GetSymbolic();
}
void EnumEntryNode::FromString(const gcstring&, bool) {
    throw ACCESS_EXCEPTION("Node '%s' is not writable: it is an entry of an enumeration.",
                           GetName(false).c_str());
}

void CategoryNode::GetFeatures(FeatureList_t& Features) const {
    AddFeatures(Features, Description().features);
}
gcstring CategoryNode::ToString(bool, bool) {
    return GetName(false);
}
void CategoryNode::FromString(const gcstring&, bool) {
    throw ACCESS_EXCEPTION("Node '%s' is not writable: it is a category.", GetName(false).c_str());
}

void PortNode::Read(void* pBuffer, int64_t Address, int64_t Length) {
    if (!pBuffer || Length < 0)
        throw INVALID_ARGUMENT_EXCEPTION("No buffer to read from port '%s' into.", GetName(false).c_str());
    Do([&](Engine& engine) { engine.PortRead(m_index, pBuffer, {Address, Length}); });
}
void PortNode::Write(const void* pBuffer, int64_t Address, int64_t Length) {
    if (!pBuffer || Length < 0)
        throw INVALID_ARGUMENT_EXCEPTION("No bytes to write to port '%s'.", GetName(false).c_str());
    Do([&](Engine& engine) {
        engine.PortWrite(m_index, pBuffer, {Address, Length});
        engine.PortWritten(m_index, {Address, Length});
    });
}
void PortNode::SetPortImpl(IPort* pPort) {
    Do([&](Engine& engine) { engine.Connect(m_index, pPort); });
}
EYesNo PortNode::GetSwapEndianess() {
    return Description().port->swap ? Yes : No;
}
gcstring PortNode::GetChunkID() {
    return ToText(Description().port->chunkId);
}
EYesNo PortNode::CacheChunkData() {
    return Description().port->cacheChunkData ? Yes : No;
}

} // namespace GENAPI_NAMESPACE::inside
