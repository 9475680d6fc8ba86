#include "genapi/src/nodes/NumberNodes.h"

#include "genapi/src/nodes/NumberText.h"

namespace GENAPI_NAMESPACE::inside {

using GENICAM_NAMESPACE::gcstring;

namespace {

std::string_view View(const gcstring& text) {
    return {text.c_str(), text.size()};
}

/// The node that a value comes from now, one step down; kNoNode at the end.
NodeIndex Below(Engine& engine, NodeIndex node) {
    const SourcePart* source = engine.Node(node).source.Find();
    if (!source || !engine.Node(node).error.empty())
        return kNoNode;
    if (source->form != SourcePart::Form::Table)
        return source->node;
    const TableEntry* entry = engine.IsReadableNode(source->index) ? engine.CurrentEntry(*source) : nullptr;
    return entry ? entry->node : kNoNode;
}

} // namespace

Display DisplayOf(Engine& engine, NodeIndex node) {
    Display display;
    std::optional<ERepresentation> representation;
    std::optional<EDisplayNotation> notation;
    std::optional<int64_t> precision;
    constexpr int kMaxSteps = 32;
    for (int i = 0; i < kMaxSteps && node != kNoNode; ++i, node = Below(engine, node)) {
        const DisplayPart* part = engine.Node(node).display.Find();
        if (!part)
            break;
        if (display.unit.empty())
            display.unit = part->unit.Copy();
        representation = representation ? representation : part->representation;
        notation = notation ? notation : part->notation;
        precision = precision ? precision : part->precision;
    }
    display.representation = representation.value_or(display.representation);
    display.notation = notation.value_or(display.notation);
    display.precision = precision.value_or(display.precision);
    return display;
}

void IntegerNode::SetValue(int64_t Value, bool Verify) {
    WriteChecked(Verify, [&](Engine& engine) { engine.WriteInteger(m_index, Value, Verify); });
}
IInteger& IntegerNode::operator=(int64_t Value) {
    SetValue(Value, true);
    return *this;
}
int64_t IntegerNode::GetValue(bool Verify, bool IgnoreCache) {
    return ReadNumberChecked(
        Verify, IgnoreCache, [](const NodeState& state) { return state.integer; },
        [this](Engine& engine) { return engine.ReadInteger(m_index); },
        [this](Engine& engine, int64_t value) { engine.CheckRange(m_index, value); });
}
int64_t IntegerNode::operator()() {
    return GetValue(false, false);
}
int64_t IntegerNode::operator*() {
    return GetValue(false, false);
}
int64_t IntegerNode::GetMin() {
    return Do([this](Engine& engine) { return engine.Min(m_index).AsInteger(); });
}
int64_t IntegerNode::GetMax() {
    return Do([this](Engine& engine) { return engine.Max(m_index).AsInteger(); });
}
EIncMode IntegerNode::GetIncMode() {
    return Do([this](Engine& engine) {
        return engine.ValidValues(m_index).empty() ? fixedIncrement : listIncrement;
    });
}
int64_t IntegerNode::GetInc() {
    return Do([this](Engine& engine) { return engine.Increment(m_index); });
}
int64_autovector_t IntegerNode::GetListOfValidValues(bool bounded) {
    return Do([&](Engine& engine) {
        std::vector<int64_t> values;
        for (const int64_t value : engine.ValidValues(m_index))
            if (!bounded ||
                (value >= engine.Min(m_index).AsInteger() && value <= engine.Max(m_index).AsInteger()))
                values.push_back(value);
        return int64_autovector_t(std::move(values));
    });
}
ERepresentation IntegerNode::GetRepresentation() {
    return Do([this](Engine& engine) { return DisplayOf(engine, m_index).representation; });
}
gcstring IntegerNode::GetUnit() {
    return Do([this](Engine& engine) { return gcstring(DisplayOf(engine, m_index).unit.c_str()); });
}
void IntegerNode::ImposeMin(int64_t Value) {
    Do([&](Engine& engine) { engine.ImposeMin(m_index, Number::Of(Value)); });
}
void IntegerNode::ImposeMax(int64_t Value) {
    Do([&](Engine& engine) { engine.ImposeMax(m_index, Number::Of(Value)); });
}
gcstring IntegerNode::ToString(bool Verify, bool IgnoreCache) {
    return Do([&](Engine& engine) {
        const int64_t value = GetValue(Verify, IgnoreCache);
        const ERepresentation representation = DisplayOf(engine, m_index).representation;
        NodeIndex last = m_index;
        constexpr int kMaxSteps = 32;
        for (int i = 0; i < kMaxSteps; ++i) {
            const NodeIndex next = Below(engine, last);
            if (next == kNoNode)
                break;
            last = next;
        }
        const bool isRegister = engine.Node(last).reg && engine.Node(last).error.empty();
        const int bits = isRegister ? static_cast<int>(8 * engine.Locate(last).length) : 64;
        return gcstring(IntegerText(value, representation, bits).c_str());
    });
}
void IntegerNode::FromString(const gcstring& ValueStr, bool Verify) {
    SetValue(IntegerFromText(View(ValueStr), GetName(false).c_str()), Verify);
}

void FloatNode::SetValue(double Value, bool Verify) {
    WriteChecked(Verify, [&](Engine& engine) { engine.WriteFloat(m_index, Value, Verify); });
}
IFloat& FloatNode::operator=(double Value) {
    SetValue(Value, true);
    return *this;
}
double FloatNode::GetValue(bool Verify, bool IgnoreCache) {
    return ReadNumberChecked(
        Verify, IgnoreCache, [](const NodeState& state) { return state.real; },
        [this](Engine& engine) { return engine.ReadFloat(m_index); },
        [this](Engine& engine, double value) { engine.CheckFloat(m_index, value); });
}
double FloatNode::operator()() {
    return GetValue(false, false);
}
double FloatNode::operator*() {
    return GetValue(false, false);
}
double FloatNode::GetMin() {
    return Do([this](Engine& engine) { return engine.Min(m_index).AsDouble(); });
}
double FloatNode::GetMax() {
    return Do([this](Engine& engine) { return engine.Max(m_index).AsDouble(); });
}
bool FloatNode::HasInc() {
    return Do([this](Engine& engine) { return engine.FloatIncrement(m_index).has_value(); });
}
EIncMode FloatNode::GetIncMode() {
    return HasInc() ? fixedIncrement : noIncrement;
}
double FloatNode::GetInc() {
    const auto inc = Do([this](Engine& engine) { return engine.FloatIncrement(m_index); });
    if (!inc)
        throw RUNTIME_EXCEPTION("Node '%s' has no increment.", GetName(false).c_str());
    return *inc;
}
double_autovector_t FloatNode::GetListOfValidValues(bool) {
    return {};
}
ERepresentation FloatNode::GetRepresentation() {
    return Do([this](Engine& engine) { return DisplayOf(engine, m_index).representation; });
}
gcstring FloatNode::GetUnit() {
    return Do([this](Engine& engine) { return gcstring(DisplayOf(engine, m_index).unit.c_str()); });
}
EDisplayNotation FloatNode::GetDisplayNotation() {
    return Do([this](Engine& engine) { return DisplayOf(engine, m_index).notation; });
}
int64_t FloatNode::GetDisplayPrecision() {
    return Do([this](Engine& engine) { return DisplayOf(engine, m_index).precision; });
}
void FloatNode::ImposeMin(double Value) {
    Do([&](Engine& engine) { engine.ImposeMin(m_index, Number::Of(Value)); });
}
void FloatNode::ImposeMax(double Value) {
    Do([&](Engine& engine) { engine.ImposeMax(m_index, Number::Of(Value)); });
}
gcstring FloatNode::ToString(bool Verify, bool IgnoreCache) {
    return Do([&](Engine& engine) {
        const double value = GetValue(Verify, IgnoreCache);
        const Display display = DisplayOf(engine, m_index);
        return gcstring(FloatText(value, display.notation, display.precision).c_str());
    });
}
void FloatNode::FromString(const gcstring& ValueStr, bool Verify) {
    SetValue(FloatFromText(View(ValueStr), GetName(false).c_str()), Verify);
}

} // namespace GENAPI_NAMESPACE::inside
