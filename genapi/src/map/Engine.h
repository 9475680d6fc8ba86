#pragma once

#include "genapi/src/map/NodeState.h"
#include "genapi/src/map/SharedWords.h"

#include <GenApi/IBase.h>

#include <map>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace GENAPI_NAMESPACE::inside {

/// The state of one node map and all that can be done with a node. Knows neither locks nor callbacks: whoever
/// calls holds the map's lock, and collects the changed nodes afterwards.
class Engine {
public:
    explicit Engine(std::shared_ptr<const Description> description);

    const Description& GetDescription() const { return *m_description; }
    const NodeDescription& Node(NodeIndex node) const { return m_nodes[node]; }
    /// What is kept in it is not out of date.
    NodeState& State(NodeIndex node) {
        NodeState& state = m_states[node];
        if (state.behindChunk && (state.epoch != m_chunks.epoch || m_chunks.idsVolatile))
            Renew(state);
        return state;
    }
    std::string Name(NodeIndex node) const { return Node(node).name.Copy(); }

    // Access modes
    EAccessMode Mode(NodeIndex node);
    bool IsReadableNode(NodeIndex node);
    /// AccessException with the reason.
    void RequireReadable(NodeIndex node);
    /// AccessException with the reason; passes when only the connected port forbids it, which then says so
    /// itself.
    void RequireWritable(NodeIndex node);
    void ImposeMode(NodeIndex node, EAccessMode mode);

    // Values. Reading does not check access.
    int64_t ReadInteger(NodeIndex node);
    double ReadFloat(NodeIndex node);
    Number ReadNumber(NodeIndex node);
    std::string ReadText(NodeIndex node);
    std::string ReadBytes(NodeIndex node);
    bool IsKept(NodeIndex node);
    void WriteInteger(NodeIndex node, int64_t value, bool verify);
    void WriteFloat(NodeIndex node, double value, bool verify);
    void WriteNumber(NodeIndex node, Number value, bool verify);
    void WriteText(NodeIndex node, const std::string& value, bool verify);
    void WriteBytes(NodeIndex node, const std::string& value);
    Place Locate(NodeIndex node);
    int64_t MaxTextLength(NodeIndex node);

    // Enumerations and commands
    /// The entry with that value: the first available one where several share it, else the first; kNoNode
    /// when none.
    NodeIndex EntryOf(NodeIndex enumeration, int64_t value);
    NodeIndex EntryNamed(NodeIndex enumeration, std::string_view symbolic) const;
    bool IsEntryAvailable(NodeIndex entry);
    /// AccessException with the reason when the entry can't be chosen now.
    void RequireEntry(NodeIndex enumeration, NodeIndex entry);
    void Execute(NodeIndex command, bool verify);
    bool IsDone(NodeIndex command);

    // Limits
    Number Min(NodeIndex node);
    Number Max(NodeIndex node);
    int64_t Increment(NodeIndex node);
    /// Nothing when the file gives none.
    std::optional<int64_t> StatedIncrement(NodeIndex node);
    std::optional<int64_t> SearchIncrement(NodeIndex node);
    /// True when the targets of a node with copies have increments that no one value could suit.
    bool IncrementsDiffer(NodeIndex node);
    std::optional<double> FloatIncrement(NodeIndex node);
    const List<int64_t>& ValidValues(NodeIndex node) const;
    /// OutOfRangeException when the value lies outside the limits.
    void CheckRange(NodeIndex node, int64_t value);
    void CheckRange(NodeIndex node, int64_t value, int64_t min, int64_t max);
    /// Also against increment and list.
    void CheckInteger(NodeIndex node, int64_t value);
    void CheckFloat(NodeIndex node, double value);
    void ImposeMin(NodeIndex node, Number value);
    void ImposeMax(NodeIndex node, Number value);

    // Ports
    PortState& Port(NodeIndex port) { return m_ports[Node(port).port->slot]; }
    void Connect(NodeIndex port, IPort* implementation);
    void AttachEvent(NodeIndex port, const uint8_t* data, size_t size);
    /// True when events or chunks are the port's register space.
    bool HoldsData(NodeIndex port);
    void PortRead(NodeIndex port, void* buffer, Place place);
    void PortWrite(NodeIndex port, const void* buffer, Place place);
    /// Somebody has written past the registers.
    void PortWritten(NodeIndex port, Place place);

    // Chunks. The buffer is not copied, but for ports that ask for it.
    /// Gives each chunk port the last of the chunks with its ID, if there is any.
    void AttachChunks(const uint8_t* base, const std::vector<ChunkPlace>& chunks, int64_t maxCopy);
    /// The buffer of the last layout lies elsewhere now. False when there is no layout.
    bool MoveChunks(const uint8_t* base, int64_t maxCopy);
    void DetachChunks();
    /// Also drops the layout and all copies.
    void DropChunks();
    void DropChunkCopies();
    const ChunkBuffer& Chunks() const { return m_chunks; }

    // Invalidation
    /// The node's value has been changed from outside: what depends on it is stale.
    void Changed(NodeIndex node);
    /// So has what may be done with it.
    void AccessChanged(NodeIndex node);
    /// Drops the node, what it reads and what depends on either.
    void Invalidate(NodeIndex node);
    void InvalidateAll();
    void Poll(int64_t elapsed);
    /// The nodes with callbacks that have changed since the last call, each once.
    std::vector<NodeIndex> TakeChanged();
    bool HasChanged() const { return !m_changed.empty(); }
    void SetHasCallbacks(NodeIndex node, bool has);

    /// While it lives, reads go past the cache (or, with false, use it again).
    class CacheUse {
    public:
        CacheUse(Engine& engine, bool ignore) : m_engine(engine), m_before(engine.m_ignoreCache) {
            engine.m_ignoreCache = ignore;
        }
        ~CacheUse() { m_engine.m_ignoreCache = m_before; }
        CacheUse(const CacheUse&) = delete;
        CacheUse& operator=(const CacheUse&) = delete;

    private:
        Engine& m_engine;
        bool m_before;
    };

    /// The nearest table entry, node or nothing for the current index; null when the index has no entry.
    const TableEntry* CurrentEntry(const SourcePart& source);

private:
    struct Modes {
        EAccessMode real = RW;
        EAccessMode overPort = RW; ///< with a connected port that can be written
    };
    enum class Truth : uint8_t { False, True, Unknown };
    enum class Side : uint8_t { Min, Max };
    /// What is out of date: values and the access that follows from values, or all access as well.
    enum class Stale : uint8_t { Values, All };
    class Step;
    class Level;
    class Variables;

    /// A file can make every node ask its neighbour twice, and so on: without a budget that doubles with
    /// every link of a chain.
    bool SpendStep() {
        constexpr int kMaxSteps = 1'000'000;
        m_steps = m_depth == 0 ? 1 : m_steps + 1;
        return m_steps <= kMaxSteps;
    }
    Modes ModesOf(NodeIndex node);
    Modes ComputeModes(NodeIndex node);
    Modes BaseModes(NodeIndex node);
    Modes RegisterModes(NodeIndex node);
    Modes SourceModes(NodeIndex node);
    Modes FormulaModes(NodeIndex node);
    Modes PortModes(NodeIndex port);
    bool IsInsideData(NodeIndex node);
    Truth Ask(NodeIndex predicate);
    std::string WhyNot(NodeIndex node, bool write, int depth);
    std::string WhyBaseNot(NodeIndex node, bool write, int depth);

    int64_t ComputeInteger(NodeIndex node);
    double ComputeFloat(NodeIndex node);
    Number ReadSource(NodeIndex node);
    int64_t ReadBoolean(NodeIndex node);
    double ReadNumericValue(NodeIndex enumeration);
    Number Evaluate(NodeIndex node, bool writing, const Number* converted);
    Number VariableValue(const VariableReference& variable);
    [[noreturn]] void NoNumber(NodeIndex node) const;
    void RequireBuilt(NodeIndex node) const;

    void FindChunkPorts();
    std::optional<uint64_t> ChunkIdOf(NodeIndex port);
    void MatchChunks();
    void TakeLayout(const std::vector<ChunkPlace>& chunks);
    void CopyChunks(int64_t maxCopy);
    void ChunksChanged();
    void ChunkIdsMayHaveChanged();
    void Renew(NodeState& state) const;
    const ChunkPlace* ChunkOf(NodeIndex port);
    const uint8_t* DataAt(NodeIndex port, Place place);
    std::optional<int64_t> Whereabouts(NodeIndex port, Place place);
    void ReadData(NodeIndex port, void* buffer, Place place);

    int64_t LengthOf(NodeIndex node);
    void ReadRegister(NodeIndex node, Place place, uint8_t* bytes);
    void ReadWord(NodeIndex node, Place place, uint8_t* bytes);
    void DropWord(NodeIndex node);
    bool IsKeptHere(NodeIndex node, Place* place);
    int64_t ReadIntegerRegister(NodeIndex node);
    double ReadFloatRegister(NodeIndex node);
    std::string ReadRegisterBytes(NodeIndex node);
    void KeepRegister(NodeIndex node, Place place);
    void WriteIntegerRegister(NodeIndex node, int64_t value);
    void WriteFloatRegister(NodeIndex node, double value);
    uint64_t CurrentBits(NodeIndex node, Place place);
    bool WriteRegister(NodeIndex node, Place place, const uint8_t* bytes);
    void InvalidateOverlaps(NodeIndex port, NodeIndex writer, Place place);

    void WriteSource(NodeIndex node, Number value, bool verify);
    void StoreOwn(NodeIndex node, Number value);
    void WriteConverted(NodeIndex node, Number value, bool verify);
    void WriteEnumeration(NodeIndex node, int64_t value, bool verify);
    NodeIndex NearestEntry(NodeIndex enumeration, double value);
    void ReportErrors(NodeIndex node);

    Number Limit(NodeIndex node, Side side);
    const Number* FixedLimit(NodeIndex node, Side side) const;
    Number OwnLimit(NodeIndex node, Side side);
    Number SourceLimit(NodeIndex node, Side side);
    Number ConverterLimit(NodeIndex node, Side side);
    std::optional<double> ConvertedLimit(NodeIndex node, Number limit);
    std::optional<Number> GivenNumber(const NumberSource& source);

    void Drop(NodeIndex node, Stale what);
    void MarkChanged(NodeIndex node);
    void Reach(NodeIndex node, Stale what);
    void Spread(const NodeIndex* from, size_t count, Stale what);
    void Spread(NodeIndex from, Stale what = Stale::Values) { Spread(&from, 1, what); }
    void Spread(const std::vector<NodeIndex>& from, Stale what = Stale::Values) {
        Spread(from.data(), from.size(), what);
    }
    bool IsPollingDue(size_t which, int64_t elapsed);

    std::shared_ptr<const Description> m_description;
    const NodeDescription* m_nodes; ///< of the description
    std::vector<NodeState> m_states;
    SharedWords m_words;
    std::vector<Place> m_places;                        ///< by register slot
    std::unordered_map<NodeIndex, std::string> m_bytes; ///< kept values of texts and raw registers
    std::vector<Number> m_tableValues;
    std::vector<std::string> m_texts;
    std::vector<PortState> m_ports;
    ChunkBuffer m_chunks;
    std::unordered_map<NodeIndex, ImposedLimits> m_imposed;
    std::map<std::tuple<NodeIndex, int64_t, int64_t>, uint64_t>
        m_written; ///< to registers that can't be read
    std::vector<int64_t> m_pollElapsed;
    std::vector<NodeIndex> m_changed;
    std::vector<NodeIndex> m_open; ///< scratch of Spread
    uint32_t m_visit = 0;
    int m_depth = 0;
    int m_steps = 0; ///< of the operation that runs
    bool m_ignoreCache = false;
    bool m_metCycle = false;
};

} // namespace GENAPI_NAMESPACE::inside
