// What goes on at the features of a camera while it acquires.

#include <algorithm>
#include <thread>

#include "tests/soak/CameraRun.h"

namespace ZqSoak {
namespace {

using namespace ZqApi;

constexpr int64_t EXPOSURE_TIME_ADDRESS = 0x0528;
constexpr int64_t NO_ADDRESS = -1;

} // namespace

void CameraRun::Set(const char* name, int64_t value) {
    const GenApi::CIntegerPtr node = Nodes().GetNode(name);
    node->SetValue(value);
}

void CameraRun::Switch(const char* name, bool on) {
    const GenApi::CBooleanPtr node = Nodes().GetNode(name);
    node->SetValue(on);
}

void CameraRun::Choose(const char* name, const char* entry) {
    const GenApi::CEnumerationPtr node = Nodes().GetNode(name);
    node->FromString(entry);
}

void CameraRun::Execute(const char* command) {
    const GenApi::CCommandPtr node = Nodes().GetNode(command);
    node->Execute();
}

int64_t CameraRun::Get(const char* name) {
    const GenApi::CIntegerPtr node = Nodes().GetNode(name);
    return node->GetValue();
}

void CameraRun::UseFeatures(const std::atomic<bool>& ends, uint64_t seed) {
    Chance chance(seed);
    while (!ends) {
        try {
            UseAFeature(chance);
            ++m_FeatureAccesses;
        } catch (const GenICam::GenericException& exception) {
            // Once a camera is gone nothing of it can be reached.
            if (!m_Lost)
                Complain(std::string("features: ") + exception.GetDescription());
        }
        std::this_thread::sleep_for(std::chrono::microseconds(chance.Between(0, 3000)));
    }
}

void CameraRun::UseAFeature(Chance& chance) {
    const GenApi::CFloatPtr exposure = Nodes().GetNode("ExposureTime");
    switch (chance.Between(0, 9)) {
    case 0:
        exposure->GetValue(false, true);
        break;
    case 1:
        exposure->SetValue(static_cast<double>(chance.Between(10, 500)));
        break;
    case 2:
        GenApi::CFloatPtr(Nodes().GetNode("DeviceTemperature"))->GetValue();
        break;
    case 3:
        Execute("SimulationErrorEvent");
        break;
    case 4: {
        const GenApi::CStringPtr userId = Nodes().GetNode("DeviceUserID");
        const std::string text = "soak " + std::to_string(chance.Between(0, 1000000));
        userId->SetValue(text.c_str());
        if (userId->GetValue(false, true) != text.c_str())
            Complain("DeviceUserID is not what was written");
        break;
    }
    case 5:
        FailOnPurpose();
        break;
    case 6: {
        const GenApi::CFloatPtr rate = Nodes().GetNode("AcquisitionFrameRate");
        rate->SetValue(std::min(rate->GetMax(), static_cast<double>(chance.Between(100, 2000))));
        break;
    }
    case 7:
        SaveFeatures();
        break;
    case 8:
        m_Stream->GetIZqDataStreamInfo()->GetNumQueued();
        m_Stream->GetCurrentFPS();
        m_Stream->GetCurrentBPS();
        break;
    default:
        m_Device->GetIZqDeviceInfo()->GetSerialNumber();
        break;
    }
}

void CameraRun::FailOnPurpose() {
    Set("SimulationReadErrorAddress", EXPOSURE_TIME_ADDRESS);
    bool failed = false;
    try {
        GenApi::CFloatPtr(Nodes().GetNode("ExposureTime"))->GetValue(false, true);
    } catch (const GenICam::GenericException&) {
        failed = true;
    }
    Set("SimulationReadErrorAddress", NO_ADDRESS);
    if (!failed)
        Complain("a register that can't be read was read");
    ++m_PortErrors;
}

void CameraRun::SaveFeatures() {
    const std::unique_ptr<IZqFeatureBagReleasable, Releaser> bag(CreateIZqFeatureBag());
    const int64_t entries = bag->StoreNodeMapToBag(&Nodes(), -1);
    gcstring text;
    bag->SaveToString(text);
    // What can't be read is left out.
    if (m_Lost)
        return;
    if (entries < 10 || text.find("SimulationDropEvery") == gcstring::_npos())
        Complain("only " + std::to_string(entries) + " features were saved");
    ++m_Saves;
}

} // namespace ZqSoak
