// A description's URL, the first line of the input, and what lies in the camera's registers where
// descriptions do: the camera opens or is refused, and nothing stays open.
#include <ZqApi/ZqApi.h>

#include "ZqSDKCommon/DescriptionURL.h"
#include "tests/support/ScriptedProducer.h"

#include <cstdlib>
#include <memory>

namespace {

using namespace ZqApi;

constexpr uint64_t DESCRIPTION_ADDRESS = 0x10000;
// The library reads up to a gigabyte, which takes its time and shows no more.
constexpr uint64_t LARGEST_LENGTH = 1 << 20;

struct Tree {
    Tree() {
        ZqApiInitialize(ZqApiBuildVersion);
        system = CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_All);
    }

    ZqTest::ScriptedProducer producer;
    IZqSystem* system = nullptr;
};

void Open(IZqSystem& system) {
    IZqDeviceReleasable* device = nullptr;
    try {
        device = system.GetIZqInterface(0)->CreateIZqDevice(size_t{0}, DEVICE_ACCESS_CONTROL);
        IZqPort& port = *device->GetRemoteIZqPort();
        if (port.GetINodeMap() == nullptr)
            std::abort();
        port.GetXMLFileName();
    } catch (const GenICam::GenericException&) {
        // What is no description is refused.
    }
    if (device != nullptr)
        device->Release();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Never taken down: the process ends with it.
    static Tree& tree = *new Tree;
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::string url = input.substr(0, input.find('\n'));
    const uint64_t length = ParseURLLocalLength(gcstring(url.c_str()));
    if (length > LARGEST_LENGTH && length <= (1ULL << 30))
        return 0;
    tree.producer.WriteRegister("REMOTE", DESCRIPTION_ADDRESS,
                                url.size() < size ? input.substr(url.size() + 1) : std::string());
    tree.producer.SetUrl("REMOTE", url);
    tree.producer.ClearLog();
    Open(*tree.system);
    for (const char* const kind : {"DEV", "DS", "BUF"})
        if (tree.producer.Opened(kind) != tree.producer.Closed(kind))
            std::abort();
    return 0;
}
