#include "genapi/src/description/NodeBuilder.h"

#include <GenApi/EnumClasses.h>
#include <GenApi/IBase.h>

#include <algorithm>
#include <array>

namespace GENAPI_NAMESPACE::inside {

namespace {

/// What a node is, by the number of its tag.
constexpr auto kTypes = [] {
    std::array<NodeType, static_cast<size_t>(ElementName::FirstUnknown) + 1> types{};
    constexpr std::pair<ElementName, NodeType> kTags[] = {
        {ElementName::Node, NodeType::Plain},
        {ElementName::ConfRom, NodeType::ConfRom},
        {ElementName::TextDesc, NodeType::TextDesc},
        {ElementName::IntKey, NodeType::IntKey},
        {ElementName::AdvFeatureLock, NodeType::AdvFeatureLock},
        {ElementName::DcamLock, NodeType::AdvFeatureLock},
        {ElementName::SmartFeature, NodeType::SmartFeature},
        {ElementName::Category, NodeType::Category},
        {ElementName::Integer, NodeType::Integer},
        {ElementName::IntReg, NodeType::IntReg},
        {ElementName::MaskedIntReg, NodeType::MaskedIntReg},
        {ElementName::StructEntry, NodeType::MaskedIntReg},
        {ElementName::Float, NodeType::Float},
        {ElementName::FloatReg, NodeType::FloatReg},
        {ElementName::Boolean, NodeType::Boolean},
        {ElementName::Command, NodeType::Command},
        {ElementName::Enumeration, NodeType::Enumeration},
        {ElementName::EnumEntry, NodeType::EnumEntry},
        {ElementName::String, NodeType::String},
        {ElementName::StringReg, NodeType::StringReg},
        {ElementName::Register, NodeType::Register},
        {ElementName::SwissKnife, NodeType::SwissKnife},
        {ElementName::IntSwissKnife, NodeType::IntSwissKnife},
        {ElementName::Converter, NodeType::Converter},
        {ElementName::IntConverter, NodeType::IntConverter},
        {ElementName::Port, NodeType::Port},
    };
    for (const auto& [tag, type] : kTags)
        types[static_cast<size_t>(tag)] = type;
    return types;
}();
static_assert(kTypes.back() == NodeType::Other);

bool IsYes(std::string_view text) {
    return EqualIgnoringCase(text, "Yes");
}

/// The numbers of a list that semicolons separate; what is none is left out.
std::vector<int64_t> NumbersIn(std::string_view text) {
    std::vector<int64_t> numbers;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find(';', begin), text.size());
        if (const auto value = ParseInteger(text.substr(begin, end - begin)))
            numbers.push_back(*value);
        begin = end + 1;
    }
    return numbers;
}

} // namespace

void NodeBuilder::Build(NodeIndex index) {
    m_node = &m_description.nodes[index];
    m_source = &m_description.document.nodes[index];
    m_node->name.Point(m_source->name);
    m_node->standard = m_source->standard;
    m_node->type = kTypes[static_cast<size_t>(std::min(m_source->tag, ElementName::FirstUnknown))];
    m_reader.Restart();
    BuildCommon();
    BuildByType();
    m_arena.KeepText(m_node->error, m_reader.Failure());
}

void NodeBuilder::BuildCommon() {
    m_lists.errors.clear();
    m_lists.selected.clear();
    for (const Element& element : m_source->elements)
        BuildCommonElement(element);
    m_arena.KeepList(m_node->errors, m_lists.errors);
    m_arena.KeepList(m_node->selected, m_lists.selected);
}

void NodeBuilder::BuildCommonElement(const Element& element) {
    NodeDescription& node = *m_node;
    switch (element.name) {
    case ElementName::Visibility:
    case ElementName::ImposedVisibility: {
        EVisibility visibility = Beginner;
        if (ReadEnum<EVisibilityClass>(element.text, visibility))
            node.visibility = Combine(node.visibility, visibility);
        break;
    }
    case ElementName::ImposedAccessMode:
        node.imposedMode = ReadMode(element.text, RW);
        break;
    case ElementName::Streamable:
        node.streamable = IsYes(element.text);
        break;
    case ElementName::IsDeprecated:
        node.deprecated = IsYes(element.text);
        break;
    case ElementName::PollingTime:
        node.pollingTime = ParseInteger(element.text).value_or(-1);
        break;
    case ElementName::EventID: {
        const auto id = ParseHexDigits(element.text);
        node.hasEvent = id.has_value();
        node.eventId = id.value_or(0);
        break;
    }
    case ElementName::pInvalidator: {
        const NodeIndex invalidator = m_reader.Find(element);
        if (invalidator != kNoNode)
            m_invalidators.emplace_back(static_cast<NodeIndex>(m_node - m_description.nodes.begin()),
                                        invalidator);
        break;
    }
    default:
        BuildReference(element);
    }
}

void NodeBuilder::BuildReference(const Element& element) {
    NodeDescription& node = *m_node;
    const auto add = [&](std::vector<NodeIndex>& list) {
        const NodeIndex target = m_reader.Find(element);
        if (target != kNoNode)
            list.push_back(target);
    };
    switch (element.name) {
    case ElementName::pIsImplemented:
        node.implemented = m_reader.Find(element);
        break;
    case ElementName::pIsAvailable:
        node.available = m_reader.Find(element);
        break;
    case ElementName::pIsLocked:
        node.locked = m_reader.Find(element);
        break;
    case ElementName::pBlockPolling:
        node.blockPolling = m_reader.Find(element);
        break;
    case ElementName::pAlias:
        node.alias = m_reader.Find(element);
        break;
    case ElementName::pCastAlias:
        node.castAlias = m_reader.Find(element);
        break;
    case ElementName::pError:
        add(m_lists.errors);
        break;
    case ElementName::pSelected:
        add(m_lists.selected);
        break;
    default:
        break;
    }
}

void NodeBuilder::BuildByType() {
    switch (m_node->type) {
    case NodeType::Integer:
        BuildSource(ValueKind::Integer);
        BuildLimits();
        BuildDisplay();
        break;
    case NodeType::Float:
        BuildSource(ValueKind::Float);
        BuildLimits();
        BuildDisplay();
        break;
    case NodeType::IntReg:
    case NodeType::MaskedIntReg:
        BuildRegister(ValueKind::Integer);
        BuildDisplay();
        break;
    case NodeType::FloatReg:
        BuildRegister(ValueKind::Float);
        BuildDisplay();
        break;
    case NodeType::StringReg:
        BuildRegister(ValueKind::Text);
        break;
    case NodeType::Register:
        BuildRegister(ValueKind::Bytes);
        break;
    case NodeType::SwissKnife:
    case NodeType::Converter:
        m_node->kind = ValueKind::Float;
        BuildFormulaTarget();
        BuildDisplay();
        break;
    case NodeType::IntSwissKnife:
    case NodeType::IntConverter:
        m_node->kind = ValueKind::Integer;
        BuildFormulaTarget();
        BuildDisplay();
        break;
    case NodeType::Boolean:
        BuildSource(ValueKind::Integer);
        BuildSwitch();
        break;
    case NodeType::Command:
        BuildSource(ValueKind::None);
        BuildCommand();
        break;
    case NodeType::Enumeration:
        BuildSource(ValueKind::Integer);
        BuildEnumeration();
        break;
    case NodeType::EnumEntry:
        BuildEntry();
        break;
    case NodeType::String:
        BuildSource(ValueKind::Text);
        break;
    case NodeType::Port:
        BuildPort();
        break;
    case NodeType::Category:
        BuildCategory();
        break;
    case NodeType::Plain:
        break;
    // What only IEEE 1394 cameras have keeps its interface, so that what refers to it can be built.
    case NodeType::ConfRom:
    case NodeType::TextDesc:
    case NodeType::IntKey:
    case NodeType::AdvFeatureLock:
    case NodeType::SmartFeature:
    case NodeType::Other:
        m_reader.Fail("nodes of type " + std::string(m_description.document.NameOf(m_source->tag)) +
                      " are not implemented");
    }
}

void NodeBuilder::BuildRegister(ValueKind kind) {
    m_node->kind = kind;
    auto* const reg = m_arena.New<RegisterPart>();
    BuildRegisterPart(m_arena, m_reader, *m_source, m_node->type, *reg);
    if (m_reader.HasFailed())
        return;
    m_node->reg.Point(reg);
    m_node->caching = reg->caching;
}

void NodeBuilder::BuildSource(ValueKind kind) {
    m_node->kind = kind;
    m_node->source.Point(m_arena.New<SourcePart>());
    SourcePart& source = *m_node->source;
    if (kind == ValueKind::Text)
        source.textSlot = m_description.texts++;
    m_lists.copies.clear();
    m_lists.targets.clear();
    m_lists.entries.clear();
    for (const Element& element : m_source->elements)
        BuildSourceElement(element);
    if (m_reader.HasFailed())
        return;
    m_arena.KeepList(source.copies, m_lists.copies);
    m_arena.KeepList(source.targets, m_lists.targets);
    m_arena.KeepList(source.entries, m_lists.entries);
    if (source.index != kNoNode)
        source.form = SourcePart::Form::Table;
    else if (source.node != kNoNode)
        source.form = SourcePart::Form::Node;
}

void NodeBuilder::BuildSourceElement(const Element& element) {
    SourcePart& source = *m_node->source;
    const bool canBeTable = m_node->type == NodeType::Integer || m_node->type == NodeType::Float;
    switch (element.name) {
    case ElementName::Value:
        if (m_node->kind == ValueKind::Text)
            source.initialText.Point(element.text);
        else if (EqualIgnoringCase(element.text, "true") || EqualIgnoringCase(element.text, "false"))
            source.initial = Number::Of(int64_t{EqualIgnoringCase(element.text, "true")});
        else
            source.initial = m_reader.AnyNumber(element);
        break;
    case ElementName::pValue:
        source.node = m_reader.Require(element);
        m_lists.targets.push_back(source.node);
        break;
    case ElementName::pValueCopy:
        m_lists.copies.push_back(m_reader.Require(element));
        m_lists.targets.push_back(m_lists.copies.back());
        break;
    case ElementName::pIndex:
        if (canBeTable)
            source.index = m_reader.Require(element);
        break;
    case ElementName::ValueIndexed:
    case ElementName::pValueIndexed:
        if (canBeTable)
            m_lists.entries.push_back(BuildTableEntry(element));
        break;
    case ElementName::ValueDefault:
    case ElementName::pValueDefault:
        if (canBeTable)
            source.fallback = BuildTableEntry(element);
        break;
    default:
        break;
    }
}

TableEntry NodeBuilder::BuildTableEntry(const Element& element) {
    TableEntry entry;
    if (element.attributeName == AttributeName::Index) {
        const auto index = ParseInteger(element.attribute);
        if (!index)
            m_reader.Fail("the Index " + Quoted(element.attribute) + " is no number");
        entry.index = index.value_or(0);
    }
    if (element.name == ElementName::pValueIndexed || element.name == ElementName::pValueDefault) {
        entry.node = m_reader.Require(element);
        return entry;
    }
    entry.slot = static_cast<uint32_t>(m_tableValues.size());
    m_tableValues.push_back(m_reader.AnyNumber(element));
    return entry;
}

void NodeBuilder::SetNumber(NumberSource& source, const Element& element) {
    source.given = true;
    if (IsPointerName(KnownElementName(element.name)))
        source.node = m_reader.Require(element);
    else
        source.constant = m_reader.AnyNumber(element);
}

void NodeBuilder::BuildLimits() {
    m_node->limits.Point(m_arena.New<LimitPart>());
    LimitPart& limits = *m_node->limits;
    for (const Element& element : m_source->elements)
        switch (element.name) {
        case ElementName::Min:
        case ElementName::pMin:
            SetNumber(limits.min, element);
            break;
        case ElementName::Max:
        case ElementName::pMax:
            SetNumber(limits.max, element);
            break;
        case ElementName::Inc:
        case ElementName::pInc:
            SetNumber(limits.inc, element);
            break;
        case ElementName::ValidValueSet:
        case ElementName::ValidValuesSet:
            m_arena.KeepList(limits.validValues, NumbersIn(element.text));
            break;
        default:
            break;
        }
}

void NodeBuilder::BuildDisplay() {
    const bool given =
        std::any_of(m_source->elements.begin(), m_source->elements.end(), [](const Element& element) {
            return element.name == ElementName::Unit || element.name == ElementName::Representation ||
                   element.name == ElementName::DisplayNotation ||
                   element.name == ElementName::DisplayPrecision;
        });
    // Most nodes say nothing, and share that.
    if (!given && !m_nothingToDisplay)
        m_nothingToDisplay = m_arena.New<DisplayPart>();
    m_node->display.Point(given ? m_arena.New<DisplayPart>() : m_nothingToDisplay);
    if (!given)
        return;
    DisplayPart& display = *m_node->display;
    for (const Element& element : m_source->elements)
        switch (element.name) {
        case ElementName::Unit:
            display.unit.Point(element.text);
            break;
        case ElementName::Representation: {
            ERepresentation representation = PureNumber;
            if (ReadEnum<ERepresentationClass>(element.text, representation))
                display.representation = representation;
            break;
        }
        case ElementName::DisplayNotation: {
            EDisplayNotation notation = fnAutomatic;
            if (ReadEnum<EDisplayNotationClass>(element.text, notation))
                display.notation = notation;
            break;
        }
        case ElementName::DisplayPrecision:
            display.precision = ParseInteger(element.text);
            break;
        default:
            break;
        }
}

// The formulas themselves come later: their variables may name entries of enumerations that are not built
// yet.
void NodeBuilder::BuildFormulaTarget() {
    m_node->formula.Point(m_arena.New<FormulaPart>());
    for (const Element& element : m_source->elements) {
        if (element.name == ElementName::pValue)
            m_node->formula->node = m_reader.Require(element);
        else if (element.name == ElementName::Slope)
            ReadEnum<ESlopeClass>(element.text, m_node->formula->slope);
    }
    const bool converts = m_node->type == NodeType::Converter || m_node->type == NodeType::IntConverter;
    if (converts && m_node->formula->node == kNoNode)
        m_reader.Fail("it has no pValue");
}

void NodeBuilder::BuildSwitch() {
    m_node->onOff.Point(m_arena.New<SwitchPart>());
    for (const Element& element : m_source->elements) {
        if (element.name == ElementName::OnValue)
            m_node->onOff->on = m_reader.Integer(element);
        else if (element.name == ElementName::OffValue)
            m_node->onOff->off = m_reader.Integer(element);
        else
            continue;
        m_node->onOff->given = true;
    }
}

void NodeBuilder::BuildCommand() {
    m_node->onOff.Point(m_arena.New<SwitchPart>());
    for (const Element& element : m_source->elements) {
        if (element.name == ElementName::CommandValue)
            m_node->onOff->on = m_reader.Integer(element);
        else if (element.name == ElementName::pCommandValue)
            m_node->commandValue = m_reader.Require(element);
    }
}

void NodeBuilder::KeepMatching(List<NodeIndex>& list, ElementName name, ElementName otherName) {
    std::vector<NodeIndex>& nodes = m_lists.targets;
    nodes.clear();
    for (const Element& element : m_source->elements)
        if ((element.name == name || element.name == otherName) && m_reader.Find(element) != kNoNode)
            nodes.push_back(m_reader.Find(element));
    m_arena.KeepList(list, nodes);
}

void NodeBuilder::BuildEnumeration() {
    KeepMatching(m_node->entries, ElementName::EnumEntry, ElementName::pEnumEntry);
}

void NodeBuilder::BuildEntry() {
    m_node->entry.Point(m_arena.New<EntryPart>());
    EntryPart& entry = *m_node->entry;
    std::optional<double> numeric;
    bool given = false;
    for (const Element& element : m_source->elements) {
        if (element.name == ElementName::Value) {
            entry.value = m_reader.Integer(element);
            given = true;
        } else if (element.name == ElementName::NumericValue) {
            numeric = ParseFloat(element.text);
        } else if (element.name == ElementName::Symbolic) {
            entry.symbolic.Point(element.text);
        } else if (element.name == ElementName::IsSelfClearing) {
            entry.selfClearing = IsYes(element.text);
        }
    }
    m_node->kind = ValueKind::Integer;
    entry.numericValue = numeric.value_or(static_cast<double>(entry.value));
    if (!given)
        m_reader.Fail("it has no Value");
}

void NodeBuilder::BuildPort() {
    m_node->port.Point(m_arena.New<PortPart>());
    PortPart& port = *m_node->port;
    for (const Element& element : m_source->elements) {
        if (element.name == ElementName::ChunkID)
            port.chunkId.Point(element.text);
        if (element.name == ElementName::ChunkID || element.name == ElementName::pChunkID)
            port.isChunk = true;
        else if (element.name == ElementName::SwapEndianess)
            port.swap = IsYes(element.text);
        else if (element.name == ElementName::CacheChunkData)
            port.cacheChunkData = IsYes(element.text);
    }
}

void NodeBuilder::BuildCategory() {
    KeepMatching(m_node->features, ElementName::pFeature, ElementName::pFeature);
}

} // namespace GENAPI_NAMESPACE::inside
