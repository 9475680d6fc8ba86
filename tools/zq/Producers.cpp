#include "tools/zq/Producers.h"

#include "tools/zq/Failure.h"

#include <cstdlib>
#include <ostream>

namespace ZqTool {

namespace {

using namespace ZqApi;

struct Vendor {
    EZqSystemVendor_t vendor;
    const char* name;
    const char* file;
};

constexpr Vendor vendors[] = {
    {ZqSystemVendor_Default, "Default", "libzqgentl.cti"},
    {ZqSystemVendor_Euresys, "Euresys", "coaxlink.cti"},
    {ZqSystemVendor_Kaya, "Kaya", "KYFGLibGenTL.cti"},
    {ZqSystemVendor_SiliconSoftware, "SiliconSoftware", "siso_gentl.cti"},
};

/// The library says so when no folder of the search path has the file.
bool IsMissing(const GenICam::GenericException& error, const Vendor& vendor) {
    return std::string("File ") + vendor.file + " not found." == error.GetDescription();
}

Failure NoProducer() {
    const char* path = std::getenv("GENICAM_GENTL64_PATH");
    return {"looking for a producer",
            path == nullptr ? std::string("GENICAM_GENTL64_PATH is not set")
                            : "no known producer in GENICAM_GENTL64_PATH=" + std::string(path),
            "set GENICAM_GENTL64_PATH to the folder of a producer (a .cti file)", NothingFound};
}

} // namespace

std::vector<Producer> OpenProducers(const Library&, const Console& console) {
    std::vector<Producer> producers;
    std::vector<Failure> failures;
    for (const auto& vendor : vendors) {
        try {
            Held<IZqSystemReleasable> system(CreateIZqSystem(vendor.vendor, ZqInterfaceType_All));
            producers.push_back({vendor.name, vendor.file, std::move(system)});
        } catch (const GenICam::GenericException& error) {
            if (!IsMissing(error, vendor))
                failures.push_back(Failure::Of(std::string("opening the producer ") + vendor.file, error));
        }
    }
    if (producers.empty())
        throw failures.empty() ? NoProducer() : failures.front();
    for (const auto& failure : failures)
        failure.Print(console.err);
    return producers;
}

std::vector<ListedDevice> ListDevices(const std::vector<Producer>& producers) {
    std::vector<ListedDevice> devices;
    for (const auto& producer : producers) {
        for (size_t i = 0; i < producer.system->GetInterfaceCount(); ++i) {
            IZqInterface* iface = producer.system->GetIZqInterface(i);
            Doing(std::string("listing the cameras of ") + iface->GetIZqInterfaceInfo()->GetID().c_str(),
                  [&] {
                      iface->UpdateDeviceList();
                      for (size_t n = 0; n < iface->GetDeviceCount(); ++n)
                          devices.push_back({iface, n, iface->GetIZqDeviceInfo(n)->GetID().c_str()});
                  });
        }
    }
    return devices;
}

} // namespace ZqTool
