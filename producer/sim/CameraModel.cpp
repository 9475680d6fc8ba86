#include "producer/sim/CameraModel.h"

#include <cstdio>

namespace zqgentl {

namespace {

constexpr BusModel busModels[busCount] = {
    {"ZQ-U3V-0", "ZqApi simulated USB3 Vision host", "U3V", Technology::Usb3Vision,
     &descriptions::interface_u3v, &descriptions::device_u3v},
    {"ZQ-GEV-0", "ZqApi simulated GigE Vision adapter", "GEV", Technology::GigEVision,
     &descriptions::interface_gev, &descriptions::device_gev},
    {"ZQ-CXP-0", "ZqApi simulated CoaXPress grabber", "CXP", Technology::CoaXPress,
     &descriptions::interface_cxp, &descriptions::device_cxp},
};

struct Product {
    Technology technology;
    bool even; // the number of the camera
    const char* name;
    ByteOrder byteOrder;
    uint32_t sensorWidth;
    uint32_t sensorHeight;
    bool nativePixelCodes;
    bool oldChunks;
    const Description* description;
};

constexpr Product products[] = {
    {Technology::Usb3Vision, false, "Sim-U3V-2M", ByteOrder::Little, 1920, 1080, false, false,
     &descriptions::camera_u3v},
    {Technology::GigEVision, false, "Sim-GEV-5M", ByteOrder::Big, 2560, 2048, false, false,
     &descriptions::camera_gev},
    // Schema 1.0 knows big-endian registers only, those of the chunks among them.
    {Technology::GigEVision, true, "Sim-GEV-3M", ByteOrder::Big, 2048, 1536, false, true,
     &descriptions::camera_gev_schema10},
    {Technology::CoaXPress, false, "Sim-CXP-12M", ByteOrder::Big, 4096, 3072, false, false,
     &descriptions::camera_cxp},
    {Technology::CoaXPress, true, "Sim-CXP-25M", ByteOrder::Big, 5120, 5120, true, false,
     &descriptions::camera_cxp_native},
};

/// A product for even numbers comes after the one for all.
const Product& ProductOf(Technology technology, uint32_t number) {
    const Product* found = nullptr;
    for (const Product& product : products) {
        if (product.technology == technology && (!product.even || number % 2 == 0))
            found = &product;
    }
    return *found;
}

} // namespace

const BusModel& BusModelAt(size_t index) {
    return busModels[index];
}

CameraModel CameraModelOf(const BusModel& bus, uint32_t number) {
    const Product& product = ProductOf(bus.technology, number);
    char serial[32];
    std::snprintf(serial, sizeof serial, "SIM-%s-%04u", bus.tlType, static_cast<unsigned>(number));
    CameraModel model;
    static_cast<BusModel&>(model) = bus;
    model.number = number;
    model.serialNumber = serial;
    model.deviceId = std::string(bus.interfaceId) + ":" + serial;
    model.modelName = product.name;
    model.byteOrder = product.byteOrder;
    model.sensorWidth = product.sensorWidth;
    model.sensorHeight = product.sensorHeight;
    model.nativePixelCodes = product.nativePixelCodes;
    model.oldChunks = product.oldChunks;
    model.cameraDescription = product.description;
    return model;
}

} // namespace zqgentl
