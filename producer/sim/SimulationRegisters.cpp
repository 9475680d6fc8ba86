#include "producer/sim/CameraRegisters.h"

namespace zqgentl {

namespace {

constexpr RegisterKind Integer = RegisterKind::Integer;
constexpr RegisterKind Text = RegisterKind::Text;

constexpr auto Frames = &S::frameFaults;
constexpr auto Ports = &S::portFaults;
using F = FrameFaults;
using P = PortFaults;

constexpr int64_t everyMax = 0x7FFFFFFF;
constexpr int64_t timeMaxMs = 3600000;
constexpr int64_t portDelayMaxMs = 10000;

RegisterValue GetImageFolder(const Camera& camera) {
    const Pictures pictures = camera.Settings().pictures;
    return Value(pictures == nullptr ? std::string() : pictures->Path());
}

/// Files are read here, not when frames are made.
void SetImageFolder(Camera& camera, const RegisterValue& value) {
    const std::string& path = std::get<std::string>(value);
    const Pictures pictures = path.empty() ? nullptr : std::make_shared<const PictureFolder>(path);
    camera.Apply(Camera::Lockable::No, [&](CameraSettings& settings) { settings.pictures = pictures; });
}

void SendError(Camera& camera) {
    const auto code = static_cast<uint32_t>(camera.Settings().frameFaults.errorCode);
    camera.Send({EventKind::Error, 0, static_cast<uint64_t>(SteadyNow()), code});
}

void LoseDevice(Camera& camera) {
    camera.LoseLater();
}

void LoseInterface(Camera& camera) {
    camera.LoseInterfaceLater();
}

/// A row for a number of FrameFaults or of PortFaults.
template <auto Part, auto Member, int64_t Min, int64_t Max>
constexpr RegisterRow<Camera> Row(uint64_t address, uint32_t length = 4) {
    return {address, length, Integer, GetIn<Part, Member>, SetIn<Part, Member, Min, Max>};
}

constexpr RegisterRow<Camera> rows[] = {
    {0x0700, 4, Integer, nullptr, Command<LoseDevice>},
    {0x0704, 4, Integer, Get<&S::lossDelayMs>, SetWhole<&S::lossDelayMs, 0, timeMaxMs>},
    {0x0708, 4, Integer, Get<&S::returnTimeMs>, SetWhole<&S::returnTimeMs, 0, timeMaxMs>},
    {0x070C, 4, Integer, nullptr, Command<LoseInterface>},

    {0x4000, 1024, Text, GetImageFolder, SetImageFolder},

    Row<Frames, &F::dropEvery, 0, everyMax>(0x0710),
    Row<Frames, &F::incompleteEvery, 0, everyMax>(0x0714),
    Row<Frames, &F::lateEvery, 0, everyMax>(0x0718),
    Row<Frames, &F::lateTimeMs, 1, timeMaxMs>(0x071C),
    Row<Frames, &F::largerEvery, 0, everyMax>(0x0720),
    Row<Frames, &F::badChunksEvery, 0, everyMax>(0x0724),
    Row<Frames, &F::errorEvery, 0, everyMax>(0x0728),
    Row<Frames, &F::errorCode, 0, 0xFFFFFFFF>(0x072C),
    {0x0730, 4, Integer, nullptr, Command<SendError>},

    Row<Ports, &P::readErrorAddress, -1, INT64_MAX>(0x0740, 8),
    Row<Ports, &P::writeErrorAddress, -1, INT64_MAX>(0x0748, 8),
    {0x0750, 8, Integer, GetIn<Ports, &P::errorCode>, SetIn<Ports, &P::errorCode, -1023, -1001>},
    Row<Ports, &P::delayMs, 0, portDelayMaxMs>(0x0758),
};

} // namespace

void BindSimulationRegisters(Camera& camera, RegisterMap& map) {
    map.Bind(camera, rows);
}

} // namespace zqgentl
