#pragma once

#include "genapi/src/document/Document.h"
#include "genapi/src/formula/Formula.h"
#include "genapi/src/image/Arena.h"

#include <GenApi/Types.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace GENAPI_NAMESPACE::inside {

using NodeIndex = uint32_t;
constexpr NodeIndex kNoNode = 0xFFFFFFFF;

enum class NodeType : uint8_t {
    Other, ///< known to have a name, but without behaviour here
    Plain, ///< a name and what all nodes have
    ConfRom,
    TextDesc,
    IntKey,
    AdvFeatureLock,
    SmartFeature,
    Category,
    Integer,
    IntReg,
    MaskedIntReg,
    Float,
    FloatReg,
    Boolean,
    Command,
    Enumeration,
    EnumEntry,
    String,
    StringReg,
    Register,
    SwissKnife,
    IntSwissKnife,
    Converter,
    IntConverter,
    Port
};

/// How other nodes see a value.
enum class ValueKind : uint8_t { None, Integer, Float, Text, Bytes };

/// One summand of a register's address.
struct AddressTerm {
    NodeIndex node = kNoNode;
    enum class Factor : uint8_t { One, Constant, Node, Length } factor = Factor::One;
    int64_t offset = 0;
    NodeIndex offsetNode = kNoNode;
};

/// No register is longer, whatever a description or a device says.
constexpr int64_t kMaxRegisterLength = int64_t{64} * 1024 * 1024;

struct RegisterPart {
    int64_t address = 0; ///< sum of all constant terms
    List<AddressTerm> terms;
    int64_t length = 0;
    NodeIndex lengthNode = kNoNode;
    NodeIndex port = kNoNode;
    EAccessMode mode = RO;
    ECachingMode caching = WriteThrough;
    bool littleEndian = true;
    bool isSigned = false;
    bool masked = false;
    int64_t lsb = 0; ///< as the file has them: what they mean depends on the byte order
    int64_t msb = 0;
    uint32_t slot = 0;       ///< place among all registers
    bool sharesWord = false; ///< what was read for another register at the same place is good for this one
};

/// A number that the file gives, or the node that has it.
struct NumberSource {
    bool given = false;
    Number constant;
    NodeIndex node = kNoNode;
};

struct TableEntry {
    int64_t index = 0;
    NodeIndex node = kNoNode;
    uint32_t slot = 0; ///< place among the values that belong to table entries
};

/// Where Integer, Float, Boolean, Command, Enumeration and String have their value.
struct SourcePart {
    enum class Form : uint8_t { Own, Node, Table } form = Form::Own;
    Number initial;
    Text initialText;
    NodeIndex node = kNoNode;
    List<NodeIndex> copies;
    List<NodeIndex> targets; ///< of a write: the node and its copies, in the order of the file
    NodeIndex index = kNoNode;
    List<TableEntry> entries;
    std::optional<TableEntry> fallback;
    uint32_t textSlot = 0; ///< place among the texts that belong to nodes
};

struct LimitPart {
    NumberSource min;
    NumberSource max;
    NumberSource inc;
    List<int64_t> validValues;
};

struct DisplayPart {
    Text unit;
    std::optional<ERepresentation> representation;
    std::optional<EDisplayNotation> notation;
    std::optional<int64_t> precision;
};

/// What a variable of a formula reads.
struct VariableReference {
    enum class Property : uint8_t {
        Value,
        Min,
        Max,
        Inc,
        AccessMode,
        Visibility,
        CachingMode,
        Constant
    } property = Property::Value;
    NodeIndex node = kNoNode;
    int64_t constant = 0;
};

struct FormulaPart {
    Ref<Formula> reading; ///< the knife's formula, or FormulaFrom
    Ref<Formula> writing; ///< FormulaTo
    List<VariableReference> variables;
    Text error; ///< why there is no compiled formula
    NodeIndex node = kNoNode;
    ESlope slope = Automatic;
};

/// The slot that stands for TO in FormulaFrom and for FROM in FormulaTo.
constexpr uint32_t kConvertedSlot = 0xFFFFFFFF;

struct SwitchPart {
    int64_t on = 1;
    int64_t off = 0;
    bool given = false; ///< the file gives at least one of the two
};

struct EntryPart {
    int64_t value = 0;
    double numericValue = 0;
    Text symbolic;
    bool selfClearing = false;
    NodeIndex enumeration = kNoNode;
};

struct PortPart {
    Text chunkId;
    bool isChunk = false;
    bool swap = false;
    bool cacheChunkData = false;
    uint32_t slot = 0; ///< place among all ports
};

/// One node, resolved. Parts that a type does not have are null.
struct NodeDescription {
    Text name;
    NodeType type = NodeType::Other;
    ValueKind kind = ValueKind::None;
    EVisibility visibility = Beginner;
    EAccessMode imposedMode = RW;
    bool standard = false;
    bool streamable = false;
    bool deprecated = false;
    bool isFeature = false;
    bool cacheable = true;            ///< the value may be kept
    bool modeCacheable = true;        ///< the access mode may be kept
    bool modeFollowsValues = false;   ///< the access mode may change when values do, not only with the port
    bool addressVolatile = false;     ///< a kept register value is valid only where it was read
    bool selectsAllRegisters = false; ///< reaches too many through what it selects to have an edge to each
    bool hasEvent = false;
    uint64_t eventId = 0;
    int64_t pollingTime = -1;
    ECachingMode caching = WriteThrough; ///< the most restrictive of all it reads
    NodeIndex implemented = kNoNode;
    NodeIndex available = kNoNode;
    NodeIndex locked = kNoNode;
    NodeIndex blockPolling = kNoNode;
    NodeIndex alias = kNoNode;
    NodeIndex castAlias = kNoNode;
    NodeIndex commandValue = kNoNode;
    List<NodeIndex> errors;    ///< pError
    List<NodeIndex> entries;   ///< of an enumeration
    List<NodeIndex> features;  ///< of a category
    List<NodeIndex> selected;  ///< by this node
    List<NodeIndex> selecting; ///< this node
    Ref<RegisterPart> reg;
    Ref<SourcePart> source;
    Ref<LimitPart> limits;
    Ref<DisplayPart> display;
    Ref<FormulaPart> formula;
    Ref<SwitchPart> onOff;
    Ref<EntryPart> entry;
    Ref<PortPart> port;
    Text error; ///< why the node could not be built; it is then not implemented
};

/// Lists of neighbours for all nodes in two arrays.
class Adjacency {
public:
    struct Range {
        const NodeIndex* first;
        const NodeIndex* last;
        const NodeIndex* begin() const { return first; }
        const NodeIndex* end() const { return last; }
        bool IsEmpty() const { return first == last; }
    };

    Range Of(NodeIndex node) const {
        return {m_targets.begin() + m_offsets[node], m_targets.begin() + m_offsets[node + 1]};
    }
    void Keep(Arena& arena, const std::vector<uint32_t>& offsets, const std::vector<NodeIndex>& targets) {
        arena.KeepList(m_offsets, offsets);
        arena.KeepList(m_targets, targets);
    }

private:
    List<uint32_t> m_offsets;
    List<NodeIndex> m_targets;
};

/// A description that is ready to be used: the first part of an image. Immutable and shared by every node map
/// made from it.
struct Description {
    Document document; ///< node i stands in document.nodes[i]
    List<NodeDescription> nodes;
    Adjacency dependents;      ///< who becomes stale when a node changes
    Adjacency reads;           ///< what a node's value is made of
    Adjacency invalidators;    ///< the nodes that a node names as pInvalidator
    List<NodeIndex> registers; ///< by slot
    List<NodeIndex> ports;
    List<Number> tableValues; ///< initial values, by slot
    uint32_t texts = 0;
    List<NodeIndex> polled;
    List<NodeIndex> withEvent;
    List<Text> formulaErrors;

    NodeIndex Find(std::string_view name) const { return document.Find(name); }
};

static_assert(kNoNode == Document::kNowhere);

/// Resolves names, compiles formulas and lays out the edges. Never fails for a single bad node: that one has
/// an error.
void LinkDescription(Arena& arena, Description& description);

} // namespace GENAPI_NAMESPACE::inside
