#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

#include "tests/integration/Cameras.h"

namespace ZqTest {
namespace {

struct CameraEvent {
    int64_t frameId;
    int64_t timestamp;
};

/// What a node callback saw, for a thread that waits for it.
class Seen {
public:
    void Add(const CameraEvent& event) {
        const std::lock_guard<std::mutex> lock(m_Mutex);
        m_Events.push_back(event);
        m_Added.notify_all();
    }
    bool Take(CameraEvent& event) {
        std::unique_lock<std::mutex> lock(m_Mutex);
        if (!m_Added.wait_for(lock, std::chrono::seconds(10), [this] { return !m_Events.empty(); }))
            return false;
        event = m_Events.front();
        m_Events.pop_front();
        return true;
    }

private:
    std::mutex m_Mutex;
    std::condition_variable m_Added;
    std::deque<CameraEvent> m_Events;
};

/// A node callback for as long as the object lives.
class NodeCallback {
public:
    NodeCallback(GenApi::INode* pNode, std::function<void(GenApi::INode*)> callback)
        : m_Handle(GenApi::Register(pNode, std::move(callback))) {}
    ~NodeCallback() { GenApi::Deregister(m_Handle); }
    NodeCallback(const NodeCallback&) = delete;
    NodeCallback& operator=(const NodeCallback&) = delete;

private:
    const GenApi::CallbackHandleType m_Handle;
};

class DeviceEvents : public Cameras, public testing::WithParamInterface<size_t> {
protected:
    DeviceEvents() : device(Open(GetParam())), stream(OpenStream(device)) {
        SetSize(device, 16, 16);
        RunFreely(device);
    }

    GenApi::INode* Node(const char* name) { return device->GetRemoteIZqPort()->GetINodeMap()->GetNode(name); }
    int64_t Value(const char* name) { return GenApi::CIntegerPtr(Node(name))->GetValue(); }

    void Notify(const char* event) {
        GenApi::CEnumerationPtr(Node("EventSelector"))->FromString(event);
        GenApi::CEnumerationPtr(Node("EventNotification"))->FromString("On");
    }

    Buffer Retrieve() { return Buffer(stream->RetrieveBuffer(10000, ZqTimeoutHandling_ThrowException)); }

    template <class Condition>
    bool WhileStreaming(Condition condition) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        Start(device, stream);
        while (!condition() && std::chrono::steady_clock::now() < deadline)
            Retrieve();
        Stop(device, stream);
        return condition();
    }

    Device device;
    Stream stream;
};

TEST_P(DeviceEvents, ExposureEndIsThatOfItsFrame) {
    Notify("ExposureEnd");
    Seen seen;
    const NodeCallback callback(Node("EventExposureEnd"), [&](GenApi::INode*) {
        seen.Add({Value("EventExposureEndFrameID"), Value("EventExposureEndTimestamp")});
    });
    // GigE Vision has room for 16 bits of the frame id.
    const uint64_t room = GetParam() == 1 ? 0xFFFF : UINT64_MAX;
    Start(device, stream);
    for (uint64_t frame = 0; frame < 10000 / REPEAT_PART; ++frame) {
        const Buffer buffer = Retrieve();
        const IZqStreamBufferInfo& info = *buffer->GetIZqStreamBufferInfo();
        CameraEvent event{};
        ASSERT_TRUE(seen.Take(event)) << frame;
        ASSERT_EQ(static_cast<uint64_t>(event.frameId), info.GetFrameID() & room);
        ASSERT_EQ(static_cast<uint64_t>(event.timestamp), info.GetTimestamp());
    }
    Stop(device, stream);
}

TEST_P(DeviceEvents, EventOnCommandArrivesWithoutAStream) {
    Notify("Test");
    Seen seen;
    const NodeCallback callback(Node("EventTest"), [&](GenApi::INode*) {
        seen.Add({Value("EventTest"), 0});
    });
    for (int round = 0; round < 10; ++round) {
        Execute(device, "TestEventGenerate");
        CameraEvent event{};
        ASSERT_TRUE(seen.Take(event));
        EXPECT_EQ(event.frameId, 0x4FFF);
    }
}

TEST_P(DeviceEvents, ThatAreOffDoNotCome) {
    std::atomic<int> events{0};
    const NodeCallback callback(Node("EventExposureEnd"), [&](GenApi::INode*) { ++events; });
    int frames = 0;
    WhileStreaming([&] { return ++frames > 100; });
    EXPECT_EQ(events, 0);
}

TEST_P(DeviceEvents, TemperatureIsSeenToMoveWithoutPolling) {
    GenApi::CFloatPtr temperature = Node("DeviceTemperature");
    const double before = temperature->GetValue();
    std::atomic<bool> warmer{false};
    const NodeCallback callback(Node("DeviceTemperature"), [&](GenApi::INode* pNode) {
        if (GenApi::CFloatPtr(pNode)->GetValue() > before)
            warmer = true;
    });
    EXPECT_TRUE(WhileStreaming([&] { return warmer.load(); }));
}

TEST_P(DeviceEvents, AutomaticExposureIsSeenToMove) {
    GenApi::CFloatPtr exposure = Node("ExposureTime");
    const double before = exposure->GetValue();
    GenApi::CEnumerationPtr(Node("ExposureAuto"))->FromString("Continuous");
    std::atomic<bool> moved{false};
    const NodeCallback callback(Node("ExposureTime"), [&](GenApi::INode* pNode) {
        if (GenApi::CFloatPtr(pNode)->GetValue() != before)
            moved = true;
    });
    EXPECT_TRUE(WhileStreaming([&] { return moved.load(); }));
}

INSTANTIATE_TEST_SUITE_P(Cameras, DeviceEvents, testing::Values(0, 1, 2));

} // namespace
} // namespace ZqTest
