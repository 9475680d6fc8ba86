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
        if (ReadEnum<EVisibilityClass>(element.text, visibility))
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
        node.implemented = m_reader.Find(element);
    } else if (name == "pIsAvailable") {
        node.available = m_reader.Find(element);
    } else if (name == "pIsLocked") {
        node.locked = m_reader.Find(element);
    } else if (name == "pBlockPolling") {
        node.blockPolling = m_reader.Find(element);
    } else if (name == "pAlias") {
        node.alias = m_reader.Find(element);
    } else if (name == "pCastAlias") {
        node.castAlias = m_reader.Find(element);
    } else if (name == "pError") {
        if (m_reader.Find(element) != kNoNode)
            node.errors.push_back(m_reader.Find(element));
    } else if (name == "pSelected") {
        if (m_reader.Find(element) != kNoNode)
            node.selected.push_back(m_reader.Find(element));
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
    m_node->reg = BuildRegisterPart(m_reader, *m_source, m_node->type);
    m_node->caching = m_node->reg->caching;
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
            source.initial = m_reader.AnyNumber(element);
    } else if (name == "pValue") {
        source.node = m_reader.Require(element);
    } else if (name == "pValueCopy") {
        source.copies.push_back(m_reader.Require(element));
    } else if (m_node->type != NodeType::Integer && m_node->type != NodeType::Float) {
        return; // only numbers can be tables
    } else if (name == "pIndex") {
        source.index = m_reader.Require(element);
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
        entry.node = m_reader.Require(element);
        return entry;
    }
    entry.slot = static_cast<uint32_t>(m_description.tableValues.size());
    m_description.tableValues.push_back(m_reader.AnyNumber(element));
    return entry;
}

void NodeBuilder::SetNumber(NumberSource& source, const Element& element) const {
    source.given = true;
    if (element.name[0] == 'p')
        source.node = m_reader.Require(element);
    else
        source.constant = m_reader.AnyNumber(element);
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
            if (ReadEnum<ERepresentationClass>(element.text, representation))
                display.representation = representation;
        } else if (element.name == "DisplayNotation") {
            EDisplayNotation notation = fnAutomatic;
            if (ReadEnum<EDisplayNotationClass>(element.text, notation))
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
            m_node->formula->node = m_reader.Require(element);
        else if (element.name == "Slope")
            ReadEnum<ESlopeClass>(element.text, m_node->formula->slope);
    }
    const bool converts = m_node->type == NodeType::Converter || m_node->type == NodeType::IntConverter;
    if (converts && m_node->formula->node == kNoNode)
        throw Unbuildable("it has no pValue");
}

void NodeBuilder::BuildSwitch() {
    m_node->onOff = std::make_unique<SwitchPart>();
    for (const Element& element : m_source->elements) {
        if (element.name == "OnValue")
            m_node->onOff->on = m_reader.Integer(element);
        else if (element.name == "OffValue")
            m_node->onOff->off = m_reader.Integer(element);
        else
            continue;
        m_node->onOff->given = true;
    }
}

void NodeBuilder::BuildCommand() {
    m_node->onOff = std::make_unique<SwitchPart>();
    for (const Element& element : m_source->elements) {
        if (element.name == "CommandValue")
            m_node->onOff->on = m_reader.Integer(element);
        else if (element.name == "pCommandValue")
            m_node->commandValue = m_reader.Require(element);
    }
}

void NodeBuilder::BuildEnumeration() {
    for (const Element& element : m_source->elements)
        if ((element.name == "EnumEntry" || element.name == "pEnumEntry") &&
            m_reader.Find(element) != kNoNode)
            m_node->entries.push_back(m_reader.Find(element));
}

void NodeBuilder::BuildEntry() {
    m_node->entry = std::make_unique<EntryPart>();
    EntryPart& entry = *m_node->entry;
    std::optional<double> numeric;
    bool given = false;
    for (const Element& element : m_source->elements) {
        if (element.name == "Value") {
            entry.value = m_reader.Integer(element);
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
        if (element.name == "pFeature" && m_reader.Find(element) != kNoNode)
            m_node->features.push_back(m_reader.Find(element));
}

} // namespace GENAPI_NAMESPACE::inside
