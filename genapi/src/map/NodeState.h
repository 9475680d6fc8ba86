#pragma once

#include "genapi/src/map/ChunkBuffer.h"

namespace GENAPI_NAMESPACE {
struct IPort;
}

namespace GENAPI_NAMESPACE::inside {

/// What one node map knows of one node. Small, because every stream buffer may have a node
/// map of its own; the flags are bytes, because reading single bits takes longer than the rest.
struct NodeState {
    union {
        int64_t integer = 0;
        double real;
    };
    uint32_t visit = 0; ///< of the last invalidation that passed here
    uint32_t epoch = 0; ///< of the chunks that the kept value and mode come from
    uint8_t mode = 0;
    uint8_t modeOverPort = 0; ///< what the mode would be if the port could be written
    uint8_t imposedMode = RW;
    uint8_t imposedVisibility = Beginner;
    bool valueKept = false;
    bool modeKept = false;
    bool ownsValue = false; ///< the value lives here and nowhere else
    bool evaluating = false;
    bool askingMode = false;
    bool hasCallbacks = false;
    bool changed = false;     ///< waits for its callbacks
    bool active = false;      ///< a command that has been executed and not been seen done
    bool behindChunk = false; ///< what is kept may come from a chunk
    bool spreads = false;     ///< others become stale with it
};

static_assert(sizeof(NodeState) <= 32, "a node map has thousands");

/// Where a register's kept value was read.
struct Place {
    int64_t address = 0;
    int64_t length = 0;
};

struct PortState {
    IPort* implementation = nullptr;
    bool hasBytes = false; ///< the bytes below are the register space, unless there is a chunk
    std::vector<uint8_t> bytes;
    uint32_t chunk = kNoChunk; ///< place in the layout of the attached buffer
};

struct ImposedLimits {
    std::optional<Number> min;
    std::optional<Number> max;
};

} // namespace GENAPI_NAMESPACE::inside
