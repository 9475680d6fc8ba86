#include "ProducerTest.h"

#include <dlfcn.h>
#include <thread>

namespace {

class Lifecycle : public ProducerTest {};

} // namespace

TEST(LibraryState, EverythingIsRefusedBeforeInit) {
    const Functions& gentl = Producer();
    TL_HANDLE system = nullptr;
    char text[64];
    size_t size = sizeof text;
    INFO_DATATYPE type = 0;
    GC_ERROR code = 0;
    EXPECT_EQ(gentl.TLOpen(&system), GC_ERR_NOT_INITIALIZED);
    EXPECT_EQ(gentl.GCGetInfo(TL_INFO_ID, &type, text, &size), GC_ERR_NOT_INITIALIZED);
    EXPECT_EQ(gentl.EventKill(nullptr), GC_ERR_NOT_INITIALIZED);
    EXPECT_EQ(gentl.DSGetBufferChunkData(nullptr, nullptr, nullptr, nullptr), GC_ERR_NOT_INITIALIZED);
    EXPECT_EQ(gentl.GCGetLastError(&code, text, &size), GC_ERR_NOT_INITIALIZED);
    EXPECT_EQ(gentl.GCCloseLib(), GC_ERR_NOT_INITIALIZED);
}

TEST(LibraryState, InitIsOncePerProcessUntilClose) {
    const Functions& gentl = Producer();
    EXPECT_EQ(gentl.GCInitLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.GCInitLib(), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(gentl.GCCloseLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.GCCloseLib(), GC_ERR_NOT_INITIALIZED);
    EXPECT_EQ(gentl.GCInitLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.GCCloseLib(), GC_ERR_SUCCESS);
}

TEST(LibraryState, CloseEndsEveryHandleForGood) {
    const Functions& gentl = Producer();
    TL_HANDLE before = nullptr;
    ASSERT_EQ(gentl.GCInitLib(), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.TLOpen(&before), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.GCCloseLib(), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.GCInitLib(), GC_ERR_SUCCESS);
    TL_HANDLE after = nullptr;
    ASSERT_EQ(gentl.TLOpen(&after), GC_ERR_SUCCESS);
    EXPECT_NE(before, after);
    uint32_t count = 0;
    EXPECT_EQ(gentl.TLGetNumInterfaces(before, &count), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.TLGetNumInterfaces(after, &count), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.GCCloseLib(), GC_ERR_SUCCESS);
}

TEST(LibraryState, CanBeLoadedLazilyToo) {
    void* library = dlopen(ZQGENTL_FILE, RTLD_LAZY | RTLD_NODELETE);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_NE(dlsym(library, "GCInitLib"), nullptr);
    dlclose(library);
}

TEST_F(Lifecycle, SecondOpeningOfAnythingIsRefused) {
    const TL_HANDLE system = OpenSystem();
    TL_HANDLE again = nullptr;
    EXPECT_EQ(gentl.TLOpen(&again), GC_ERR_RESOURCE_IN_USE);
    const IF_HANDLE interface = OpenInterface(system, gevInterface);
    EXPECT_EQ(gentl.TLOpenInterface(system, gevInterface, &again), GC_ERR_RESOURCE_IN_USE);
    DEV_HANDLE device = nullptr;
    ASSERT_EQ(gentl.IFOpenDevice(interface, "ZQ-GEV-0:SIM-GEV-0001", DEVICE_ACCESS_EXCLUSIVE, &device),
              GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.IFOpenDevice(interface, "ZQ-GEV-0:SIM-GEV-0001", DEVICE_ACCESS_READONLY, &again),
              GC_ERR_RESOURCE_IN_USE);
    DS_HANDLE stream = nullptr;
    ASSERT_EQ(gentl.DevOpenDataStream(device, "Stream0", &stream), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.DevOpenDataStream(device, "Stream0", &again), GC_ERR_RESOURCE_IN_USE);

    EXPECT_EQ(gentl.DSClose(stream), GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.DSClose(stream), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.DevOpenDataStream(device, "Stream0", &stream), GC_ERR_SUCCESS);
}

TEST_F(Lifecycle, ClosingTheSystemClosesAllBelow) {
    const TL_HANDLE system = OpenSystem();
    const IF_HANDLE interface = OpenInterface(system, u3vInterface);
    DEV_HANDLE device = nullptr;
    PORT_HANDLE remote = nullptr;
    DS_HANDLE stream = nullptr;
    BUFFER_HANDLE buffer = nullptr;
    EVENT_HANDLE event = nullptr;
    ASSERT_EQ(gentl.IFOpenDevice(interface, "ZQ-U3V-0:SIM-U3V-0001", DEVICE_ACCESS_CONTROL, &device), 0);
    ASSERT_EQ(gentl.DevGetPort(device, &remote), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.DevOpenDataStream(device, "Stream0", &stream), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.DSAllocAndAnnounceBuffer(stream, 64, nullptr, &buffer), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.GCRegisterEvent(buffer, EVENT_ERROR, &event), GC_ERR_SUCCESS);
    ASSERT_EQ(gentl.TLClose(system), GC_ERR_SUCCESS);

    uint32_t word = 0;
    size_t size = sizeof word;
    EXPECT_EQ(gentl.IFClose(interface), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.DevClose(device), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.GCReadPort(remote, 0, &word, &size), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.DSQueueBuffer(stream, buffer), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.GCRegisterEvent(buffer, EVENT_ERROR, &event), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.EventKill(event), GC_ERR_INVALID_HANDLE);
    EXPECT_NE(OpenSystem(), nullptr);
}

TEST_F(Lifecycle, ParentsAreKnown) {
    const TL_HANDLE system = OpenSystem();
    const IF_HANDLE interface = OpenInterface(system, cxpInterface);
    DEV_HANDLE device = nullptr;
    DS_HANDLE stream = nullptr;
    ASSERT_EQ(gentl.IFOpenDevice(interface, "ZQ-CXP-0:SIM-CXP-0001", DEVICE_ACCESS_CONTROL, &device), 0);
    ASSERT_EQ(gentl.DevOpenDataStream(device, "Stream0", &stream), GC_ERR_SUCCESS);
    void* parent = nullptr;
    EXPECT_EQ(gentl.DSGetParentDev(stream, &parent), GC_ERR_SUCCESS);
    EXPECT_EQ(parent, device);
    EXPECT_EQ(gentl.DevGetParentIF(device, &parent), GC_ERR_SUCCESS);
    EXPECT_EQ(parent, interface);
    EXPECT_EQ(gentl.IFGetParentTL(interface, &parent), GC_ERR_SUCCESS);
    EXPECT_EQ(parent, system);
}

TEST_F(Lifecycle, UnknownIdsAndFlagsAreRefused) {
    const TL_HANDLE system = OpenSystem();
    void* handle = nullptr;
    EXPECT_EQ(gentl.TLOpenInterface(system, "nowhere", &handle), GC_ERR_INVALID_ID);
    EXPECT_EQ(LastErrorText(), "TLOpenInterface: there is no interface 'nowhere'");
    EXPECT_EQ(gentl.TLOpenInterface(system, nullptr, &handle), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.TLOpenInterface(system, u3vInterface, nullptr), GC_ERR_INVALID_PARAMETER);
    const IF_HANDLE interface = OpenInterface(system, u3vInterface);
    EXPECT_EQ(gentl.IFOpenDevice(interface, "nobody", DEVICE_ACCESS_CONTROL, &handle), GC_ERR_INVALID_ID);
    EXPECT_EQ(gentl.IFOpenDevice(interface, "ZQ-U3V-0:SIM-U3V-0001", 5, &handle), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(gentl.IFOpenDevice(interface, "ZQ-U3V-0:SIM-U3V-0001", DEVICE_ACCESS_CONTROL, &handle), 0);
    EXPECT_EQ(gentl.DevOpenDataStream(handle, "Stream1", &handle), GC_ERR_INVALID_ID);
}

TEST_F(Lifecycle, LastErrorIsStickyAndPerThread) {
    GC_ERROR code = -1;
    char text[128] = "";
    size_t size = sizeof text;
    std::thread([&] { EXPECT_EQ(gentl.GCGetLastError(&code, text, &size), GC_ERR_SUCCESS); }).join();
    EXPECT_EQ(code, GC_ERR_SUCCESS);
    EXPECT_STREQ(text, "No Error");
    EXPECT_EQ(size, sizeof "No Error");

    EXPECT_EQ(gentl.TLClose(nullptr), GC_ERR_INVALID_HANDLE);
    const TL_HANDLE system = OpenSystem();
    EXPECT_EQ(gentl.TLClose(system), GC_ERR_SUCCESS);
    size = 3;
    EXPECT_EQ(gentl.GCGetLastError(&code, text, &size), GC_ERR_BUFFER_TOO_SMALL);
    size = sizeof text;
    EXPECT_EQ(gentl.GCGetLastError(&code, text, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(code, GC_ERR_INVALID_HANDLE);
    EXPECT_STREQ(text, "TLClose: the handle is not that of an open object of this kind");
}
