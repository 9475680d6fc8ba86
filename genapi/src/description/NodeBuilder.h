#pragma once

#include "genapi/src/description/EdgeLists.h"
#include "genapi/src/description/ElementReader.h"

namespace GENAPI_NAMESPACE::inside {

/// Turns one source node into its description. Names are resolved, but what lies behind them may not be built
/// yet: what needs that is left to the formula stage.
class NodeBuilder {
public:
    NodeBuilder(Arena& arena, Description& description)
        : m_arena(arena), m_description(description), m_reader(description) {}

    void Build(NodeIndex index);
    /// To be called once, at the end.
    void Finish() { m_arena.KeepList(m_description.tableValues, m_tableValues); }
    /// Each node that has been built and what it names as pInvalidator.
    const Edges& Invalidators() const { return m_invalidators; }

private:
    void BuildCommon();
    void BuildCommonElement(const Element& element);
    void BuildReference(const Element& element);
    void BuildByType();
    void BuildRegister(ValueKind kind);
    void BuildSource(ValueKind kind);
    void BuildSourceElement(const Element& element);
    TableEntry BuildTableEntry(const Element& element);
    void BuildLimits();
    void BuildDisplay();
    void BuildFormulaTarget();
    void BuildSwitch();
    void BuildCommand();
    void BuildEnumeration();
    void BuildEntry();
    void BuildPort();
    void BuildCategory();
    void KeepMatching(List<NodeIndex>& list, ElementName name, ElementName otherName);
    void SetNumber(NumberSource& source, const Element& element);

    /// What a list of nodes in a part is collected in before it is laid out.
    struct Lists {
        std::vector<NodeIndex> errors;
        std::vector<NodeIndex> selected;
        std::vector<NodeIndex> copies;
        std::vector<NodeIndex> targets;
        std::vector<TableEntry> entries;
    };

    Arena& m_arena;
    Description& m_description;
    std::vector<Number> m_tableValues;
    Lists m_lists;
    Edges m_invalidators;
    DisplayPart* m_nothingToDisplay = nullptr;
    ElementReader m_reader;
    NodeDescription* m_node = nullptr;
    const SourceNode* m_source = nullptr;
};

} // namespace GENAPI_NAMESPACE::inside
