#pragma once

#include "genapi/src/description/Description.h"

namespace GENAPI_NAMESPACE::inside {

/// Compiles the formulas of one node; every node must have been built. A formula that can't be compiled
/// leaves its text in FormulaPart::error.
void BuildFormulas(Arena& arena, Description& description, NodeIndex index);

} // namespace GENAPI_NAMESPACE::inside
