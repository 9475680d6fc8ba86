#pragma once

#include "producer/sim/Description.h"
#include "producer/sim/RegisterMap.h"

namespace zqgentl {

/// The kinds of interface as the enumerations of the module descriptions number them.
enum class Technology : int64_t { Mixed = 0, GigEVision = 1, Usb3Vision = 2, CoaXPress = 3 };

/// What is fixed about one simulated camera and the interface it sits on.
struct CameraModel {
    const char* interfaceId;
    const char* interfaceName;
    const char* tlType;
    Technology technology;
    const char* deviceId;
    const char* modelName;
    const char* serialNumber;
    ByteOrder byteOrder;
    uint32_t sensorWidth;
    uint32_t sensorHeight;
    bool nativePixelCodes; ///< buffers name pixel formats by the codes of CoaXPress
    const Description* interfaceDescription;
    const Description* deviceDescription;
    const Description* cameraDescription;
};

constexpr const char* vendorName = "ZqApi";
constexpr const char* cameraVersion = "1.0";

/// Every camera there is, one interface each, in the order of the interface list.
inline constexpr CameraModel cameraModels[] = {
    {"ZQ-U3V-0", "ZqApi simulated USB3 Vision host", "U3V", Technology::Usb3Vision, "ZQ-U3V-0:SIM-U3V-0001",
     "Sim-U3V-2M", "SIM-U3V-0001", ByteOrder::Little, 1920, 1080, false, &descriptions::interface_u3v,
     &descriptions::device_u3v, &descriptions::camera_u3v},
    {"ZQ-GEV-0", "ZqApi simulated GigE Vision adapter", "GEV", Technology::GigEVision,
     "ZQ-GEV-0:SIM-GEV-0001", "Sim-GEV-5M", "SIM-GEV-0001", ByteOrder::Big, 2560, 2048, false,
     &descriptions::interface_gev, &descriptions::device_gev, &descriptions::camera_gev},
    {"ZQ-CXP-0", "ZqApi simulated CoaXPress grabber", "CXP", Technology::CoaXPress, "ZQ-CXP-0:SIM-CXP-0001",
     "Sim-CXP-12M", "SIM-CXP-0001", ByteOrder::Big, 4096, 3072, false, &descriptions::interface_cxp,
     &descriptions::device_cxp, &descriptions::camera_cxp},
};

} // namespace zqgentl
