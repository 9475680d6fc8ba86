#pragma once

#include "genapi/src/description/ElementReader.h"

namespace GENAPI_NAMESPACE::inside {

/// Turns one source node into its description. Names are resolved, but what lies behind them may not be built
/// yet: what needs that is left to the formula stage.
class NodeBuilder {
public:
    explicit NodeBuilder(Description& description) : m_description(description), m_reader(description) {}

    void Build(NodeIndex index);

private:
    void BuildCommon();
    void BuildCommonElement(const Element& element);
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
    void SetNumber(NumberSource& source, const Element& element) const;

    Description& m_description;
    ElementReader m_reader;
    NodeDescription* m_node = nullptr;
    const SourceNode* m_source = nullptr;
};

} // namespace GENAPI_NAMESPACE::inside
