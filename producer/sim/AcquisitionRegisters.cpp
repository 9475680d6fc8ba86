#include "producer/sim/CameraRegisters.h"

namespace zqgentl {

namespace {

constexpr RegisterKind Integer = RegisterKind::Integer;
constexpr RegisterKind Float = RegisterKind::Float;

void SetFrameRate(Camera& camera, const RegisterValue& value) {
    camera.Apply(Camera::Lockable::No, [&](CameraSettings& settings) {
        CheckRange("AcquisitionFrameRate", std::get<double>(value), frameRateMin, MaxFrameRate(settings));
        settings.frameRate = std::get<double>(value);
    });
}

void SetExposureTime(Camera& camera, const RegisterValue& value) {
    CheckRange("ExposureTime", std::get<double>(value), exposureTimeMinUs, exposureTimeMaxUs);
    camera.Apply(Camera::Lockable::No,
                 [&](CameraSettings& settings) { settings.exposureTimeUs = std::get<double>(value); });
}

template <auto Member>
constexpr auto GetTrigger = GetOf<&S::triggers, &S::triggerSelector, Member>;

template <auto Member, int64_t Max>
void SetTrigger(Camera& camera, const RegisterValue& value) {
    CheckRange("the value", Whole(value), 0, Max);
    SetOf<&S::triggers, &S::triggerSelector, Member>(camera, Whole(value));
}

void SetTriggerDelay(Camera& camera, const RegisterValue& value) {
    const double delayUs = std::get<double>(value);
    CheckRange("TriggerDelay", delayUs, 0, triggerDelayMaxUs);
    SetOf<&S::triggers, &S::triggerSelector, &TriggerSettings::delayUs>(camera, delayUs);
}

void TriggerBySoftware(Camera& camera) {
    camera.TriggerBySoftware();
}

using T = TriggerSettings;
constexpr int64_t lastSource = triggerSourceCount - 1;
constexpr int64_t lastTrigger = triggerCount - 1;

void Start(Camera& camera) {
    camera.StartAcquisition();
}

void Stop(Camera& camera) {
    camera.StopAcquisition();
}

constexpr RegisterRow<Camera> rows[] = {
    {0x0500, 4, Integer, Get<&S::acquisitionMode>, SetLockable<&S::acquisitionMode, 1, 3>},
    {0x0504, 4, Integer, Get<&S::acquisitionFrameCount>,
     SetLockable<&S::acquisitionFrameCount, 1, 0x7FFFFFFF>},
    {0x0508, 4, Integer, nullptr, Command<Start>},
    {0x050C, 4, Integer, nullptr, Command<Stop>},
    {0x0510, 8, Float, Get<&S::frameRate>, SetFrameRate},
    {0x0518, 8, Float, [](const Camera& c) { return Value(MaxFrameRate(c.Settings())); }, nullptr},
    {0x0520, 4, Integer, Get<&S::frameRateEnable>, SetWhole<&S::frameRateEnable, 0, 1>},
    {0x0528, 8, Float, Get<&S::exposureTimeUs>, SetExposureTime},
    {0x0530, 4, Integer, [](const Camera& c) { return Value(int64_t{c.Acquiring()}); }, nullptr},
    {0x0538, 8, Float, [](const Camera& c) { return Value(ResultingFrameRate(c.Settings())); }, nullptr},
    {0x0540, 4, Integer, Get<&S::exposureAuto>, SetWhole<&S::exposureAuto, 0, 2>},
    {0x0550, 4, Integer, Get<&S::triggerSelector>, SetWhole<&S::triggerSelector, 0, lastTrigger>},
    {0x0554, 4, Integer, GetTrigger<&T::mode>, SetTrigger<&T::mode, 1>},
    {0x0558, 4, Integer, nullptr, Command<TriggerBySoftware>},
    {0x055C, 4, Integer, GetTrigger<&T::source>, SetTrigger<&T::source, lastSource>},
    {0x0560, 4, Integer, GetTrigger<&T::activation>, SetTrigger<&T::activation, 2>},
    {0x0568, 8, Float, GetTrigger<&T::delayUs>, SetTriggerDelay},
};

} // namespace

void BindAcquisitionRegisters(Camera& camera, RegisterMap& map) {
    map.Bind(camera, rows);
}

} // namespace zqgentl
