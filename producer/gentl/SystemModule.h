#pragma once

#include "producer/gentl/InterfaceModule.h"
#include "producer/gentl/Inventory.h"
#include "producer/gentl/ListState.h"
#include "producer/gentl/ModuleEvents.h"
#include "producer/gentl/OpenChildren.h"
#include "producer/gentl/UpdateTimes.h"

#include <atomic>
#include <memory>
#include <string>

namespace zqgentl {

/// The root of the module tree.
class SystemModule final : public Module,
                           public SystemListener,
                           public std::enable_shared_from_this<SystemModule> {
public:
    static constexpr Kind kind = Kind::System;

    explicit SystemModule(std::shared_ptr<Inventory> inventory);

    static void AnswerInfo(GenTL::TL_INFO_CMD command, const InfoTarget& target);

    /// GC_ERR_TIMEOUT, and the old list, when the search takes longer.
    bool UpdateList(uint64_t timeoutMs) {
        m_times.Search(timeoutMs);
        return m_list.Update(m_inventory->PresentInterfaces());
    }
    [[nodiscard]] UpdateTimes& Times() noexcept { return m_times; }
    [[nodiscard]] const UpdateTimes& Times() const noexcept { return m_times; }
    [[nodiscard]] size_t ListedCount() const { return m_list.Count(); }
    /// The interface at an index of the list; GC_ERR_INVALID_INDEX beyond it.
    [[nodiscard]] const BusModel& Listed(uint32_t index) const;
    [[nodiscard]] const BusModel& WithId(const std::string& id) const;
    [[nodiscard]] void* OpenInterface(const std::string& id);
    void Forget(const InterfaceModule& child) { m_interfaces.Forget(child); }
    void Close();

    [[nodiscard]] const Port& ModulePort() const override { return m_port; }
    /// The interface that the selector of the node map names; an empty record while the list is empty.
    [[nodiscard]] const BusModel* Selected() const;
    [[nodiscard]] size_t Selector() const noexcept { return m_selector; }
    void Select(int64_t index);
    void OnInterfaceListChanged() override;

private:
    [[nodiscard]] size_t IndexOf(const std::string& id) const;

    std::shared_ptr<Inventory> m_inventory;
    ListState m_list;
    UpdateTimes m_times;
    std::atomic<size_t> m_selector{0};
    OpenChildren<InterfaceModule> m_interfaces;
    ModuleEvents m_moduleEvents;
    RegisterMap m_registers{ByteOrder::Little};
    Port m_port;
};

} // namespace zqgentl
