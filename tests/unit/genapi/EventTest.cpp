#include "Camera.h"

#include <thread>

using namespace GenICam;
using namespace GenApi;

namespace {

const char* const kEventNodes =
    "<Port Name=\"EventPort\"><EventID>9C40</EventID></Port>"
    "<IntReg Name=\"Data\"><Address>2</Address><Length>2</Length><AccessMode>RO</AccessMode>"
    "<pPort>EventPort</pPort><Endianess>BigEndian</Endianess></IntReg>"
    "<Integer Name=\"EventData\"><pValue>Data</pValue></Integer>"
    "<Integer Name=\"EventDeviceLost\"><EventID>0004</EventID><Value>0</Value></Integer>";

} // namespace

TEST(EventAdapter, DataBecomesTheRegisterSpaceOfTheEventPort) {
    Camera camera(kEventNodes);
    EXPECT_EQ(camera.Mode("EventData"), NA);
    CEventAdapterGeneric adapter;
    adapter.AttachNodeMap(camera.map._Ptr);
    const uint8_t message[] = {0, 0, 0x12, 0x34};
    adapter.DeliverMessage(message, 4, gcstring("9c40"));
    EXPECT_EQ(camera.Mode("EventData"), RO);
    EXPECT_EQ(camera.Int("EventData")->GetValue(), 0x1234);
    const uint8_t next[] = {0, 0, 0x12, 0x35};
    adapter.DeliverMessage(next, 4, uint64_t{0x9C40});
    EXPECT_EQ(camera.Int("EventData")->GetValue(), 0x1235);
}

TEST(EventAdapter, DataThatIsTooShortMakesTheNodeUnavailable) {
    Camera camera(kEventNodes);
    CEventAdapterGeneric adapter(camera.map._Ptr);
    const uint8_t message[] = {0, 0, 0x12};
    adapter.DeliverMessage(message, 3, gcstring("0x9C40"));
    EXPECT_EQ(camera.Mode("EventData"), NA);
    EXPECT_THROW(camera.Int("EventData")->GetValue(), AccessException);
}

TEST(EventAdapter, OtherEventsChangeNothing) {
    Camera camera(kEventNodes);
    int* const lost = camera.Watch("EventDeviceLost");
    CEventAdapterGeneric adapter(camera.map._Ptr);
    const uint8_t message[4] = {};
    adapter.DeliverMessage(message, 4, gcstring("5"));
    EXPECT_EQ(camera.Mode("EventData"), NA);
    EXPECT_EQ(*lost, 0);
}

TEST(EventAdapter, CallbacksRunOnTheDeliveringThreadBeforeItReturns) {
    Camera camera(kEventNodes);
    std::thread::id thread;
    Register(camera.Node("EventDeviceLost"), [&](INode*) { thread = std::this_thread::get_id(); });
    CEventAdapterGeneric adapter(camera.map._Ptr);
    const uint8_t dummy = 0;
    std::thread::id delivering;
    std::thread([&] {
        delivering = std::this_thread::get_id();
        adapter.DeliverMessage(&dummy, 0, gcstring("4"));
    }).join();
    EXPECT_EQ(thread, delivering);
}

TEST(EventAdapter, BadArgumentsAreRefused) {
    Camera camera(kEventNodes);
    CEventAdapterGeneric adapter(camera.map._Ptr);
    const uint8_t dummy = 0;
    EXPECT_THROW(adapter.DeliverMessage(nullptr, 0, gcstring("4")), InvalidArgumentException);
    EXPECT_THROW(adapter.DeliverMessage(&dummy, 1, gcstring("xyz")), InvalidArgumentException);
    EXPECT_THROW(adapter.DeliverMessage(&dummy, 1), InvalidArgumentException);
    EXPECT_THROW(adapter.AttachNodeMap(nullptr), InvalidArgumentException);
}

TEST(EventAdapter, DetachedOneDeliversNowhere) {
    Camera camera(kEventNodes);
    CEventAdapterGeneric adapter(camera.map._Ptr);
    adapter.DetachNodeMap();
    int* const lost = camera.Watch("EventDeviceLost");
    const uint8_t dummy = 0;
    adapter.DeliverMessage(&dummy, 1, gcstring("4"));
    EXPECT_EQ(*lost, 0);
}
