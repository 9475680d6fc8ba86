#pragma once

#include "tools/zq/Commands.h"
#include "tools/zq/Library.h"

namespace ZqTool {

/// Prints the interfaces and cameras of every producer, as text or as JSON.
int List(const Library& library, bool asJson, const Console& console);

} // namespace ZqTool
