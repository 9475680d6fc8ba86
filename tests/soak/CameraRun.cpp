#include "tests/soak/CameraRun.h"

#include <cstdio>
#include <deque>
#include <thread>

namespace ZqSoak {
namespace {

using namespace ZqApi;
using std::chrono::milliseconds;

constexpr int64_t LARGEST_COUNT = 2147483647;
constexpr milliseconds LONGEST_ABSENCE(10000);

} // namespace

CameraRun::CameraRun(IZqInterface& interface, const std::string& id, uint64_t seed)
    : m_Interface(interface), m_Id(id), m_Chance(seed) {}

void CameraRun::Complain(const std::string& text) {
    ++m_Failures;
    std::fprintf(stderr, "%s, acquisition %d: %s\n", m_Id.c_str(), m_Acquisition, text.c_str());
}

void CameraRun::Run(Clock::time_point end) {
    try {
        while (Clock::now() < end) {
            m_Device = Open();
            m_Lost = false;
            SetUp();
            m_Stream.reset(m_Device->CreateIZqDataStream(0, nullptr));
            for (int64_t left = m_Chance.Between(1, 6); left > 0 && Acquire(end); --left)
                continue;
            m_Stream.reset();
            m_Device.reset();
        }
    } catch (const GenICam::GenericException& exception) {
        Complain(exception.GetDescription());
    }
    m_Totals.featureAccesses = m_FeatureAccesses;
    m_Totals.portErrors = m_PortErrors;
    m_Totals.saves = m_Saves;
    m_Totals.failures += m_Failures;
}

Device CameraRun::Open() {
    const auto deadline = Clock::now() + LONGEST_ABSENCE;
    for (;;) {
        try {
            return Device(m_Interface.CreateIZqDevice(m_Id.c_str(), DEVICE_ACCESS_CONTROL));
        } catch (const GenICam::GenericException&) {
            // Lost, and not found again yet.
            if (Clock::now() > deadline)
                throw;
        }
        std::this_thread::sleep_for(milliseconds(5));
        m_Interface.UpdateDeviceList();
    }
}

void CameraRun::SetUp() {
    Set("Width", 512);
    Set("Height", m_Chance.Between(1, 64));
    Choose("TestPattern", "FrameCounter");
    Choose("CounterEventSource", "FrameStart");
    Set("CounterDuration", LARGEST_COUNT);
    Choose("EventSelector", "Error");
    Choose("EventNotification", "On");
}

CameraRun::Plan CameraRun::MakePlan() {
    static constexpr const char* handlings[] = {"OldestFirst", "OldestFirstOverwrite", "NewestOnly"};
    Plan plan;
    plan.expected.faults = Faults::Random(m_Chance);
    plan.expected.chunks = m_Chance.OneIn(2);
    plan.buffers = static_cast<size_t>(m_Chance.Between(2, 8));
    plan.handling = handlings[m_Chance.OneIn(2) ? 0 : m_Chance.Between(0, 2)];
    plan.callback = m_Chance.OneIn(2);
    plan.expected.ascending = !plan.callback;
    plan.durationMs = m_Chance.Between(10, 400);
    plan.lost = m_Chance.OneIn(6);
    plan.killed = !plan.lost && m_Chance.OneIn(4);
    return plan;
}

void CameraRun::Configure(const Plan& plan) {
    const Faults& faults = plan.expected.faults;
    Set("SimulationDropEvery", faults.dropEvery);
    Set("SimulationIncompleteEvery", faults.incompleteEvery);
    Set("SimulationLargerEvery", faults.largerEvery);
    Set("SimulationBadChunksEvery", faults.badChunksEvery);
    Set("SimulationLateEvery", faults.lateEvery);
    Set("SimulationLateTime", m_Chance.Between(1, 5));
    Set("SimulationErrorEvery", faults.errorEvery);
    Switch("AcquisitionFrameRateEnable", m_Chance.OneIn(2));
    Switch("ChunkModeActive", plan.expected.chunks);
    if (plan.expected.chunks) {
        Choose("ChunkSelector", "Image");
        Switch("ChunkEnable", true);
        Choose("ChunkSelector", "FrameID");
        Switch("ChunkEnable", true);
    }
    Execute("CounterReset");
    m_Stream->SetStreamBufferCount(plan.buffers);
    const GenApi::CEnumerationPtr handling =
        m_Stream->GetIZqPort()->GetINodeMap()->GetNode("StreamBufferHandlingMode");
    handling->FromString(plan.handling);
}

bool CameraRun::Acquire(Clock::time_point end) {
    ++m_Acquisition;
    const Plan plan = MakePlan();
    Configure(plan);
    m_Lost = plan.lost;
    const IZqDataStreamInfo& info = *m_Stream->GetIZqDataStreamInfo();
    const uint64_t underrun = info.GetNumUnderrun();
    const uint64_t begun = info.GetNumStarted();
    FrameAccount account(plan.expected);
    void* callback = nullptr;
    if (plan.callback)
        callback = m_Stream->RegisterCallback(
            MakeCallback([this, &account](IZqCallbackParamBase*) { TakeIfThere(account); }));
    m_Stream->StartAcquisition(GENTL_INFINITE, ACQ_START_FLAGS_DEFAULT);
    m_Device->AcquisitionStart();

    std::atomic<bool> ends{false};
    std::thread features([this, &ends, seed = static_cast<uint64_t>(m_Chance.Between(0, LARGEST_COUNT))] {
        UseFeatures(ends, seed);
    });
    if (plan.lost) {
        Set("SimulationReturnTime", m_Chance.OneIn(3) ? 0 : m_Chance.Between(1, 300));
        Set("SimulationLossDelay", plan.durationMs / 2);
        Execute("SimulationDeviceLost");
    }
    Consume(account, plan, std::min(end, Clock::now() + milliseconds(plan.durationMs)));
    if (plan.lost)
        AwaitLoss();
    Stop(plan);
    ends = true;
    features.join();
    if (callback != nullptr)
        m_Stream->DeregisterCallback(callback);
    // What had come before the stop, or before the loss, can still be retrieved.
    while (TakeIfThere(account))
        continue;
    Finish(account, plan, underrun, begun);
    return !plan.lost;
}

void CameraRun::TakeOne(IZqStreamBufferReleasable* pBuffer, FrameAccount& account) {
    try {
        account.Take(*pBuffer);
    } catch (const GenICam::GenericException& exception) {
        Complain(exception.GetDescription());
    }
    try {
        pBuffer->Release();
    } catch (const CZqGenTLErrorException& exception) {
        if (!m_Lost || exception.GetError() != GenTL::GC_ERR_IO)
            Complain(exception.GetDescription());
    }
}

// Some buffers are kept for a while, so that the camera runs out of them.
void CameraRun::Consume(FrameAccount& account, const Plan& plan, Clock::time_point end) {
    if (plan.callback) {
        std::this_thread::sleep_until(end);
        return;
    }
    std::deque<IZqStreamBufferReleasable*> kept;
    const auto giveBack = [&] {
        TakeOne(kept.front(), account);
        kept.pop_front();
    };
    try {
        while (Clock::now() < end) {
            if (IZqStreamBufferReleasable* const pBuffer =
                    m_Stream->RetrieveBuffer(20, ZqTimeoutHandling_ReturnNull))
                kept.push_back(pBuffer);
            if (!kept.empty() && (kept.size() == plan.buffers || m_Chance.OneIn(2)))
                giveBack();
            if (m_Chance.OneIn(50))
                std::this_thread::sleep_for(milliseconds(m_Chance.Between(1, 5)));
        }
    } catch (const GenICam::AccessException& exception) {
        if (!plan.lost || exception.GetDescription() != std::string("The device is lost."))
            Complain(exception.GetDescription());
    }
    while (!kept.empty())
        giveBack();
}

bool CameraRun::TakeIfThere(FrameAccount& account) {
    try {
        IZqStreamBufferReleasable* const pBuffer = m_Stream->RetrieveBuffer(0, ZqTimeoutHandling_ReturnNull);
        if (pBuffer != nullptr)
            TakeOne(pBuffer, account);
        return pBuffer != nullptr;
    } catch (const GenICam::AccessException& exception) {
        if (!m_Lost || exception.GetDescription() != std::string("The device is lost."))
            Complain(exception.GetDescription());
        return false;
    }
}

void CameraRun::AwaitLoss() {
    const auto deadline = Clock::now() + LONGEST_ABSENCE;
    while (!m_Device->IsDeviceLost() && Clock::now() < deadline)
        std::this_thread::sleep_for(milliseconds(1));
    if (!m_Device->IsDeviceLost())
        Complain("the loss of the camera was not told");
}

void CameraRun::Stop(const Plan& plan) {
    const auto run = [this, &plan](auto&& step) {
        try {
            step();
        } catch (const CZqGenTLErrorException& exception) {
            if (!plan.lost || exception.GetError() != GenTL::GC_ERR_IO)
                Complain(exception.GetDescription());
        }
    };
    if (plan.killed)
        run([this] { m_Stream->StopAcquisition(ACQ_STOP_FLAGS_KILL); });
    run([this] { m_Device->AcquisitionStop(); });
    if (!plan.killed)
        run([this] { m_Stream->StopAcquisition(ACQ_STOP_FLAGS_DEFAULT); });
}

void CameraRun::Finish(FrameAccount& account, const Plan& plan, uint64_t underrunBefore,
                       uint64_t begunBefore) {
    const IZqDataStreamInfo& info = *m_Stream->GetIZqDataStreamInfo();
    const uint64_t underrun = info.GetNumUnderrun() - underrunBefore;
    const uint64_t begun = info.GetNumStarted() - begunBefore;
    const bool givesUp = plan.handling != std::string("OldestFirst");
    if (plan.lost)
        m_Totals.Add(account.SettleLoss(begun, givesUp ? underrun : 0, plan.buffers));
    else
        m_Totals.Add(account.Settle({static_cast<uint64_t>(Get("CounterValue")), underrun,
                                     info.GetNumDelivered(), plan.buffers, givesUp, plan.killed}));
    ++m_Totals.acquisitions;
    m_Totals.losses += plan.lost ? 1 : 0;
    for (const std::string& complaint : account.Complaints())
        Complain(std::string(plan.handling) + (plan.callback ? ", callback" : ", waiting") +
                 (plan.killed ? ", killed: " : ": ") + complaint);
}

} // namespace ZqSoak
