#pragma once

#include "producer/sim/Description.h"
#include "producer/sim/RegisterMap.h"

#include <string>

namespace zqgentl {

/// The kinds of interface as the enumerations of the module descriptions number them.
enum class Technology : int64_t { Mixed = 0, GigEVision = 1, Usb3Vision = 2, CoaXPress = 3 };

/// What is fixed about an interface.
struct BusModel {
    const char* interfaceId;
    const char* interfaceName;
    const char* tlType;
    Technology technology;
    const Description* interfaceDescription;
    const Description* deviceDescription;
};

/// What is fixed about one camera. The first of an interface has the number 1.
struct CameraModel : BusModel {
    uint32_t number = 1;
    std::string deviceId;
    std::string serialNumber;
    const char* modelName = "";
    ByteOrder byteOrder = ByteOrder::Little;
    uint32_t sensorWidth = 0;
    uint32_t sensorHeight = 0;
    bool nativePixelCodes = false; ///< buffers name pixel formats by the codes of CoaXPress
    bool oldChunks = false;        ///< with big-endian data, and a payload type for images that have some
    const Description* cameraDescription = nullptr;
};

constexpr const char* vendorName = "ZqApi";
constexpr const char* cameraVersion = "1.0";

/// Every interface there can be, in the order of the interface list.
constexpr size_t busCount = 3;
[[nodiscard]] const BusModel& BusModelAt(size_t index);
/// The camera with a number, from 1 on, of such an interface.
[[nodiscard]] CameraModel CameraModelOf(const BusModel& bus, uint32_t number);

} // namespace zqgentl
