// Calls of the public interface in any order, valid and invalid, on a simulated camera that waits for
// triggers; each outcome is compared with a small model.
#include <ZqApi/ZqApi.h>

#include "fuzz/CallModel.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

namespace {

using namespace ZqApi;

void Require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "not as the model: %s\n", what);
    std::abort();
}

template <class Condition>
void Await(Condition condition, const char* what) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::microseconds(50));
    Require(condition(), what);
}

template <class Exception, class Call>
bool Throws(Call call) {
    try {
        call();
        return false;
    } catch (const Exception&) {
        return true;
    }
}

IZqSystem& TheSystem() {
    static IZqSystem& system = [&]() -> IZqSystem& {
        setenv("GENICAM_GENTL64_PATH", ZQ_PRODUCER_FOLDER, 1);
        ZqApiInitialize(ZqApiBuildVersion);
        return *CreateIZqSystem(ZqSystemVendor_Default, ZqInterfaceType_All);
    }();
    return system;
}

/// One camera and its stream, and the model beside.
class Sequence {
public:
    explicit Sequence(uint32_t interface) : m_Interface(*TheSystem().GetIZqInterface(interface)) {
        m_Device = m_Interface.CreateIZqDevice(size_t{0}, DEVICE_ACCESS_CONTROL);
        Number("Width")->SetValue(64);
        Number("Height")->SetValue(4);
        GenApi::CFloatPtr(Node("ExposureTime"))->SetValue(10);
        GenApi::CEnumerationPtr(Node("TriggerMode"))->FromString("On");
        GenApi::CEnumerationPtr(Node("TriggerSource"))->FromString("Software");
        m_Stream = m_Device->CreateIZqDataStream(0, nullptr);
        m_Stream->RegisterCallback(MakeCallback([this](IZqCallbackParamBase*) { ++m_Arrived; }));
    }

    ~Sequence() {
        GiveAllBack();
        m_Stream->Release();
        m_Device->Release();
    }

    void Do(uint8_t step) {
        const uint8_t argument = step >> 4;
        switch (step & 0x0F) {
        case 0:
            return StartStream(argument);
        case 1:
            return StopStream(argument);
        case 2:
            return StartCamera();
        case 3:
            return StopCamera();
        case 4:
        case 5:
        case 6:
            return Trigger();
        case 7:
        case 8:
            return Retrieve(argument);
        case 9:
            return GiveBack(argument, false);
        case 10:
            return GiveBack(argument, true);
        case 11:
            return SetCount(argument);
        case 12:
            return OpenAgain(argument);
        case 13:
            return AskAround();
        case 14:
            return Registrations(argument);
        case 15:
            return argument == 15 ? Lose() : AskAround();
        }
    }

private:
    GenApi::INode* Node(const char* name) {
        return m_Device->GetRemoteIZqPort()->GetINodeMap()->GetNode(name);
    }
    GenApi::CIntegerPtr Number(const char* name) { return Node(name); }

    void StartStream(uint8_t argument) {
        // A pool that shrinks takes the buffers in the application's hands with it.
        if (!m_Model.streaming && m_Model.count < m_Model.announced)
            GiveAllBack();
        const uint64_t frames = argument < 8 ? GENTL_INFINITE : argument - 8u;
        const auto start = [&] { m_Stream->StartAcquisition(frames, ACQ_START_FLAGS_DEFAULT); };
        if (m_Model.lost)
            return Require(Throws<GenICam::AccessException>(start), "start after a loss");
        if (m_Model.streaming || frames != 0) {
            start();
            return m_Model.StartStream(frames);
        }
        // Refused by the producer; the pool is gone then.
        GiveAllBack();
        Require(Throws<CZqGenTLErrorException>(start), "start for no frame");
        m_Model.announced = 0;
        m_Model.waiting.clear();
    }

    void StopStream(uint8_t argument) {
        const auto stop = [&] {
            m_Stream->StopAcquisition(argument < 8 ? ACQ_STOP_FLAGS_DEFAULT : ACQ_STOP_FLAGS_KILL);
        };
        const bool refused = m_Model.lost && m_Model.streaming;
        Require(Throws<CZqGenTLErrorException>(stop) == refused, "stop of the stream");
        m_Model.StopStream();
    }

    void StartCamera() {
        const auto start = [&] { m_Device->AcquisitionStart(); };
        Require(Throws<CZqGenTLErrorException>(start) == m_Model.lost, "start of the camera");
        if (!m_Model.lost)
            m_Model.StartCamera();
    }

    void StopCamera() {
        const auto stop = [&] { m_Device->AcquisitionStop(); };
        Require(Throws<CZqGenTLErrorException>(stop) == (m_Model.lost && m_Model.acquiring),
                "stop of the camera");
        m_Model.acquiring = false;
    }

    // What comes of a trigger is awaited, so that nothing is on its way when the next call is made.
    void Trigger() {
        if (!m_Model.Flows())
            return;
        const uint64_t arrived = m_Arrived;
        GenApi::CCommandPtr(Node("TriggerSoftware"))->Execute();
        if (m_Model.Trigger())
            Await([&] { return m_Arrived == arrived + 1; }, "a frame comes");
        else
            Await([&] { return Info().GetNumUnderrun() == m_Model.underrun; }, "a frame is lost");
    }

    void Retrieve(uint8_t argument) {
        const auto handling =
            argument % 2 == 0 ? ZqTimeoutHandling_ReturnNull : ZqTimeoutHandling_ThrowException;
        IZqStreamBufferReleasable* buffer = nullptr;
        const CallModel::Retrieval expected = m_Model.Retrieve();
        const auto retrieve = [&] { buffer = m_Stream->RetrieveBuffer(0, handling); };
        const bool timesOut =
            expected == CallModel::Retrieval::TimedOut && handling == ZqTimeoutHandling_ThrowException;
        if (timesOut)
            Require(Throws<GenICam::TimeoutException>(retrieve), "a time-out is thrown");
        else
            Require(Throws<GenICam::AccessException>(retrieve) == (expected == CallModel::Retrieval::Lost),
                    "a retrieval says whether the camera is lost");
        Require((buffer != nullptr) == (expected == CallModel::Retrieval::Frame),
                "whether a frame is handed out");
        if (buffer == nullptr)
            return;
        Require(buffer->GetIZqStreamBufferInfo()->GetFrameID() == m_Model.waiting.front(),
                "which frame is handed out");
        m_Model.waiting.pop_front();
        m_Held.push_back(buffer);
        m_Model.held = m_Held.size();
    }

    void GiveBack(uint8_t argument, bool twice) {
        if (m_Held.empty())
            return;
        const auto at = m_Held.begin() + argument % static_cast<long>(m_Held.size());
        IZqStreamBufferReleasable* const buffer = *at;
        m_Held.erase(at);
        m_Model.held = m_Held.size();
        const auto release = [&] { buffer->Release(); };
        Require(Throws<CZqGenTLErrorException>(release) == m_Model.lost, "a buffer is given back");
        if (twice)
            Require(Throws<CZqGenTLErrorException>(release), "a buffer is given back twice");
    }

    void GiveAllBack() {
        while (!m_Held.empty())
            GiveBack(0, false);
    }

    void SetCount(uint8_t argument) {
        static constexpr size_t counts[] = {0, 1, 2, 3, 4, 6, 65535 + 1, SIZE_MAX};
        const size_t count = counts[argument % 8];
        const bool refused = count < 1 || count > 65535;
        Require(Throws<GenICam::OutOfRangeException>([&] { m_Stream->SetStreamBufferCount(count); }) ==
                    refused,
                "which buffer counts are refused");
        if (!refused)
            m_Model.count = count;
        Require(m_Stream->GetStreamBufferCount() == m_Model.count, "the buffer count");
    }

    // What is open can't be opened again, and stays as it is.
    void OpenAgain(uint8_t argument) {
        if (argument % 2 == 0)
            Require(Throws<CZqGenTLErrorException>([&] { m_Device->CreateIZqDataStream(0, nullptr); }) ||
                        m_Model.lost,
                    "a stream is opened twice");
        else
            Require(Throws<GenICam::OutOfRangeException>([&] { m_Device->CreateIZqDataStream(1, nullptr); }),
                    "a stream that is not there");
    }

    void AskAround() {
        const IZqDataStreamInfo& info = Info();
        Require(info.GetNumUnderrun() == m_Model.underrun, "frames lost");
        Require(info.GetNumAwaitDelivery() == m_Model.waiting.size(), "frames that wait");
        Require(m_Device->IsDeviceLost() == m_Model.lost, "whether the camera is lost");
        if (!m_Model.lost)
            Require(Number("Width")->GetValue() == 64, "a feature");
    }

    void Registrations(uint8_t argument) {
        void* const handle = m_Stream->RegisterCallback(MakeCallback([](IZqCallbackParamBase*) {}));
        m_Stream->DeregisterCallback(handle);
        void* const stranger = argument % 2 == 0 ? nullptr : &m_Model;
        Require(Throws<GenICam::InvalidArgumentException>([&] { m_Stream->DeregisterCallback(stranger); }),
                "a callback that is not registered");
    }

    void Lose() {
        if (m_Model.lost)
            return;
        GenApi::CCommandPtr(Node("SimulationDeviceLost"))->Execute();
        Await([&] { return m_Device->IsDeviceLost(); }, "a loss is told");
        m_Model.lost = true;
    }

    const IZqDataStreamInfo& Info() { return *m_Stream->GetIZqDataStreamInfo(); }

    IZqInterface& m_Interface;
    IZqDeviceReleasable* m_Device = nullptr;
    IZqDataStreamReleasable* m_Stream = nullptr;
    std::vector<IZqStreamBufferReleasable*> m_Held;
    std::atomic<uint64_t> m_Arrived{0};
    CallModel m_Model;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    try {
        Sequence sequence(data[0] % 3);
        for (size_t i = 1; i < size && i < 200; ++i)
            sequence.Do(data[i]);
    } catch (const GenICam::GenericException& exception) {
        Require(false, exception.GetDescription());
    }
    return 0;
}
