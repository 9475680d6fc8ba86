#include "producer/sim/CameraRegisters.h"

#include <algorithm>

namespace zqgentl {

namespace {

constexpr RegisterKind Integer = RegisterKind::Integer;

void SetWidth(Camera& camera, const RegisterValue& value) {
    camera.Apply(Camera::Lockable::Yes, [&](CameraSettings& settings) {
        CheckRange("Width", Whole(value), widthMin, WidthMax(camera.Model(), settings) - settings.offsetX,
                   widthIncrement);
        settings.width = Whole(value);
    });
}

void SetHeight(Camera& camera, const RegisterValue& value) {
    camera.Apply(Camera::Lockable::Yes, [&](CameraSettings& settings) {
        CheckRange("Height", Whole(value), heightMin, HeightMax(camera.Model(), settings) - settings.offsetY);
        settings.height = Whole(value);
    });
}

void SetOffsetX(Camera& camera, const RegisterValue& value) {
    camera.Apply(Camera::Lockable::No, [&](CameraSettings& settings) {
        CheckRange("OffsetX", Whole(value), 0, WidthMax(camera.Model(), settings) - settings.width,
                   widthIncrement);
        settings.offsetX = Whole(value);
    });
}

void SetOffsetY(Camera& camera, const RegisterValue& value) {
    camera.Apply(Camera::Lockable::No, [&](CameraSettings& settings) {
        CheckRange("OffsetY", Whole(value), 0, HeightMax(camera.Model(), settings) - settings.height);
        settings.offsetY = Whole(value);
    });
}

/// The smaller picture keeps as much of the region as it has room for.
void FitRegion(const CameraModel& model, CameraSettings& settings) {
    settings.width = std::min(settings.width, WidthMax(model, settings));
    settings.height = std::min(settings.height, HeightMax(model, settings));
    settings.offsetX = std::min(settings.offsetX, WidthMax(model, settings) - settings.width);
    settings.offsetY = std::min(settings.offsetY, HeightMax(model, settings) - settings.height);
}

template <auto Member>
void SetBinning(Camera& camera, const RegisterValue& value) {
    const int64_t binning = Whole(value);
    if (binning != 1 && binning != 2 && binning != binningMax)
        throw Failure(GenTL::GC_ERR_INVALID_VALUE, "binning can only be 1, 2 or 4");
    camera.Apply(Camera::Lockable::Yes, [&](CameraSettings& settings) {
        settings.*Member = binning;
        FitRegion(camera.Model(), settings);
    });
}

void SetPixelFormat(Camera& camera, const RegisterValue& value) {
    if (FindPixelFormat(camera.Model().technology, Whole(value)) == nullptr)
        throw Failure(GenTL::GC_ERR_INVALID_VALUE,
                      "this camera has no pixel format " + std::to_string(Whole(value)));
    camera.Apply(Camera::Lockable::Yes,
                 [&](CameraSettings& settings) { settings.pixelFormat = Whole(value); });
}

RegisterValue GetComponent(const Camera& camera) {
    const CameraSettings settings = camera.Settings();
    return Value(int64_t{(settings.components >> settings.componentSelector) & 1});
}

void SetComponent(Camera& camera, const RegisterValue& value) {
    CheckRange("ComponentEnable", Whole(value), 0, 1);
    camera.Apply(Camera::Lockable::Yes, [&](CameraSettings& settings) {
        if (settings.componentSelector == static_cast<int64_t>(Component::Intensity))
            throw Failure(GenTL::GC_ERR_ACCESS_DENIED, "the component Intensity is always on");
        const auto bit = ComponentMask{1} << settings.componentSelector;
        settings.components = Whole(value) != 0 ? settings.components | bit : settings.components & ~bit;
    });
}

constexpr int64_t lastComponent = componentCount - 1;

constexpr RegisterRow<Camera> rows[] = {
    {0x0400, 4, Integer, [](const Camera& c) { return Value(int64_t{c.Model().sensorWidth}); }, nullptr},
    {0x0404, 4, Integer, [](const Camera& c) { return Value(int64_t{c.Model().sensorHeight}); }, nullptr},
    {0x0410, 4, Integer, Get<&S::width>, SetWidth},
    {0x0414, 4, Integer, Get<&S::height>, SetHeight},
    {0x0418, 4, Integer, Get<&S::offsetX>, SetOffsetX},
    {0x041C, 4, Integer, Get<&S::offsetY>, SetOffsetY},
    {0x0420, 4, Integer, Get<&S::pixelFormat>, SetPixelFormat},
    {0x0424, 4, Integer, Get<&S::testPattern>, SetWhole<&S::testPattern, 0, testPatternCount - 1>},
    {0x0428, 4, Integer, Get<&S::binningX>, SetBinning<&S::binningX>},
    {0x042C, 4, Integer, Get<&S::binningY>, SetBinning<&S::binningY>},
    {0x0430, 4, Integer, Get<&S::reverseX>, SetWhole<&S::reverseX, 0, 1>},
    {0x0434, 4, Integer, Get<&S::reverseY>, SetWhole<&S::reverseY, 0, 1>},
    {0x0438, 4, Integer, [](const Camera& c) { return Value(WidthMax(c.Model(), c.Settings())); }, nullptr},
    {0x043C, 4, Integer, [](const Camera& c) { return Value(HeightMax(c.Model(), c.Settings())); }, nullptr},
    {0x0444, 4, Integer, Get<&S::componentSelector>, SetWhole<&S::componentSelector, 0, lastComponent>},
    {0x0448, 4, Integer, GetComponent, SetComponent},
    {0x0440, 4, Integer, Get<&S::seed>, SetWhole<&S::seed, 0, 0xFFFFFFFF>},
};

} // namespace

void BindImageRegisters(Camera& camera, RegisterMap& map) {
    map.Bind(camera, rows);
}

} // namespace zqgentl
