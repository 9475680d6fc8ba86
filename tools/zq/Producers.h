#pragma once

#include "tools/zq/Commands.h"
#include "tools/zq/Library.h"

#include <string>
#include <vector>

namespace ZqTool {

/// A vendor whose producer could be loaded.
struct Producer {
    const char* vendor;
    const char* file;
    Held<ZqApi::IZqSystemReleasable> system;
};

/// Every producer that is on the search path and lets itself be opened, in the order of the vendors; at least
/// one, else throws Failure. One that is there but fails beside others is named on err and left out.
std::vector<Producer> OpenProducers(const Library& library, const Console& console);

/// A camera as its interface lists it.
struct ListedDevice {
    ZqApi::IZqInterface* iface;
    size_t index;
    std::string id;
};

/// All cameras of all producers, after an update of each interface's list.
std::vector<ListedDevice> ListDevices(const std::vector<Producer>& producers);

} // namespace ZqTool
