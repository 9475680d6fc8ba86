#pragma once

#include "genapi/src/document/Document.h"
#include "genapi/src/formula/Formula.h"

#include <GenApi/Types.h>

#include <memory>
#include <optional>
#include <unordered_map>

namespace GENAPI_NAMESPACE::inside {

using NodeIndex = uint32_t;
constexpr NodeIndex kNoNode = 0xFFFFFFFF;

enum class NodeType : uint8_t {
    Other, ///< known to have a name, but without behaviour here
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
    std::vector<AddressTerm> terms;
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
    uint32_t slot = 0; ///< place among all registers
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
    std::string initialText;
    NodeIndex node = kNoNode;
    std::vector<NodeIndex> copies;
    NodeIndex index = kNoNode;
    std::vector<TableEntry> entries;
    std::optional<TableEntry> fallback;
    uint32_t textSlot = 0; ///< place among the texts that belong to nodes
};

struct LimitPart {
    NumberSource min;
    NumberSource max;
    NumberSource inc;
    std::vector<int64_t> validValues;
};

struct DisplayPart {
    std::string unit;
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
    std::shared_ptr<const Formula> reading; ///< the knife's formula, or FormulaFrom
    std::shared_ptr<const Formula> writing; ///< FormulaTo
    std::vector<VariableReference> variables;
    std::string error; ///< why there is no compiled formula
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
    std::string symbolic;
    bool selfClearing = false;
    NodeIndex enumeration = kNoNode;
};

struct PortPart {
    std::string chunkId;
    bool isChunk = false;
    bool swap = false;
    bool cacheChunkData = false;
    uint32_t slot = 0; ///< place among all ports
};

/// One node, resolved. Parts that a type does not have are null.
struct NodeDescription {
    std::string_view name;
    NodeType type = NodeType::Other;
    ValueKind kind = ValueKind::None;
    EVisibility visibility = Beginner;
    EAccessMode imposedMode = RW;
    bool standard = false;
    bool streamable = false;
    bool deprecated = false;
    bool isFeature = false;
    bool cacheable = true;        ///< the value may be kept
    bool modeCacheable = true;    ///< the access mode may be kept
    bool addressVolatile = false; ///< a kept register value is valid only where it was read
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
    std::vector<NodeIndex> errors;    ///< pError
    std::vector<NodeIndex> entries;   ///< of an enumeration
    std::vector<NodeIndex> features;  ///< of a category
    std::vector<NodeIndex> selected;  ///< by this node
    std::vector<NodeIndex> selecting; ///< this node
    std::unique_ptr<RegisterPart> reg;
    std::unique_ptr<SourcePart> source;
    std::unique_ptr<LimitPart> limits;
    std::unique_ptr<DisplayPart> display;
    std::unique_ptr<FormulaPart> formula;
    std::unique_ptr<SwitchPart> onOff;
    std::unique_ptr<EntryPart> entry;
    std::unique_ptr<PortPart> port;
    std::string error; ///< why the node could not be built; it is then not implemented
};

/// Lists of neighbours for all nodes in two arrays.
class Adjacency {
public:
    struct Range {
        const NodeIndex* first;
        const NodeIndex* last;
        const NodeIndex* begin() const { return first; }
        const NodeIndex* end() const { return last; }
    };

    Adjacency() = default;
    /// `edges` are (from, to); each pair is kept once, in order.
    Adjacency(size_t nodes, std::vector<std::pair<NodeIndex, NodeIndex>> edges);

    Range Of(NodeIndex node) const {
        return {m_targets.data() + m_offsets[node], m_targets.data() + m_offsets[node + 1]};
    }

private:
    std::vector<uint32_t> m_offsets;
    std::vector<NodeIndex> m_targets;
};

/// A description that is ready to be used. Immutable and shared by every node map made from it.
struct Description {
    std::shared_ptr<const Document> document; ///< node i stands in document->nodes[i]
    std::vector<NodeDescription> nodes;
    std::unordered_map<std::string_view, NodeIndex> byName;
    Adjacency dependents;             ///< who becomes stale when a node changes
    Adjacency reads;                  ///< what a node's value is made of
    Adjacency invalidators;           ///< the nodes that a node names as pInvalidator
    std::vector<NodeIndex> registers; ///< by slot
    std::vector<NodeIndex> ports;
    std::vector<Number> tableValues; ///< initial values, by slot
    uint32_t texts = 0;
    std::vector<NodeIndex> polled;
    std::vector<NodeIndex> withEvent;
    std::vector<std::string> formulaErrors;

    NodeIndex Find(std::string_view name) const {
        const auto found = byName.find(name);
        return found == byName.end() ? kNoNode : found->second;
    }
};

/// Resolves names, compiles formulas and lays out the edges. Never fails for a single bad node: that one has
/// an error.
std::shared_ptr<const Description> LinkDescription(std::shared_ptr<const Document> document);

} // namespace GENAPI_NAMESPACE::inside
