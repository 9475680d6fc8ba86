#include "producer/gentl/SystemModule.h"

#include <dlfcn.h>
#include <filesystem>
#include <system_error>

namespace zqgentl {

namespace {

constexpr const char* systemId = "ZQ-GENTL";
constexpr const char* systemModel = "ZqApi GenTL producer";
constexpr const char* displayName = "ZqApi simulated cameras";
constexpr const char* version = ZQGENTL_VERSION;
constexpr int32_t genTLMajor = 1;
constexpr int32_t genTLMinor = 5;
// Of the naming convention that the module descriptions follow.
constexpr int32_t conventionMajor = 1;
constexpr int32_t conventionMinor = 2;

std::string PathName();

/// As the file was loaded from here, whatever the folder of the process is later.
std::string PathAtLoading() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&PathName), &info) == 0 || info.dli_fname == nullptr)
        return "";
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(info.dli_fname, error);
    return error ? info.dli_fname : path.lexically_normal().string();
}

// Never destroyed: a thread may ask while the process ends.
const std::string& pathAtLoading = *new std::string(PathAtLoading());

std::string PathName() {
    if (pathAtLoading.empty())
        throw Failure(GenTL::GC_ERR_NOT_AVAILABLE, "the path of the library is unknown");
    return pathAtLoading;
}

std::string FileName() {
    const std::string path = PathName();
    return path.substr(path.find_last_of('/') + 1);
}

/// The information of the system is the same for everybody, so there is nothing to take it from.
struct Nothing {};

constexpr GenTL::INFO_DATATYPE String = GenTL::INFO_DATATYPE_STRING;
constexpr GenTL::INFO_DATATYPE Uint32 = GenTL::INFO_DATATYPE_UINT32;

constexpr InfoRow<Nothing> infoRows[] = {
    {GenTL::TL_INFO_ID, String, [](const Nothing&) { return InfoValue(systemId); }},
    {GenTL::TL_INFO_VENDOR, String, [](const Nothing&) { return InfoValue(vendorName); }},
    {GenTL::TL_INFO_MODEL, String, [](const Nothing&) { return InfoValue(systemModel); }},
    {GenTL::TL_INFO_VERSION, String, [](const Nothing&) { return InfoValue(version); }},
    {GenTL::TL_INFO_TLTYPE, String, [](const Nothing&) { return InfoValue(TLTypeMixedName); }},
    {GenTL::TL_INFO_NAME, String, [](const Nothing&) { return InfoValue(FileName()); }},
    {GenTL::TL_INFO_PATHNAME, String, [](const Nothing&) { return InfoValue(PathName()); }},
    {GenTL::TL_INFO_DISPLAYNAME, String, [](const Nothing&) { return InfoValue(displayName); }},
    {GenTL::TL_INFO_CHAR_ENCODING, GenTL::INFO_DATATYPE_INT32,
     [](const Nothing&) { return InfoValue(int32_t{GenTL::TL_CHAR_ENCODING_UTF8}); }},
    {GenTL::TL_INFO_GENTL_VER_MAJOR, Uint32, [](const Nothing&) { return InfoValue(genTLMajor); }},
    {GenTL::TL_INFO_GENTL_VER_MINOR, Uint32, [](const Nothing&) { return InfoValue(genTLMinor); }},
};

using Value = RegisterValue;
constexpr RegisterKind Integer = RegisterKind::Integer;
constexpr RegisterKind Text = RegisterKind::Text;

bool IsGev(const SystemModule& system) {
    return system.Selected() != nullptr && system.Selected()->technology == Technology::GigEVision;
}

Value SelectedText(const SystemModule& system, const char* BusModel::*text) {
    return Value(system.Selected() == nullptr ? std::string() : std::string(system.Selected()->*text));
}

constexpr RegisterRow<SystemModule> registerRows[] = {
    {0x0100, 64, Text, [](const SystemModule&) { return Value(std::string(systemId)); }, nullptr},
    {0x0140, 64, Text, [](const SystemModule&) { return Value(std::string(vendorName)); }, nullptr},
    {0x0180, 64, Text, [](const SystemModule&) { return Value(std::string(systemModel)); }, nullptr},
    {0x01C0, 64, Text, [](const SystemModule&) { return Value(std::string(version)); }, nullptr},
    {0x0200, 64, Text, [](const SystemModule&) { return Value(FileName()); }, nullptr},
    {0x0240, 64, Text, [](const SystemModule&) { return Value(std::string(displayName)); }, nullptr},
    {0x1000, 1024, Text, [](const SystemModule&) { return Value(PathName()); }, nullptr},
    {0x0300, 4, Integer, [](const SystemModule&) { return Value(static_cast<int64_t>(Technology::Mixed)); },
     nullptr},
    {0x0304, 4, Integer, [](const SystemModule&) { return Value(int64_t{genTLMajor}); }, nullptr},
    {0x0308, 4, Integer, [](const SystemModule&) { return Value(int64_t{genTLMinor}); }, nullptr},
    {0x030C, 4, Integer, [](const SystemModule&) { return Value(int64_t{conventionMajor}); }, nullptr},
    {0x0310, 4, Integer, [](const SystemModule&) { return Value(int64_t{conventionMinor}); }, nullptr},
    {0x0410, 4, Integer, [](const SystemModule& s) { return Value(static_cast<int64_t>(s.Selector())); },
     [](SystemModule& system, const Value& value) { system.Select(std::get<int64_t>(value)); }},
    {0x0414, 4, Integer,
     [](const SystemModule& s) {
         return Value(static_cast<int64_t>(s.ListedCount() == 0 ? 0 : s.ListedCount() - 1));
     },
     nullptr},
    {0x0418, 4, Integer,
     [](const SystemModule& s) {
         return Value(
             static_cast<int64_t>(s.Selected() == nullptr ? Technology::Mixed : s.Selected()->technology));
     },
     nullptr},
    {0x041C, 4, Integer, [](const SystemModule& s) { return Value(int64_t{IsGev(s)}); }, nullptr},
    {0x0500, 64, Text, [](const SystemModule& s) { return SelectedText(s, &BusModel::interfaceId); },
     nullptr},
    {0x0540, 64, Text, [](const SystemModule& s) { return SelectedText(s, &BusModel::interfaceName); },
     nullptr},
    {0x0600, 8, Integer, [](const SystemModule& s) { return Value(IsGev(s) ? simulatedMacAddress : 0); },
     nullptr},
    {0x0608, 4, Integer, [](const SystemModule& s) { return Value(IsGev(s) ? simulatedInterfaceIp : 0); },
     nullptr},
    {0x060C, 4, Integer, [](const SystemModule& s) { return Value(IsGev(s) ? simulatedSubnetMask : 0); },
     nullptr},
    {0x0610, 4, Integer, [](const SystemModule&) { return Value(int64_t{0}); }, nullptr},
};

/// Numbered as the enumeration EventSelector numbers them.
enum class SystemEvent { InterfaceListChanged };
constexpr uint16_t firstSystemEvent = 0x9020;

} // namespace

SystemModule::SystemModule(std::shared_ptr<Inventory> inventory)
    : Module(kind), m_inventory(std::move(inventory)), m_moduleEvents(*this, firstSystemEvent, 1),
      m_port({systemId, systemModel, TLTypeMixedName, "TLSystem", version, "TLPort", false, true},
             m_registers, descriptions::system) {
    m_registers.Bind(*this, registerRows);
    m_registers.Bind(*this, updateRows<SystemModule>);
    m_moduleEvents.BindTo(m_registers);
    m_registers.AddMemory(descriptionAddress, descriptions::system.data, descriptions::system.size);
    for (size_t i = 0; i < m_inventory->Count(); ++i)
        m_inventory->At(i).SetSystemListener(this);
}

void SystemModule::AnswerInfo(GenTL::TL_INFO_CMD command, const InfoTarget& target) {
    zqgentl::AnswerInfo(infoRows, Nothing(), command, target);
}

const BusModel& SystemModule::Listed(uint32_t index) const {
    const std::optional<size_t> listed = m_list.At(index);
    if (!listed.has_value())
        throw Failure(GenTL::GC_ERR_INVALID_INDEX,
                      "interface " + std::to_string(index) + " of " + std::to_string(ListedCount()));
    return m_inventory->At(*listed).Model();
}

size_t SystemModule::IndexOf(const std::string& id) const {
    for (size_t i = 0; i < m_inventory->Count(); ++i) {
        if (id == m_inventory->At(i).Model().interfaceId)
            return i;
    }
    throw Failure(GenTL::GC_ERR_INVALID_ID, "there is no interface '" + id + "'");
}

const BusModel& SystemModule::WithId(const std::string& id) const {
    return m_inventory->At(IndexOf(id)).Model();
}

void* SystemModule::OpenInterface(const std::string& id) {
    SimulatedInterface& bus = m_inventory->At(IndexOf(id));
    return m_interfaces.Open(id, [&] {
        if (bus.Away())
            throw Failure(GenTL::GC_ERR_IO, "the interface '" + id + "' is gone");
        return std::make_shared<InterfaceModule>(shared_from_this(), bus);
    });
}

const BusModel* SystemModule::Selected() const {
    const std::optional<size_t> listed = m_list.At(m_selector);
    return listed.has_value() ? &m_inventory->At(*listed).Model() : nullptr;
}

void SystemModule::Select(int64_t index) {
    if (index < 0 || static_cast<uint64_t>(index) >= ListedCount())
        throw Failure(GenTL::GC_ERR_INVALID_VALUE, "there is no interface " + std::to_string(index));
    m_selector = static_cast<size_t>(index);
}

void SystemModule::OnInterfaceListChanged() {
    m_moduleEvents.Send(SystemEvent::InterfaceListChanged);
}

void SystemModule::Close() {
    m_interfaces.CloseAll();
    for (size_t i = 0; i < m_inventory->Count(); ++i)
        m_inventory->At(i).SetSystemListener(nullptr);
    UnregisterEvents();
}

} // namespace zqgentl
