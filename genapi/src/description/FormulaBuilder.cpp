#include "genapi/src/description/FormulaBuilder.h"

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
    FormulaBuilder(Description& description, NodeIndex index)
        : m_description(description), m_source(description.document->nodes[index]),
          m_node(description.nodes[index]) {
        for (const Element& element : m_source.elements)
            if (element.attributeName == "Name" &&
                (element.name == "pVariable" || element.name == "Constant" || element.name == "Expression"))
                m_declared.emplace(element.attribute, &element);
    }

    void Build() {
        m_converts = m_node.type == NodeType::Converter || m_node.type == NodeType::IntConverter;
        try {
            m_node.formula->reading = Compile(m_converts ? "FormulaFrom" : "Formula", m_converts ? "TO" : "");
            if (m_converts)
                m_node.formula->writing = Compile("FormulaTo", "FROM");
        } catch (const FormulaError& error) {
            m_node.formula->error = error.what();
            m_description.formulaErrors.push_back(m_source.name + ": " + error.what());
        }
    }

private:
    std::shared_ptr<const Formula> Compile(std::string_view elementName, std::string_view converted) {
        const bool integer = m_node.kind == ValueKind::Integer;
        for (const Element& element : m_source.elements)
            if (element.name == elementName) {
                std::unordered_map<std::string, Symbol> known;
                const SymbolTable symbols = [&](std::string_view name) {
                    const auto [place, isNew] = known.try_emplace(std::string(name));
                    if (isNew)
                        place->second = Resolve(name, converted);
                    return place->second;
                };
                return std::make_shared<const Formula>(CompileFormula(element.text, integer, symbols));
            }
        throw FormulaError("it has no " + std::string(elementName));
    }

    Symbol Resolve(std::string_view name, std::string_view converted) {
        Symbol symbol;
        const auto declared = m_declared.find(name);
        if (declared != m_declared.end()) {
            const Element& element = *declared->second;
            if (element.name == "pVariable")
                return Variable(name, m_description.Find(element.text));
            if (element.name == "Constant")
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
            throw FormulaError("the constant '" + element.attribute + "' is no number");
        Symbol symbol;
        symbol.kind = Symbol::Kind::Constant;
        symbol.constant = *value;
        return symbol;
    }

    // A property of a declared variable may be used without a declaration of its own.
    Symbol Derived(std::string_view name) {
        const size_t dot = name.find('.');
        const auto declared = m_declared.find(name.substr(0, dot));
        if (dot != name.npos && declared != m_declared.end() && declared->second->name == "pVariable")
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
        symbol.slot = static_cast<uint32_t>(m_node.formula->variables.size());
        m_node.formula->variables.push_back(reference);
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

    Description& m_description;
    const SourceNode& m_source;
    NodeDescription& m_node;
    std::unordered_map<std::string_view, const Element*> m_declared;
    bool m_converts = false;
};

} // namespace

void BuildFormulas(Description& description, NodeIndex index) {
    if (description.nodes[index].formula)
        FormulaBuilder(description, index).Build();
}

} // namespace GENAPI_NAMESPACE::inside
