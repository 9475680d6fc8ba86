#include "genapi/src/nodes/NumberNodes.h"
#include "genapi/src/nodes/OtherNodes.h"

namespace GENAPI_NAMESPACE::inside {

namespace {

/// A node that has a name and nothing else.
class PlainNode final : public NodeBase {
public:
    using NodeBase::NodeBase;
};

} // namespace

std::unique_ptr<NodeBase> MakeNode(NodeMapImpl& map, NodeIndex index) {
    switch (map.GetDescription().nodes[index].type) {
    case NodeType::Category:
        return std::make_unique<CategoryNode>(map, index);
    case NodeType::Integer:
    case NodeType::IntSwissKnife:
    case NodeType::IntConverter:
    case NodeType::IntKey:
    case NodeType::AdvFeatureLock:
    case NodeType::SmartFeature:
        return std::make_unique<IntegerNode>(map, index);
    case NodeType::IntReg:
    case NodeType::MaskedIntReg:
        return std::make_unique<WithRegister<IntegerNode>>(map, index);
    case NodeType::Float:
    case NodeType::SwissKnife:
    case NodeType::Converter:
        return std::make_unique<FloatNode>(map, index);
    case NodeType::FloatReg:
        return std::make_unique<WithRegister<FloatNode>>(map, index);
    case NodeType::Boolean:
        return std::make_unique<BooleanNode>(map, index);
    case NodeType::Command:
        return std::make_unique<CommandNode>(map, index);
    case NodeType::Enumeration:
        return std::make_unique<EnumerationNode>(map, index);
    case NodeType::EnumEntry:
        return std::make_unique<EnumEntryNode>(map, index);
    case NodeType::String:
    case NodeType::TextDesc:
        return std::make_unique<StringNode>(map, index);
    case NodeType::StringReg:
        return std::make_unique<WithRegister<StringNode>>(map, index);
    case NodeType::Register:
    case NodeType::ConfRom:
        return std::make_unique<RegisterNode>(map, index);
    case NodeType::Port:
        return std::make_unique<PortNode>(map, index);
    case NodeType::Plain:
    case NodeType::Other:
        break;
    }
    return std::make_unique<PlainNode>(map, index);
}

} // namespace GENAPI_NAMESPACE::inside
