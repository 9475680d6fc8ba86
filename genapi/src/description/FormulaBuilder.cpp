#include "genapi/src/description/FormulaBuilder.h"

#include <unordered_map>

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

class FormulaBuilder {
public:
    FormulaBuilder(Arena& arena, Description& description, NodeIndex index)
        : m_arena(arena), m_description(description), m_source(description.document.nodes[index]),
          m_node(description.nodes[index]) {
        for (const Element& element : m_source.elements)
            if (element.attributeName == AttributeName::Name &&
                (element.name == ElementName::pVariable || element.name == ElementName::Constant ||
                 element.name == ElementName::Expression))
                m_declared.emplace(element.attribute, &element);
    }

    void Build() {
        FormulaPart& part = *m_node.formula;
        m_converts = m_node.type == NodeType::Converter || m_node.type == NodeType::IntConverter;
        try {
            part.reading.Point(Compile(m_converts ? ElementName::FormulaFrom : ElementName::Formula,
                                       m_converts ? "TO" : ""));
            if (m_converts)
                part.writing.Point(Compile(ElementName::FormulaTo, "FROM"));
        } catch (const FormulaError& error) {
            m_arena.KeepText(part.error, error.what());
        }
        m_arena.KeepList(part.variables, m_variables);
    }

private:
    Formula* Compile(ElementName elementName, std::string_view converted) {
        for (const Element& element : m_source.elements)
            if (element.name == elementName)
                return Compile(element.text, converted);
        throw FormulaError("it has no " + std::string(KnownElementName(elementName)));
    }

    Formula* Compile(std::string_view text, std::string_view converted) {
        constexpr size_t kShownLength = 200;
        std::unordered_map<std::string_view, Symbol> known;
        const SymbolTable symbols = [&](std::string_view name) {
            const auto [place, isNew] = known.try_emplace(name);
            if (isNew)
                place->second = Resolve(name, converted);
            return place->second;
        };
        const bool integer = m_node.kind == ValueKind::Integer;
        const FormulaDraft draft = CompileFormula(text, integer, symbols);
        auto* const formula = m_arena.New<Formula>();
        formula->text.Point(text.substr(0, kShownLength));
        formula->integer = integer;
        formula->stackSize = draft.stackSize;
        m_arena.KeepList(formula->code, draft.code);
        m_arena.NewList(formula->undefined, draft.undefined.size());
        for (size_t i = 0; i < draft.undefined.size(); ++i)
            formula->undefined[i].Point(draft.undefined[i]);
        return formula;
    }

    Symbol Resolve(std::string_view name, std::string_view converted) {
        Symbol symbol;
        const auto declared = m_declared.find(name);
        if (declared != m_declared.end()) {
            const Element& element = *declared->second;
            if (element.name == ElementName::pVariable)
                return Variable(name, m_description.Find(element.text));
            if (element.name == ElementName::Constant)
                return Constant(element);
            symbol.kind = Symbol::Kind::Expression;
            symbol.expression = element.text;
            return symbol;
        }
        if (!converted.empty() && name == converted) {
            symbol.kind = Symbol::Kind::Variable;
            symbol.slot = kConvertedSlot;
            return symbol;
        }
        return Derived(name);
    }

    static Symbol Constant(const Element& element) {
        const auto value = ParseNumber(element.text);
        if (!value)
            throw FormulaError("the constant '" + element.attribute.Copy() + "' is no number");
        Symbol symbol;
        symbol.kind = Symbol::Kind::Constant;
        symbol.constant = *value;
        return symbol;
    }

    // A property of a declared variable may be used without a declaration of its own.
    Symbol Derived(std::string_view name) {
        const size_t dot = name.find('.');
        const auto declared = m_declared.find(name.substr(0, dot));
        if (dot != name.npos && declared != m_declared.end() &&
            declared->second->name == ElementName::pVariable)
            return Variable(name, m_description.Find(declared->second->text));
        return {};
    }

    Symbol Variable(std::string_view name, NodeIndex target) {
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

    bool ReadProperty(std::string_view suffix, VariableReference& reference) const {
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
                if (m_description.nodes[entry].entry &&
                    m_description.nodes[entry].entry->symbolic == suffix.substr(dot + 1)) {
                    reference.property = Property::Constant;
                    reference.constant = m_description.nodes[entry].entry->value;
                    return true;
                }
        // Any other dot belongs to the variable's name and says nothing.
        return dot == suffix.npos || (kind != "Entry" && kind != "Enum");
    }

    Arena& m_arena;
    Description& m_description;
    const SourceNode& m_source;
    NodeDescription& m_node;
    std::unordered_map<std::string_view, const Element*> m_declared;
    std::vector<VariableReference> m_variables;
    bool m_converts = false;
};

} // namespace

void BuildFormulas(Arena& arena, Description& description, NodeIndex index) {
    if (description.nodes[index].formula)
        FormulaBuilder(arena, description, index).Build();
}

} // namespace GENAPI_NAMESPACE::inside
