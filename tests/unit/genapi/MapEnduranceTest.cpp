// Eight threads on one map. Lasts half a second, or the seconds that ZQAPI_ENDURANCE_SECONDS gives.
#include "Camera.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

using namespace GenICam;
using namespace GenApi;

namespace {

std::chrono::milliseconds Duration() {
    const char* const seconds = std::getenv("ZQAPI_ENDURANCE_SECONDS");
    return std::chrono::milliseconds(seconds ? 1000 * std::atol(seconds) : 500);
}

/// Two halves that a careful writer keeps equal, a limit, a selector, and what is computed of them.
std::string Nodes() {
    return IntReg("Both", 0, 8, "<pInvalidator>Reset</pInvalidator><Endianess>LittleEndian</Endianess>") +
           Register(
               "MaskedIntReg", "Low", 0, 8,
               "<LSB>0</LSB><MSB>30</MSB><pInvalidator>Reset</pInvalidator><PollingTime>10</PollingTime>") +
           Register("MaskedIntReg", "High", 0, 8,
                    "<LSB>32</LSB><MSB>62</MSB><pInvalidator>Reset</pInvalidator>") +
           ::Node("IntSwissKnife", "Twice",
                  "<pVariable Name=\"B\">Both</pVariable><Formula>(B&amp;0x7FFFFFFF)*2</Formula>") +
           ::Node("Integer", "Sel", "<Value>0</Value><Min>0</Min><Max>3</Max><pSelected>Item</pSelected>") +
           ::Node("Integer", "Item", "<pValue>ItemReg</pValue>") +
           IntReg("ItemReg", 64, 4, "<pIndex Offset=\"4\">Sel</pIndex>") +
           ::Node("Command", "Reset", "<pValue>ResetReg</pValue><CommandValue>1</CommandValue>") +
           IntReg("ResetReg", 32, 4, "<AccessMode>WO</AccessMode>");
}

} // namespace

TEST(MapEndurance, EightThreadsReadWritePollAndInvalidate) {
    Camera camera(Nodes());
    for (int i = 0; i < 4; ++i)
        camera.port.Put(64 + 4 * i, {i + 1});
    std::atomic<bool> stop{false};
    std::atomic<uint64_t> operations{0};
    std::atomic<int> calls{0};
    Register(
        camera.Node("Twice"), [&](INode*) { ++calls; }, cbPostOutsideLock);
    const auto forever = [&](auto work) {
        return std::thread([&, work] {
            for (int64_t i = 0; !stop; ++i) {
                work(i);
                ++operations;
            }
        });
    };
    std::vector<std::thread> threads;
    for (int64_t writer = 0; writer < 2; ++writer)
        threads.push_back(forever([&, writer](int64_t i) {
            const int64_t half = (i * 2 + writer) % 1000000;
            camera.Int("Both")->SetValue(half | half << 32);
        }));
    for (int reader = 0; reader < 2; ++reader)
        threads.push_back(forever([&](int64_t i) {
            const int64_t both = camera.Int("Both")->GetValue(false, i % 3 == 0);
            EXPECT_EQ(both & 0x7FFFFFFF, both >> 32);
            EXPECT_EQ(camera.Int("Twice")->GetValue() % 2, 0);
            const AutoLock lock(camera.map._Ptr->GetLock());
            EXPECT_EQ(camera.Int("Low")->GetValue(), camera.Int("High")->GetValue());
            EXPECT_EQ(camera.Int("Twice")->GetValue(), 2 * camera.Int("Low")->GetValue());
        }));
    threads.push_back(forever([&](int64_t) { camera.map._Poll(5); }));
    threads.push_back(forever([&](int64_t i) {
        if (i % 2 == 0)
            camera.Node("Both")->InvalidateNode();
        else
            camera.map._InvalidateNodes();
    }));
    threads.push_back(forever([&](int64_t i) {
        const AutoLock lock(camera.map._Ptr->GetLock());
        camera.Int("Sel")->SetValue(i % 4);
        EXPECT_EQ(camera.Int("Item")->GetValue(), i % 4 + 1);
        camera.Command("Reset")->Execute();
    }));
    threads.push_back(forever([&](int64_t) {
        const CallbackHandleType handle = Register(
            camera.Node("Low"), [&](INode*) { ++calls; }, cbPostInsideLock);
        camera.Mode("Twice");
        camera.Value("Both")->ToString();
        Deregister(handle);
    }));
    std::this_thread::sleep_for(Duration());
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
    std::cout << operations << " operations, " << calls << " callbacks\n";
    EXPECT_GT(operations, 100u);
    EXPECT_GT(calls, 0);
    const int64_t both = camera.Int("Both")->GetValue(false, true);
    EXPECT_EQ(both & 0x7FFFFFFF, both >> 32);
}
