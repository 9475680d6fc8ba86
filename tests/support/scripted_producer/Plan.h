#pragma once

#include "gentl/GenTL.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Scripted {

/// What there is to be found: the numbers in the symbols stay with an entry, also when it is taken away.
struct DevicePlan {
    int number;
    std::string id;
    int32_t accessStatus;
    std::vector<int> streamNumbers;
};

struct InterfacePlan {
    int number;
    std::string id;
    std::string tlType;
    std::vector<std::shared_ptr<DevicePlan>> devices;
};

class Plan {
public:
    /// One interface IF1 ("U3V") with one device DEV1 that has one stream.
    void MakeUsual();
    /// Numbering begins anew as well.
    void Clear() { *this = Plan(); }
    void AddInterface(const std::string& id, const std::string& tlType);
    bool RemoveInterface(const std::string& id);

    /// Changes the device when there is one of that identifier.
    bool AddDevice(const std::string& interfaceId, const std::string& id, int32_t accessStatus,
                   uint32_t streams);
    bool RemoveDevice(const std::string& interfaceId, const std::string& id);

    std::vector<std::shared_ptr<InterfacePlan>> interfaces;

private:
    int m_interfaceNumber = 0;
    int m_deviceNumber = 0;
    int m_streamNumber = 0;
};

/// The entry of that identifier, or null.
template <class Entry>
std::shared_ptr<Entry> FindById(const std::vector<std::shared_ptr<Entry>>& entries, const std::string& id) {
    for (const auto& entry : entries)
        if (entry->id == id)
            return entry;
    return nullptr;
}

} // namespace Scripted
