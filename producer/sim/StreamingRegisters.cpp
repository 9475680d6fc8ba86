#include "producer/sim/CameraRegisters.h"

namespace zqgentl {

namespace {

constexpr RegisterKind Integer = RegisterKind::Integer;

/// The bit of a set that a selector names.
template <auto Selector, auto Mask>
RegisterValue GetSelectedBit(const Camera& camera) {
    const CameraSettings settings = camera.Settings();
    return Value(int64_t{(settings.*Mask >> settings.*Selector) & 1});
}

template <auto Selector, auto Mask>
void SetSelectedBit(CameraSettings& settings, int64_t on) {
    CheckRange("the switch", on, 0, 1);
    const auto bit = uint32_t{1} << settings.*Selector;
    settings.*Mask = on != 0 ? settings.*Mask | bit : settings.*Mask & ~bit;
}

void SetChunkEnable(Camera& camera, const RegisterValue& value) {
    camera.Apply(Camera::Lockable::Yes, [&](CameraSettings& settings) {
        if (settings.chunkModeActive == 0)
            throw Failure(GenTL::GC_ERR_ACCESS_DENIED, "ChunkModeActive is off");
        SetSelectedBit<&S::chunkSelector, &S::chunkMask>(settings, Whole(value));
    });
}

RegisterValue GetNotification(const Camera& camera) {
    const CameraSettings settings = camera.Settings();
    const auto has = [&](EventMask mask) { return ((mask >> settings.eventSelector) & 1) != 0; };
    Notification notification = has(settings.eventMask) ? Notification::On : Notification::Off;
    if (has(settings.eventsOnce))
        notification = Notification::Once;
    return Value(static_cast<int64_t>(notification));
}

void SetNotification(Camera& camera, const RegisterValue& value) {
    CheckRange("EventNotification", Whole(value), 0, static_cast<int64_t>(Notification::Once));
    const auto notification = static_cast<Notification>(Whole(value));
    camera.Apply(Camera::Lockable::No, [&](CameraSettings& settings) {
        SetSelectedBit<&S::eventSelector, &S::eventMask>(settings, notification != Notification::Off);
        SetSelectedBit<&S::eventSelector, &S::eventsOnce>(settings, notification == Notification::Once);
    });
}

void GenerateTestEvent(Camera& camera) {
    camera.Send({EventKind::Test, 0, static_cast<uint64_t>(SteadyNow()), 0});
}

constexpr int64_t lastChunk = chunkCount - 1;
constexpr int64_t lastEvent = eventKindCount - 1;

constexpr RegisterRow<Camera> rows[] = {
    {0x0600, 4, Integer, Get<&S::tlParamsLocked>, SetWhole<&S::tlParamsLocked, 0, 1>},
    {0x0608, 8, Integer, [](const Camera& c) { return Value(c.PayloadSize()); }, nullptr},
    {0x0800, 4, Integer, Get<&S::chunkModeActive>, SetLockable<&S::chunkModeActive, 0, 1>},
    {0x0804, 4, Integer, Get<&S::chunkSelector>, SetWhole<&S::chunkSelector, 0, lastChunk>},
    {0x0808, 4, Integer, GetSelectedBit<&S::chunkSelector, &S::chunkMask>, SetChunkEnable},

    {0x0840, 4, Integer, Get<&S::eventSelector>, SetWhole<&S::eventSelector, 0, lastEvent>},
    {0x0844, 4, Integer, GetNotification, SetNotification},
    {0x0848, 4, Integer, nullptr, Command<GenerateTestEvent>},
};

} // namespace

void BindStreamingRegisters(Camera& camera, RegisterMap& map) {
    map.Bind(camera, rows);
}

} // namespace zqgentl
