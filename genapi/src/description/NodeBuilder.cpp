#include "genapi/src/description/NodeBuilder.h"

#include <GenApi/EnumClasses.h>
#include <GenApi/IBase.h>

#include <algorithm>

namespace GENAPI_NAMESPACE::inside {

namespace {

struct TagType {
    std::string_view tag;
    NodeType type;
};

constexpr TagType kTags[] = {
    {"Category", NodeType::Category},
    {"Integer", NodeType::Integer},
    {"IntReg", NodeType::IntReg},
    {"MaskedIntReg", NodeType::MaskedIntReg},
    {"StructEntry", NodeType::MaskedIntReg},
    {"Float", NodeType::Float},
    {"FloatReg", NodeType::FloatReg},
    {"Boolean", NodeType::Boolean},
    {"Command", NodeType::Command},
    {"Enumeration", NodeType::Enumeration},
    {"EnumEntry", NodeType::EnumEntry},
    {"String", NodeType::String},
    {"StringReg", NodeType::StringReg},
    {"Register", NodeType::Register},
    {"SwissKnife", NodeType::SwissKnife},
    {"IntSwissKnife", NodeType::IntSwissKnife},
    {"Converter", NodeType::Converter},
    {"IntConverter", NodeType::IntConverter},
    {"Port", NodeType::Port},
};

bool IsYes(std::string_view text) {
    return EqualIgnoringCase(text, "Yes");
}

template <class EnumClass, class Enum>
bool Read(std::string_view text, Enum& value) {
    return EnumClass::FromString(GENICAM_NAMESPACE::gcstring(text.data(), text.size()), &value);
}

EAccessMode ReadMode(std::string_view text, EAccessMode fallback) {
    if (EqualIgnoringCase(text, "R") || EqualIgnoringCase(text, "RO"))
        return RO;
    if (EqualIgnoringCase(text, "W") || EqualIgnoringCase(text, "WO"))
        return WO;
    return EqualIgnoringCase(text, "RW") ? RW : fallback;
}

std::string Quoted(std::string_view text) {
    return "'" + std::string(text.substr(0, 100)) + "'";
}

} // namespace

void NodeBuilder::Build(NodeIndex index) {
    m_node = &m_description.nodes[index];
    m_source = &m_description.document->nodes[index];
    m_node->name = m_source->name;
    m_node->standard = m_source->standard;
    for (const TagType& row : kTags)
        if (row.tag == m_source->tag)
            m_node->type = row.type;
    try {
        BuildCommon();
        BuildByType();
        if (m_node->type == NodeType::Other)
            throw Unbuildable("nodes of type " + std::string(m_source->tag) + " are not implemented");
    } catch (const Unbuildable& reason) {
        m_node->error = reason.what();
    }
}

void NodeBuilder::BuildCommon() {
    for (const Element& element : m_source->elements)
        BuildCommonElement(element);
}

void NodeBuilder::BuildCommonElement(const Element& element) {
    NodeDescription& node = *m_node;
    const std::string_view name = element.name;
    if (name == "Visibility" || name == "ImposedVisibility") {
        EVisibility visibility = Beginner;
        if (Read<EVisibilityClass>(element.text, visibility))
            node.visibility = Combine(node.visibility, visibility);
    } else if (name == "ImposedAccessMode") {
        node.imposedMode = ReadMode(element.text, RW);
    } else if (name == "Streamable") {
        node.streamable = IsYes(element.text);
    } else if (name == "IsDeprecated") {
        node.deprecated = IsYes(element.text);
    } else if (name == "PollingTime") {
        node.pollingTime = ParseInteger(element.text).value_or(-1);
    } else if (name == "EventID") {
        const auto id = ParseHexDigits(element.text);
        node.hasEvent = id.has_value();
        node.eventId = id.value_or(0);
    } else if (name == "pIsImplemented") {
        node.implemented = Optional(element);
    } else if (name == "pIsAvailable") {
        node.available = Optional(element);
    } else if (name == "pIsLocked") {
        node.locked = Optional(element);
    } else if (name == "pBlockPolling") {
        node.blockPolling = Optional(element);
    } else if (name == "pAlias") {
        node.alias = Optional(element);
    } else if (name == "pCastAlias") {
        node.castAlias = Optional(element);
    } else if (name == "pError") {
        if (Optional(element) != kNoNode)
            node.errors.push_back(Optional(element));
    } else if (name == "pSelected") {
        if (Optional(element) != kNoNode)
            node.selected.push_back(Optional(element));
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
    case NodeType::Other:
        break;
    }
}

void NodeBuilder::BuildRegister(ValueKind kind) {
    m_node->kind = kind;
    m_node->reg = std::make_unique<RegisterPart>();
    m_node->reg->masked = m_node->type == NodeType::MaskedIntReg;
    if (m_node->type == NodeType::FloatReg)
        m_node->reg->caching = WriteAround;
    m_node->reg->lsb = m_node->reg->msb = -1;
    for (const Element& element : m_source->elements)
        BuildRegisterElement(element);
    m_node->caching = m_node->reg->caching;
    CheckRegister();
}

void NodeBuilder::BuildRegisterElement(const Element& element) {
    RegisterPart& reg = *m_node->reg;
    const std::string_view name = element.name;
    if (name == "Address") {
        reg.address = static_cast<int64_t>(static_cast<uint64_t>(reg.address) +
                                           static_cast<uint64_t>(Integer(element)));
    } else if (name == "pAddress" || name == "pIndex") {
        reg.terms.push_back(BuildTerm(element));
    } else if (name == "Length") {
        reg.length = Integer(element);
    } else if (name == "pLength") {
        reg.lengthNode = Require(element);
    } else if (name == "pPort") {
        reg.port = Require(element);
    } else if (name == "AccessMode") {
        reg.mode = ReadMode(element.text, RO);
    } else if (name == "Cachable") {
        Read<ECachingModeClass>(element.text, reg.caching);
    } else if (name == "Endianess") {
        reg.littleEndian = !EqualIgnoringCase(element.text, "BigEndian");
    } else if (name == "Sign") {
        reg.isSigned = EqualIgnoringCase(element.text, "Signed");
    } else if (name == "Bit") {
        reg.lsb = reg.msb = Integer(element);
    } else if (name == "LSB") {
        reg.lsb = Integer(element);
    } else if (name == "MSB") {
        reg.msb = Integer(element);
    }
}

AddressTerm NodeBuilder::BuildTerm(const Element& element) {
    AddressTerm term;
    term.node = Require(element);
    if (element.name == "pAddress")
        return term;
    term.factor = AddressTerm::Factor::Length;
    if (element.attributeName == "Offset") {
        const auto offset = ParseInteger(element.attribute);
        if (!offset)
            throw Unbuildable("the Offset " + Quoted(element.attribute) + " is no number");
        term.factor = AddressTerm::Factor::Constant;
        term.offset = *offset;
    } else if (element.attributeName == "pOffset") {
        term.factor = AddressTerm::Factor::Node;
        term.offsetNode = m_description.Find(element.attribute);
        if (term.offsetNode == kNoNode)
            throw Unbuildable("pOffset " + Quoted(element.attribute) + " does not exist");
    }
    return term;
}

void NodeBuilder::CheckRegister() {
    const RegisterPart& reg = *m_node->reg;
    if (reg.port == kNoNode)
        throw Unbuildable("it has no pPort");
    if (reg.lengthNode != kNoNode)
        return;
    const bool isFloat = m_node->type == NodeType::FloatReg;
    const bool isInteger = m_node->type == NodeType::IntReg || m_node->type == NodeType::MaskedIntReg;
    if (reg.length <= 0 || (isInteger && reg.length > 8) || (isFloat && reg.length != 4 && reg.length != 8))
        throw Unbuildable("a Length of " + std::to_string(reg.length) + " is impossible");
    if (reg.masked && (reg.lsb < 0 || reg.msb < 0 || reg.lsb >= 8 * reg.length || reg.msb >= 8 * reg.length))
        throw Unbuildable("bits " + std::to_string(reg.lsb) + " to " + std::to_string(reg.msb) +
                          " lie outside the register");
}

void NodeBuilder::BuildSource(ValueKind kind) {
    m_node->kind = kind;
    m_node->source = std::make_unique<SourcePart>();
    SourcePart& source = *m_node->source;
    if (kind == ValueKind::Text)
        source.textSlot = m_description.texts++;
    for (const Element& element : m_source->elements)
        BuildSourceElement(element);
    if (source.index != kNoNode)
        source.form = SourcePart::Form::Table;
    else if (source.node != kNoNode)
        source.form = SourcePart::Form::Node;
}

void NodeBuilder::BuildSourceElement(const Element& element) {
    SourcePart& source = *m_node->source;
    const std::string_view name = element.name;
    if (name == "Value") {
        if (m_node->kind == ValueKind::Text)
            source.initialText = element.text;
        else if (EqualIgnoringCase(element.text, "true") || EqualIgnoringCase(element.text, "false"))
            source.initial = Number::Of(int64_t{EqualIgnoringCase(element.text, "true")});
        else
            source.initial = AnyNumber(element);
    } else if (name == "pValue") {
        source.node = Require(element);
    } else if (name == "pValueCopy") {
        source.copies.push_back(Require(element));
    } else if (name == "pIndex") {
        source.index = Require(element);
    } else if (name == "ValueIndexed" || name == "pValueIndexed") {
        source.entries.push_back(BuildTableEntry(element));
    } else if (name == "ValueDefault" || name == "pValueDefault") {
        source.fallback = BuildTableEntry(element);
    }
}

TableEntry NodeBuilder::BuildTableEntry(const Element& element) {
    TableEntry entry;
    if (element.attributeName == "Index") {
        const auto index = ParseInteger(element.attribute);
        if (!index)
            throw Unbuildable("the Index " + Quoted(element.attribute) + " is no number");
        entry.index = *index;
    }
    if (element.name[0] == 'p') {
        entry.node = Require(element);
        return entry;
    }
    entry.slot = static_cast<uint32_t>(m_description.tableValues.size());
    m_description.tableValues.push_back(AnyNumber(element));
    return entry;
}

void NodeBuilder::SetNumber(NumberSource& source, const Element& element) const {
    source.given = true;
    if (element.name[0] == 'p')
        source.node = Require(element);
    else
        source.constant = AnyNumber(element);
}

void NodeBuilder::BuildLimits() {
    m_node->limits = std::make_unique<LimitPart>();
    LimitPart& limits = *m_node->limits;
    for (const Element& element : m_source->elements) {
        const std::string_view name = element.name;
        if (name == "Min" || name == "pMin")
            SetNumber(limits.min, element);
        else if (name == "Max" || name == "pMax")
            SetNumber(limits.max, element);
        else if (name == "Inc" || name == "pInc")
            SetNumber(limits.inc, element);
        else if (name == "ValidValueSet" || name == "ValidValuesSet")
            for (size_t begin = 0; begin < element.text.size();) {
                const size_t end = std::min(element.text.find(';', begin), element.text.size());
                if (const auto value =
                        ParseInteger(std::string_view(element.text).substr(begin, end - begin)))
                    limits.validValues.push_back(*value);
                begin = end + 1;
            }
    }
}

void NodeBuilder::BuildDisplay() {
    m_node->display = std::make_unique<DisplayPart>();
    DisplayPart& display = *m_node->display;
    for (const Element& element : m_source->elements) {
        if (element.name == "Unit") {
            display.unit = element.text;
        } else if (element.name == "Representation") {
            ERepresentation representation = PureNumber;
            if (Read<ERepresentationClass>(element.text, representation))
                display.representation = representation;
        } else if (element.name == "DisplayNotation") {
            EDisplayNotation notation = fnAutomatic;
            if (Read<EDisplayNotationClass>(element.text, notation))
                display.notation = notation;
        } else if (element.name == "DisplayPrecision") {
            display.precision = ParseInteger(element.text);
        }
    }
}

// The formulas themselves come later: their variables may name entries of enumerations that are not built
// yet.
void NodeBuilder::BuildFormulaTarget() {
    m_node->formula = std::make_unique<FormulaPart>();
    for (const Element& element : m_source->elements) {
        if (element.name == "pValue")
            m_node->formula->node = Require(element);
        else if (element.name == "Slope")
            Read<ESlopeClass>(element.text, m_node->formula->slope);
    }
    const bool converts = m_node->type == NodeType::Converter || m_node->type == NodeType::IntConverter;
    if (converts && m_node->formula->node == kNoNode)
        throw Unbuildable("it has no pValue");
}

void NodeBuilder::BuildSwitch() {
    m_node->onOff = std::make_unique<SwitchPart>();
    for (const Element& element : m_source->elements) {
        if (element.name == "OnValue")
            m_node->onOff->on = Integer(element);
        else if (element.name == "OffValue")
            m_node->onOff->off = Integer(element);
        else
            continue;
        m_node->onOff->given = true;
    }
}

void NodeBuilder::BuildCommand() {
    m_node->onOff = std::make_unique<SwitchPart>();
    for (const Element& element : m_source->elements) {
        if (element.name == "CommandValue")
            m_node->onOff->on = Integer(element);
        else if (element.name == "pCommandValue")
            m_node->commandValue = Require(element);
    }
}

void NodeBuilder::BuildEnumeration() {
    for (const Element& element : m_source->elements)
        if ((element.name == "EnumEntry" || element.name == "pEnumEntry") && Optional(element) != kNoNode)
            m_node->entries.push_back(Optional(element));
}

void NodeBuilder::BuildEntry() {
    m_node->entry = std::make_unique<EntryPart>();
    EntryPart& entry = *m_node->entry;
    std::optional<double> numeric;
    bool given = false;
    for (const Element& element : m_source->elements) {
        if (element.name == "Value") {
            entry.value = Integer(element);
            given = true;
        } else if (element.name == "NumericValue") {
            numeric = ParseFloat(element.text);
        } else if (element.name == "Symbolic") {
            entry.symbolic = element.text;
        } else if (element.name == "IsSelfClearing") {
            entry.selfClearing = IsYes(element.text);
        }
    }
    m_node->kind = ValueKind::Integer;
    entry.numericValue = numeric.value_or(static_cast<double>(entry.value));
    if (!given)
        throw Unbuildable("it has no Value");
}

void NodeBuilder::BuildPort() {
    m_node->port = std::make_unique<PortPart>();
    for (const Element& element : m_source->elements) {
        if (element.name == "ChunkID")
            m_node->port->chunkId = element.text;
        if (element.name == "ChunkID" || element.name == "pChunkID")
            m_node->port->isChunk = true;
        else if (element.name == "SwapEndianess")
            m_node->port->swap = IsYes(element.text);
        else if (element.name == "CacheChunkData")
            m_node->port->cacheChunkData = IsYes(element.text);
    }
}

void NodeBuilder::BuildCategory() {
    for (const Element& element : m_source->elements)
        if (element.name == "pFeature" && Optional(element) != kNoNode)
            m_node->features.push_back(Optional(element));
}

NodeIndex NodeBuilder::Optional(const Element& element) const {
    return m_description.Find(element.text);
}

NodeIndex NodeBuilder::Require(const Element& element) const {
    const NodeIndex target = m_description.Find(element.text);
    if (target == kNoNode)
        throw Unbuildable(std::string(element.name) + " " + Quoted(element.text) + " does not exist");
    return target;
}

int64_t NodeBuilder::Integer(const Element& element) const {
    return AnyNumber(element).AsInteger();
}

Number NodeBuilder::AnyNumber(const Element& element) const {
    const auto number = ParseNumber(element.text);
    if (!number)
        throw Unbuildable("the " + std::string(element.name) + " " + Quoted(element.text) + " is no number");
    return *number;
}

} // namespace GENAPI_NAMESPACE::inside
