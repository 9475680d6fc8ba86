#include "Descriptions.h"

namespace {

const std::vector<const char*> systemFeatures = {"TLID",
                                                 "TLVendorName",
                                                 "TLModelName",
                                                 "TLVersion",
                                                 "TLPath",
                                                 "TLType",
                                                 "GenTLVersionMajor",
                                                 "GenTLVersionMinor",
                                                 "InterfaceUpdateList",
                                                 "InterfaceSelector",
                                                 "InterfaceID",
                                                 "GevInterfaceMACAddress",
                                                 "GevInterfaceDefaultIPAddress",
                                                 "GevInterfaceDefaultSubnetMask",
                                                 "GevInterfaceDefaultGateway",
                                                 "InterfaceUpdateTimeout",
                                                 "GenTLSFNCVersionMajor",
                                                 "GenTLSFNCVersionMinor"};
const std::vector<const char*> interfaceFeatures = {"InterfaceID",
                                                    "InterfaceType",
                                                    "DeviceUpdateList",
                                                    "DeviceSelector",
                                                    "DeviceID",
                                                    "DeviceVendorName",
                                                    "DeviceModelName",
                                                    "DeviceAccessStatus",
                                                    "InterfaceTLVersionMajor",
                                                    "InterfaceTLVersionMinor",
                                                    "DeviceTLVersionMajor",
                                                    "DeviceTLVersionMinor",
                                                    "DeviceUpdateTimeout",
                                                    "DeviceUserID",
                                                    "DeviceDisplayName"};
const std::vector<const char*> deviceFeatures = {
    "DeviceID",           "DeviceVendorName",     "DeviceModelName",
    "DeviceType",         "StreamSelector",       "StreamID",
    "DeviceAccessStatus", "EventSelector",        "EventNotification",
    "EventDeviceLost",    "DeviceFamilyName",     "DeviceManufacturerInfo",
    "LinkCommandTimeout", "LinkCommandRetryCount"};
const std::vector<const char*> streamFeatures = {"StreamID",
                                                 "StreamType",
                                                 "StreamAnnouncedBufferCount",
                                                 "StreamBufferHandlingMode",
                                                 "StreamAnnounceBufferMinimum",
                                                 "EventNewBufferData",
                                                 "EventNewBufferDataFrameID"};
const std::vector<const char*> cameraFeatures = {"DeviceVendorName",
                                                 "DeviceModelName",
                                                 "DeviceSerialNumber",
                                                 "Width",
                                                 "Height",
                                                 "OffsetX",
                                                 "OffsetY",
                                                 "PixelFormat",
                                                 "PayloadSize",
                                                 "AcquisitionMode",
                                                 "AcquisitionStart",
                                                 "AcquisitionStop",
                                                 "AcquisitionFrameRate",
                                                 "AcquisitionFrameRateEnable",
                                                 "ExposureTime",
                                                 "TLParamsLocked",
                                                 "SimulationDeviceLost",
                                                 "ChunkModeActive",
                                                 "ChunkSelector",
                                                 "ChunkEnable",
                                                 "ChunkFrameID",
                                                 "ChunkTimestamp",
                                                 "EventSelector",
                                                 "EventNotification",
                                                 "TestEventGenerate",
                                                 "EventExposureEnd",
                                                 "EventExposureEndTimestamp",
                                                 "EventExposureEndFrameID"};

} // namespace

TEST_F(Descriptions, OfEveryModuleMatchItsRegisters) {
    for (const char* id : {u3vInterface, gevInterface, cxpInterface}) {
        SCOPED_TRACE(id);
        Open(id);
        OpenStream();
        ExpectModule(system, "TLSystem", "TLPort", systemFeatures);
        ExpectModule(interface, "TLInterface", "InterfacePort", interfaceFeatures);
        ExpectModule(device, "TLDevice", "DevicePort", deviceFeatures);
        ExpectModule(stream, "TLDataStream", "StreamPort", streamFeatures);
        ExpectModule(remote, "Device", "Device", cameraFeatures);
    }
}

TEST_F(Descriptions, OfGigEVisionModulesHaveTheirOwnFeatures) {
    Open(gevInterface);
    ExpectModule(interface, "TLInterface", "InterfacePort",
                 {"GevInterfaceGatewaySelector", "GevInterfaceGateway", "GevInterfaceMACAddress",
                  "GevInterfaceSubnetSelector", "GevInterfaceSubnetIPAddress", "GevInterfaceSubnetMask",
                  "GevDeviceIPAddress", "GevDeviceSubnetMask", "GevDeviceMACAddress", "GevDeviceGateway",
                  "GevDeviceForceIP", "GevDeviceForceIPAddress", "GevDeviceForceSubnetMask",
                  "GevDeviceForceGateway", "GevActionDestinationIPAddress", "ActionCommand"});
    ExpectModule(device, "TLDevice", "DevicePort",
                 {"GevDeviceMACAddress", "GevDeviceIPAddress", "GevDeviceSubnetMask", "GevDeviceGateway",
                  "DeviceStreamChannelPacketSize", "DeviceEndianessMechanism"});
}

TEST_F(Descriptions, CameraOfGigEVisionIsZippedAndBigEndian) {
    Open(gevInterface);
    EXPECT_EQ(Parse(ReadUrl(remote)).file, "zqgentl_camera_gev.zip");
    EXPECT_TRUE(PortFlag(remote, PORT_INFO_BIG_ENDIAN));
    Open(u3vInterface);
    EXPECT_EQ(Parse(ReadUrl(remote)).file, "zqgentl_camera_u3v.xml");
    EXPECT_TRUE(PortFlag(remote, PORT_INFO_LITTLE_ENDIAN));
}

TEST_F(Descriptions, EventIdOfTheLossIsThatOfTheEvent) {
    Open();
    pugi::xml_document document;
    ASSERT_NO_FATAL_FAILURE(Load(device, document));
    const pugi::xml_node root = document.child("RegisterDescription");
    EXPECT_STREQ(root.find_child_by_attribute("Name", "EventDeviceLost").child_value("EventID"), "9001");
    EXPECT_STREQ(root.find_child_by_attribute("Name", "EventDeviceLostPort").child_value("EventID"), "9001");
}

TEST_F(Descriptions, OldUrlListHasOneUrlWithItsSchema) {
    Open();
    char list[256];
    std::memset(list, '?', sizeof list);
    size_t size = sizeof list;
    ASSERT_EQ(gentl.GCGetPortURL(remote, list, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(std::string(list), ReadUrl(remote) + "?SchemaVersion=1.1.0");
    EXPECT_EQ(size, std::strlen(list) + 2);
    EXPECT_EQ(list[size - 1], '\0');
}

TEST_F(Descriptions, BufferShowsItsFrame) {
    Open();
    OpenStream();
    MakeSmallAndFast();
    Queue(Announce(1, 64));
    Start(1);
    const BUFFER_HANDLE buffer = Next();
    ASSERT_NE(buffer, nullptr);
    ExpectModule(buffer, "TLBuffer", "BufferPort", {"BufferData", "BufferFrameID", "BufferTimestamp"});
    const auto read = [&](uint64_t address) {
        uint64_t value = 0;
        size_t size = sizeof value;
        EXPECT_EQ(gentl.GCReadPort(buffer, address, &value, &size), GC_ERR_SUCCESS);
        return value;
    };
    EXPECT_EQ(read(0x310), 64U);
    EXPECT_EQ(read(0x320), BufferInfo<uint64_t>(buffer, BUFFER_INFO_TIMESTAMP));
    EXPECT_EQ(read(0x328), 8U);
    EXPECT_EQ(read(0x100000000), 0x0706050403020100U);
    uint64_t value = 0;
    size_t size = 4;
    EXPECT_EQ(gentl.GCWritePort(buffer, 0x100000000, &value, &size), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(gentl.GCReadPort(buffer, 0x100000040, &value, &size), GC_ERR_INVALID_ADDRESS);
}
