#include "Camera.h"

#include <atomic>
#include <thread>

using namespace GenICam;
using namespace GenApi;

TEST(Threads, ReadersWritersAndEventsShareOneMap) {
    Camera camera(::Node("Integer", "F", "<pValue>R</pValue><pIsLocked>Lock</pIsLocked>") + IntReg("R", 0) +
                  ::Node("Integer", "Lock", "<Value>0</Value>") +
                  ::Node("IntSwissKnife", "K", "<pVariable Name=\"X\">F</pVariable><Formula>X*2</Formula>") +
                  "<Port Name=\"Ev\"><EventID>1</EventID></Port><IntReg "
                  "Name=\"E\"><Address>0</Address><Length>1</Length>"
                  "<AccessMode>RO</AccessMode><pPort>Ev</pPort></IntReg>");
    std::atomic<int> calls{0};
    Register(
        camera.Node("K"), [&](INode*) { ++calls; }, cbPostOutsideLock);
    std::vector<std::thread> threads;
    for (int t = 0; t < 2; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 300; ++i)
                camera.Int("F")->SetValue(t * 1000 + i);
        });
    threads.emplace_back([&] {
        for (int i = 0; i < 300; ++i)
            EXPECT_EQ(camera.Int("K")->GetValue() % 2, 0);
    });
    threads.emplace_back([&] {
        CEventAdapterGeneric adapter(camera.map._Ptr);
        for (int i = 0; i < 300; ++i) {
            const auto byte = static_cast<uint8_t>(i);
            adapter.DeliverMessage(&byte, 1, uint64_t{1});
            camera.Int("E")->GetValue();
            camera.Mode("F");
        }
    });
    threads.emplace_back([&] {
        for (int i = 0; i < 300; ++i) {
            const CallbackHandleType handle = Register(
                camera.Node("F"), [&](INode*) { ++calls; }, cbPostOutsideLock);
            camera.Node("R")->InvalidateNode();
            Deregister(handle);
        }
    });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_GE(calls, 600);
    EXPECT_EQ(camera.Int("K")->GetValue(), 2 * camera.Int("F")->GetValue());
}

TEST(Threads, MapsOfOneFactoryAreUsedAtOnce) {
    CNodeMapFactory factory(Describe(IntReg("R", 0) + ::Node("SwissKnife", "K",
                                                             "<pVariable Name=\"X\">R</pVariable>"
                                                             "<Formula>X/2</Formula>"))
                                .c_str());
    factory.Preprocess();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        CNodeMapRef map(factory.CreateNodeMap());
        threads.emplace_back([map, t] {
            FakePort port;
            map._Connect(&port);
            for (int i = 0; i < 200; ++i) {
                CIntegerPtr(map._GetNode("R"))->SetValue(i + t);
                EXPECT_EQ(CFloatPtr(map._GetNode("K"))->GetValue(), (i + t) / 2.0);
            }
            map._Connect(nullptr);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST(Threads, OutsideCallbackLeavesTheMapFreeForOthers) {
    Camera camera(IntReg("R", 0));
    bool free = false;
    Register(
        camera.Node("R"), [&](INode*) { free = camera.IsFree(); }, cbPostOutsideLock);
    camera.Int("R")->SetValue(1);
    EXPECT_TRUE(free);
}
