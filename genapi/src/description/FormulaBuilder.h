#pragma once

#include "genapi/src/description/Description.h"

#include <string_view>
#include <unordered_map>

namespace GENAPI_NAMESPACE::inside {

/// Compiles the formulas of one node after the other; every node must have been built. A formula that can't
/// be compiled leaves its text in FormulaPart::error.
class FormulaBuilder final : private SymbolTable {
public:
    FormulaBuilder(Arena& arena, Description& description) : m_arena(arena), m_description(description) {}

    void Build(NodeIndex index);

private:
    /// A name that the node declares, and what it stood for when it was last looked up.
    struct Declared {
        std::string_view name;
        const Element* element = nullptr;
        uint32_t compilation = 0; ///< in which that was
        Symbol symbol;
    };

    void CollectNames();
    Declared* FindDeclared(std::string_view name);
    Symbol Find(std::string_view name) override;
    Formula* Compile(ElementName elementName, std::string_view converted);
    Formula* Compile(std::string_view text);
    Symbol Resolve(const Element& declared);
    Symbol Derived(std::string_view name);
    Symbol Variable(std::string_view name, NodeIndex target);
    bool ReadProperty(std::string_view suffix, VariableReference& reference) const;

    Arena& m_arena;
    Description& m_description;
    const SourceNode* m_source = nullptr;
    NodeDescription* m_node = nullptr;
    std::string_view m_converted;     ///< the name of the value that a converter converts
    std::vector<Declared> m_declared; ///< sorted
    std::unordered_map<std::string_view, Symbol> m_derived;
    std::vector<VariableReference> m_variables;
    FormulaDraft m_draft;
    uint32_t m_compilation = 0;
};

} // namespace GENAPI_NAMESPACE::inside
