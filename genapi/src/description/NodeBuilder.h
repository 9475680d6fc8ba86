#pragma once

#include "genapi/src/description/Description.h"

#include <stdexcept>

namespace GENAPI_NAMESPACE::inside {

/// Turns one source node into its description. Names are resolved, but what lies behind them may not be built
/// yet: what needs that is left to the formula stage.
class NodeBuilder {
public:
    explicit NodeBuilder(Description& description) : m_description(description) {}

    void Build(NodeIndex index);

private:
    /// Why this one node can't be built.
    class Unbuildable : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    void BuildCommon();
    void BuildCommonElement(const Element& element);
    void BuildByType();
    void BuildRegister(ValueKind kind);
    void BuildRegisterElement(const Element& element);
    void CheckRegister();
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
    AddressTerm BuildTerm(const Element& element);

    NodeIndex Require(const Element& element) const;
    NodeIndex Optional(const Element& element) const;
    int64_t Integer(const Element& element) const;
    Number AnyNumber(const Element& element) const;
    void SetNumber(NumberSource& source, const Element& element) const;

    Description& m_description;
    NodeDescription* m_node = nullptr;
    const SourceNode* m_source = nullptr;
};

} // namespace GENAPI_NAMESPACE::inside
