#pragma once

#include "Rig.h"

#include <vector>

/// Where the effect of a feature is seen. Own: the feature has no effect but its own register.
enum class Seen { Image, Frames, Chunk, Event, Register, Port, Own };

/// A value that was written: the number (of an enumeration the entry's, of a switch 0 or 1), or the text (of
/// an enumeration the entry's name, of a register the bytes).
struct Written {
    int64_t whole = 0;
    double real = 0;
    std::string text;
};

/// One writable feature: what it stands for, and how that is seen after it has been written. `prepare` makes
/// it writable and its effect visible; both run on a rig of their own for each value.
struct Row {
    Module module;
    const char* feature;
    Seen seen;
    const char* effect;
    void (*prepare)(Rig&);
    void (*see)(Rig&, const Written&);
    std::vector<std::string> (*texts)() = nullptr;
};

using Rows = std::vector<Row>;

[[nodiscard]] Rows ModuleRows();
[[nodiscard]] Rows ImageRows();
[[nodiscard]] Rows AcquisitionRows();
[[nodiscard]] Rows ControlRows();
[[nodiscard]] Rows StreamingRows();
[[nodiscard]] Rows KeepingRows();
[[nodiscard]] Rows SimulationRows();

inline void Nothing(Rig&) {}
inline void SmallAndFast(Rig& rig) {
    rig.SmallAndFast();
}
