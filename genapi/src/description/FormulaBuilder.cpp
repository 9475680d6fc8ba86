#include "genapi/src/description/FormulaBuilder.h"

#include <algorithm>

namespace GENAPI_NAMESPACE::inside {

namespace {

using Property = VariableReference::Property;

struct PropertyName {
    std::string_view suffix;
    Property property;
};

constexpr PropertyName kProperties[] = {{"Value", Property::Value},
                                        {"Min", Property::Min},
                                        {"Max", Property::Max},
                                        {"Inc", Property::Inc},
                                        {"AccessMode", Property::AccessMode},
                                        {"Visibility", Property::Visibility},
                                        {"CachingMode", Property::CachingMode}};

} // namespace

void FormulaBuilder::Build(NodeIndex index) {
    m_node = &m_description.nodes[index];
    m_source = &m_description.document.nodes[index];
    if (!m_node->formula)
        return;
    CollectNames();
    m_variables.clear();
    FormulaPart& part = *m_node->formula;
    const bool converts = m_node->type == NodeType::Converter || m_node->type == NodeType::IntConverter;
    try {
        part.reading.Point(
            Compile(converts ? ElementName::FormulaFrom : ElementName::Formula, converts ? "TO" : ""));
        if (converts)
            part.writing.Point(Compile(ElementName::FormulaTo, "FROM"));
    } catch (const FormulaError& error) {
        m_arena.KeepText(part.error, error.what());
    }
    m_arena.KeepList(part.variables, m_variables);
}

// The first of several declarations counts.
void FormulaBuilder::CollectNames() {
    m_declared.clear();
    for (const Element& element : m_source->elements)
        if (element.attributeName == AttributeName::Name &&
            (element.name == ElementName::pVariable || element.name == ElementName::Constant ||
             element.name == ElementName::Expression))
            m_declared.push_back({element.attribute, &element, 0, {}});
    std::sort(m_declared.begin(), m_declared.end(), [](const Declared& left, const Declared& right) {
        return left.name != right.name ? left.name < right.name : left.element < right.element;
    });
}

FormulaBuilder::Declared* FormulaBuilder::FindDeclared(std::string_view name) {
    const auto found = std::lower_bound(
        m_declared.begin(), m_declared.end(), name,
        [](const Declared& declared, std::string_view wanted) { return declared.name < wanted; });
    return found != m_declared.end() && found->name == name ? &*found : nullptr;
}

Formula* FormulaBuilder::Compile(ElementName elementName, std::string_view converted) {
    m_converted = converted;
    m_derived.clear();
    ++m_compilation;
    for (const Element& element : m_source->elements)
        if (element.name == elementName)
            return Compile(element.text);
    throw FormulaError("it has no " + std::string(KnownElementName(elementName)));
}

Formula* FormulaBuilder::Compile(std::string_view text) {
    constexpr size_t kShownLength = 200;
    const bool integer = m_node->kind == ValueKind::Integer;
    CompileFormula(text, integer, *this, m_draft);
    auto* const formula = m_arena.New<Formula>();
    formula->text.Point(text.substr(0, kShownLength));
    formula->integer = integer;
    formula->stackSize = m_draft.stackSize;
    m_arena.KeepList(formula->code, m_draft.code);
    m_arena.NewList(formula->undefined, m_draft.undefined.size());
    for (size_t i = 0; i < m_draft.undefined.size(); ++i)
        formula->undefined[i].Point(m_draft.undefined[i]);
    return formula;
}

Symbol FormulaBuilder::Find(std::string_view name) {
    if (Declared* const declared = FindDeclared(name)) {
        if (declared->compilation != m_compilation)
            declared->symbol = Resolve(*declared->element);
        declared->compilation = m_compilation;
        return declared->symbol;
    }
    Symbol symbol;
    if (!m_converted.empty() && name == m_converted) {
        symbol.kind = Symbol::Kind::Variable;
        symbol.slot = kConvertedSlot;
    } else if (name.find('.') != name.npos) {
        const auto [place, isNew] = m_derived.try_emplace(name);
        if (isNew)
            place->second = Derived(name);
        symbol = place->second;
    }
    return symbol;
}

Symbol FormulaBuilder::Resolve(const Element& declared) {
    if (declared.name == ElementName::pVariable)
        return Variable(declared.attribute, m_description.Find(declared.text));
    Symbol symbol;
    if (declared.name == ElementName::Expression) {
        symbol.kind = Symbol::Kind::Expression;
        symbol.expression = declared.text;
        return symbol;
    }
    const auto value = ParseNumber(declared.text);
    if (!value)
        throw FormulaError("the constant '" + declared.attribute.Copy() + "' is no number");
    symbol.kind = Symbol::Kind::Constant;
    symbol.constant = *value;
    return symbol;
}

// A property of a declared variable may be used without a declaration of its own.
Symbol FormulaBuilder::Derived(std::string_view name) {
    const Declared* const declared = FindDeclared(name.substr(0, name.find('.')));
    if (declared && declared->element->name == ElementName::pVariable)
        return Variable(name, m_description.Find(declared->element->text));
    return {};
}

Symbol FormulaBuilder::Variable(std::string_view name, NodeIndex target) {
    if (target == kNoNode)
        return {};
    VariableReference reference;
    reference.node = target;
    const size_t dot = name.find('.');
    if (dot != name.npos && !ReadProperty(name.substr(dot + 1), reference))
        return {};
    Symbol symbol;
    symbol.kind = Symbol::Kind::Variable;
    symbol.slot = static_cast<uint32_t>(m_variables.size());
    m_variables.push_back(reference);
    return symbol;
}

bool FormulaBuilder::ReadProperty(std::string_view suffix, VariableReference& reference) const {
    for (const PropertyName& row : kProperties)
        if (row.suffix == suffix) {
            reference.property = row.property;
            return true;
        }
    const size_t dot = suffix.find('.');
    const std::string_view kind = suffix.substr(0, dot);
    const NodeDescription& target = m_description.nodes[reference.node];
    if (dot != suffix.npos && (kind == "Entry" || kind == "Enum") && target.type == NodeType::Enumeration)
        for (const NodeIndex entry : target.entries)
            if (m_description.nodes[entry].entry->symbolic == suffix.substr(dot + 1)) {
                reference.property = Property::Constant;
                reference.constant = m_description.nodes[entry].entry->value;
                return true;
            }
    // Any other dot belongs to the variable's name and says nothing.
    return dot == suffix.npos || (kind != "Entry" && kind != "Enum");
}

} // namespace GENAPI_NAMESPACE::inside
