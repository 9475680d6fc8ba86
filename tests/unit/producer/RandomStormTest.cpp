// Sixteen threads call everything with arguments of every kind, good ones, old ones and senseless ones. The
// time is two seconds unless ZQGENTL_STORM_SECONDS says otherwise. Nothing may break: what a call answers is
// not looked at, but afterwards the library still does what it should.

#include "ProducerTest.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <thread>

namespace {

constexpr size_t threadCount = 16;

enum class Is { System, Interface, Device, Remote, Stream, Buffer, Event };
constexpr size_t kinds = 7;

/// Numbers that follow from a seed.
class Dice {
public:
    explicit Dice(uint64_t seed) : m_state(seed * 0x9E3779B97F4A7C15ULL + 1) {}
    uint64_t Roll() {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 7;
        m_state ^= m_state << 17;
        return m_state;
    }
    uint64_t Below(uint64_t end) { return Roll() % end; }
    bool OneIn(uint64_t times) { return Below(times) == 0; }

private:
    uint64_t m_state;
};

/// The handles that threads got, the latest of each kind, open or not.
class Bag {
public:
    void Put(Is kind, void* handle) {
        std::lock_guard<std::mutex> guard(m_lock);
        std::deque<void*>& handles = m_handles[static_cast<size_t>(kind)];
        handles.push_back(handle);
        if (handles.size() > 8)
            handles.pop_front();
    }
    /// Mostly one of the kind, sometimes of another, sometimes nothing that ever was a handle.
    void* Take(Is kind, Dice& dice) {
        if (dice.OneIn(32))
            return reinterpret_cast<void*>(dice.OneIn(2) ? dice.Roll() : dice.Below(2) - 1);
        const size_t from = dice.OneIn(16) ? dice.Below(kinds) : static_cast<size_t>(kind);
        std::lock_guard<std::mutex> guard(m_lock);
        const std::deque<void*>& handles = m_handles[from];
        return handles.empty() ? nullptr : handles[dice.Below(handles.size())];
    }

    /// Whether there was a handle of every kind.
    [[nodiscard]] bool Complete() const {
        return std::none_of(std::begin(m_handles), std::end(m_handles),
                            [](const std::deque<void*>& handles) { return handles.empty(); });
    }

private:
    std::mutex m_lock;
    std::deque<void*> m_handles[kinds];
};

/// One of the threads: its dice, room for answers, and the calls.
class Caller {
public:
    Caller(const Functions& functions, Bag& bag, uint64_t seed)
        : gentl(functions), m_bag(bag), m_dice(seed) {}

    void Call();

private:
    void Opening();
    void Asking();
    void Ports();
    void Events();
    void Buffers();
    void Acquiring();
    void Closing();

    void* Take(Is kind) { return m_bag.Take(kind, m_dice); }
    /// What a call has put into m_out.
    void Keep(GC_ERROR result, Is kind) {
        if (result == GC_ERR_SUCCESS && m_out != nullptr)
            m_bag.Put(kind, m_out);
    }
    /// Now and then a pointer that is none, or too little room.
    template <class T>
    T* Or(T* pointer) {
        return m_dice.OneIn(24) ? nullptr : pointer;
    }
    size_t* Size() {
        m_size = m_dice.OneIn(8) ? m_dice.Below(8) : sizeof m_room;
        return Or(&m_size);
    }
    int32_t Command() { return static_cast<int32_t>(m_dice.Below(40)) - 2; }
    const char* DeviceId() {
        static const char* const ids[] = {"ZQ-U3V-0:SIM-U3V-0001", "ZQ-GEV-0:SIM-GEV-0001",
                                          "ZQ-CXP-0:SIM-CXP-0001", "nobody"};
        return Or(ids[m_dice.Below(4)]);
    }
    const char* InterfaceId() {
        static const char* const ids[] = {u3vInterface, gevInterface, cxpInterface, "nowhere"};
        return Or(ids[m_dice.Below(4)]);
    }
    uint64_t Address();
    void* Module() {
        constexpr Is modules[] = {Is::System, Is::Interface, Is::Device, Is::Stream, Is::Buffer, Is::Remote};
        return Take(modules[m_dice.Below(6)]);
    }

    const Functions& gentl;
    Bag& m_bag;
    Dice m_dice;
    alignas(16) char m_room[8192] = {};
    size_t m_size = 0;
    INFO_DATATYPE m_type = 0;
    void* m_out = nullptr;
    uint32_t m_count = 0;
};

uint64_t Caller::Address() {
    // What takes long or waits is left out: the delays of the port, of lost frames and of late ones.
    constexpr uint64_t addresses[] = {camera::Width,
                                      camera::Height,
                                      camera::OffsetX,
                                      camera::PixelFormat,
                                      0x424,
                                      camera::AcquisitionStart,
                                      camera::AcquisitionStop,
                                      camera::AcquisitionFrameRateEnable,
                                      camera::TLParamsLocked,
                                      camera::ChunkModeActive,
                                      camera::ChunkSelector,
                                      camera::ChunkEnable,
                                      camera::EventSelector,
                                      camera::EventNotification,
                                      camera::TestEventGenerate,
                                      camera::TriggerSelector,
                                      camera::TriggerMode,
                                      camera::TriggerSoftware,
                                      camera::SimulationLine0,
                                      camera::SimulationLine1,
                                      camera::CounterEventSource,
                                      camera::TimerTriggerSource,
                                      camera::TimerReset,
                                      camera::UserSetSelector,
                                      camera::UserSetLoad,
                                      camera::UserSetSave,
                                      camera::DropEvery,
                                      camera::IncompleteEvery,
                                      camera::LargerEvery,
                                      camera::BadChunksEvery,
                                      camera::ErrorEvery,
                                      camera::ComponentSelector,
                                      camera::ComponentEnable,
                                      camera::LUTEnable,
                                      camera::FileOperationSelector,
                                      camera::FileOperationExecute,
                                      0x400,
                                      0xA00,
                                      0xA04,
                                      0x80C,
                                      0x820,
                                      0x740,
                                      0x74C,
                                      0x588,
                                      0x304,
                                      0x100000};
    if (m_dice.OneIn(400))
        return m_dice.OneIn(4) ? camera::InterfaceLost : camera::SimulationDeviceLost;
    return m_dice.OneIn(16) ? m_dice.Roll() : addresses[m_dice.Below(std::size(addresses))];
}

void Caller::Opening() {
    m_out = nullptr;
    switch (m_dice.Below(5)) {
    case 0:
        return Keep(gentl.TLOpen(Or(&m_out)), Is::System);
    case 1:
        return Keep(gentl.TLOpenInterface(Take(Is::System), InterfaceId(), Or(&m_out)), Is::Interface);
    case 2:
        return Keep(gentl.IFOpenDevice(Take(Is::Interface), DeviceId(),
                                       static_cast<DEVICE_ACCESS_FLAGS>(m_dice.Below(6)), Or(&m_out)),
                    Is::Device);
    case 3:
        return Keep(gentl.DevGetPort(Take(Is::Device), Or(&m_out)), Is::Remote);
    default:
        return Keep(gentl.DevOpenDataStream(Take(Is::Device), Or("Stream0"), Or(&m_out)), Is::Stream);
    }
}

void Caller::Asking() {
    const auto index = static_cast<uint32_t>(m_dice.Below(4));
    GC_ERROR code = 0;
    bool8_t changed = 0;
    switch (m_dice.Below(20)) {
    case 0:
        gentl.GCGetInfo(Command(), Or(&m_type), Or(m_room), Size());
        break;
    case 1:
        gentl.GCGetLastError(Or(&code), Or(m_room), Size());
        break;
    case 2:
        gentl.TLGetInfo(Take(Is::System), Command(), Or(&m_type), Or(m_room), Size());
        break;
    case 3:
        gentl.TLUpdateInterfaceList(Take(Is::System), Or(&changed), 0);
        break;
    case 4:
        gentl.TLGetNumInterfaces(Take(Is::System), Or(&m_count));
        break;
    case 5:
        gentl.TLGetInterfaceID(Take(Is::System), index, Or(m_room), Size());
        break;
    case 6:
        gentl.TLGetInterfaceInfo(Take(Is::System), InterfaceId(), Command(), Or(&m_type), Or(m_room), Size());
        break;
    case 7:
        gentl.IFGetInfo(Take(Is::Interface), Command(), Or(&m_type), Or(m_room), Size());
        break;
    case 8:
        gentl.IFUpdateDeviceList(Take(Is::Interface), Or(&changed), 0);
        break;
    case 9:
        gentl.IFGetNumDevices(Take(Is::Interface), Or(&m_count));
        break;
    case 10:
        gentl.IFGetDeviceID(Take(Is::Interface), index, Or(m_room), Size());
        break;
    case 11:
        gentl.IFGetDeviceInfo(Take(Is::Interface), DeviceId(), Command(), Or(&m_type), Or(m_room), Size());
        break;
    case 12:
        gentl.DevGetInfo(Take(Is::Device), Command(), Or(&m_type), Or(m_room), Size());
        break;
    case 13:
        gentl.DevGetNumDataStreams(Take(Is::Device), Or(&m_count));
        break;
    case 14:
        gentl.DevGetDataStreamID(Take(Is::Device), index, Or(m_room), Size());
        break;
    case 15:
        gentl.DSGetInfo(Take(Is::Stream), Command(), Or(&m_type), Or(m_room), Size());
        break;
    case 16:
        gentl.IFGetParentTL(Take(Is::Interface), Or(&m_out));
        break;
    case 17:
        gentl.DevGetParentIF(Take(Is::Device), Or(&m_out));
        break;
    default:
        gentl.DSGetParentDev(Take(Is::Stream), Or(&m_out));
    }
}

void Caller::Ports() {
    size_t size = m_dice.OneIn(8) ? m_dice.Below(64) : 4;
    uint32_t value = static_cast<uint32_t>(m_dice.Below(m_dice.OneIn(4) ? 4096 : 4));
    PORT_REGISTER_STACK_ENTRY entries[2] = {{Address(), &value, 4}, {Address(), m_room, 4}};
    size_t count = 2;
    switch (m_dice.Below(8)) {
    case 0:
    case 1:
        size = 4;
        gentl.GCWritePort(Module(), Address(), Or(&value), Or(&size));
        break;
    case 2:
        gentl.GCReadPort(Module(), Address(), Or(m_room), Or(&size));
        break;
    case 3:
        gentl.GCReadPortStacked(Module(), Or(entries), Or(&count));
        break;
    case 4:
        gentl.GCWritePortStacked(Module(), Or(entries), Or(&count));
        break;
    case 5:
        gentl.GCGetPortInfo(Module(), Command(), Or(&m_type), Or(m_room), Size());
        break;
    case 6:
        gentl.GCGetNumPortURLs(Module(), Or(&m_count));
        gentl.GCGetPortURL(Module(), Or(m_room), Size());
        break;
    default:
        gentl.GCGetPortURLInfo(Module(), static_cast<uint32_t>(m_dice.Below(2)), Command(), Or(&m_type),
                               Or(m_room), Size());
    }
}

void Caller::Events() {
    const auto type = static_cast<EVENT_TYPE>(m_dice.Below(7));
    const void* event = Take(Is::Event);
    m_out = nullptr;
    switch (m_dice.Below(9)) {
    case 0:
        return Keep(gentl.GCRegisterEvent(Module(), type, Or(&m_out)), Is::Event);
    case 1:
        return Keep(gentl.GCRegisterEvent(Take(Is::Stream), EVENT_NEW_BUFFER, Or(&m_out)), Is::Event);
    case 2:
        gentl.GCUnregisterEvent(Module(), type);
        break;
    case 3:
        gentl.EventFlush(Take(Is::Event));
        break;
    case 4:
        gentl.EventKill(Take(Is::Event));
        break;
    case 5:
        gentl.EventGetInfo(const_cast<void*>(event), Command(), Or(&m_type), Or(m_room), Size());
        break;
    default:
        size_t size = sizeof m_room;
        char value[512];
        size_t valueSize = sizeof value;
        gentl.EventGetData(const_cast<void*>(event), Or(m_room), Or(&size), m_dice.Below(3));
        gentl.EventGetDataInfo(const_cast<void*>(event), Or(m_room), std::min(size, sizeof m_room), Command(),
                               Or(&m_type), Or(value), Or(&valueSize));
    }
}

void Caller::Buffers() {
    // Memory that no thread ever frees: a buffer may be filled as long as it is announced.
    static char memory[64][65536];
    const size_t size = m_dice.OneIn(4) ? 64 : sizeof memory[0];
    DS_HANDLE stream = Take(Is::Stream);
    BUFFER_HANDLE buffer = Take(Is::Buffer);
    SINGLE_CHUNK_DATA chunks[32];
    size_t count = m_dice.Below(32);
    m_out = nullptr;
    switch (m_dice.Below(11)) {
    case 0:
        return Keep(gentl.DSAllocAndAnnounceBuffer(stream, size, this, Or(&m_out)), Is::Buffer);
    case 1:
        return Keep(
            gentl.DSAnnounceBuffer(stream, Or<void>(memory[m_dice.Below(64)]), size, this, Or(&m_out)),
            Is::Buffer);
    case 2:
        gentl.DSRevokeBuffer(stream, buffer, Or(&m_out), nullptr);
        break;
    case 3:
        return Keep(gentl.DSGetBufferID(stream, static_cast<uint32_t>(m_dice.Below(8)), Or(&m_out)),
                    Is::Buffer);
    case 4:
        gentl.DSGetBufferInfo(stream, buffer, Command(), Or(&m_type), Or(m_room), Size());
        break;
    case 5:
        gentl.DSGetNumBufferParts(stream, buffer, Or(&m_count));
        break;
    case 6:
        gentl.DSGetBufferPartInfo(stream, buffer, static_cast<uint32_t>(m_dice.Below(3)), Command(),
                                  Or(&m_type), Or(m_room), Size());
        break;
    case 7:
        gentl.DSGetBufferChunkData(stream, buffer, Or(chunks), Or(&count));
        break;
    default:
        gentl.DSQueueBuffer(stream, buffer);
    }
}

void Caller::Acquiring() {
    DS_HANDLE stream = Take(Is::Stream);
    switch (m_dice.Below(4)) {
    case 0:
        gentl.DSFlushQueue(stream, static_cast<ACQ_QUEUE_TYPE>(m_dice.Below(7)));
        break;
    case 1:
        gentl.DSStopAcquisition(stream, static_cast<ACQ_STOP_FLAGS>(m_dice.Below(3)));
        break;
    default:
        gentl.DSStartAcquisition(stream, static_cast<ACQ_START_FLAGS>(m_dice.Below(2)),
                                 m_dice.OneIn(4) ? m_dice.Below(4) : GENTL_INFINITE);
    }
}

/// Rarely, so that there is something to close; the whole library most rarely.
void Caller::Closing() {
    switch (m_dice.Below(16)) {
    case 0:
        gentl.TLClose(Take(Is::System));
        break;
    case 1:
        gentl.IFClose(Take(Is::Interface));
        break;
    case 2:
    case 3:
        gentl.DevClose(Take(Is::Device));
        break;
    case 4:
        if (m_dice.OneIn(4))
            gentl.GCCloseLib();
        gentl.GCInitLib();
        break;
    default:
        gentl.DSClose(Take(Is::Stream));
    }
}

void Caller::Call() {
    using Part = void (Caller::*)();
    constexpr Part parts[] = {&Caller::Opening, &Caller::Opening,  &Caller::Asking,  &Caller::Ports,
                              &Caller::Ports,   &Caller::Events,   &Caller::Buffers, &Caller::Buffers,
                              &Caller::Buffers, &Caller::Acquiring};
    if (m_dice.OneIn(100))
        Closing();
    else
        (this->*parts[m_dice.Below(std::size(parts))])();
}

class RandomStorm : public CameraTest {};

std::chrono::seconds Duration() {
    const char* seconds = std::getenv("ZQGENTL_STORM_SECONDS");
    return std::chrono::seconds(seconds == nullptr ? 2 : std::atoi(seconds));
}

} // namespace

TEST_F(RandomStorm, LeavesALibraryThatWorks) {
    Bag bag;
    std::atomic<bool> stop{false};
    std::atomic<uint64_t> calls{0};
    std::vector<std::thread> threads;
    for (size_t i = 0; i < threadCount; ++i) {
        threads.emplace_back([&, i] {
            Caller caller(gentl, bag, i + 1);
            for (; !stop; ++calls)
                caller.Call();
        });
    }
    std::this_thread::sleep_for(Duration());
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_GT(calls, threadCount * 100);
    EXPECT_TRUE(bag.Complete());

    gentl.GCCloseLib();
    ASSERT_EQ(gentl.GCInitLib(), GC_ERR_SUCCESS);
    Open();
    OpenStream();
    MakeSmallAndFast();
    Queue(Announce(4, 64));
    Start(100);
    for (uint64_t frame = 0; frame < 100; ++frame) {
        const BUFFER_HANDLE buffer = Next();
        ASSERT_NE(buffer, nullptr);
        EXPECT_EQ(BufferInfo<uint64_t>(buffer, BUFFER_INFO_FRAMEID), frame);
        gentl.DSQueueBuffer(stream, buffer);
    }
}
