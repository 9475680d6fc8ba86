#include "tests/support/scripted_producer/Descriptions.h"

#include <cstdio>

namespace Scripted {

namespace {

constexpr const char* head = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Scripted" VendorName="Scripted" ToolTip="Test" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0"
    SubMinorVersion="0" ProductGuid="11111111-2222-3333-4444-555555555555"
    VersionGuid="66666666-7777-8888-9999-AAAAAAAAAAAA" xmlns="http://www.genicam.org/GenApi/Version_1_1">
)";

constexpr const char* remoteNodes = R"(
<Category Name="Root"><pFeature>Width</pFeature><pFeature>Height</pFeature><pFeature>PixelFormat</pFeature>
<pFeature>PayloadSize</pFeature><pFeature>TLParamsLocked</pFeature><pFeature>AcquisitionStart</pFeature>
<pFeature>AcquisitionStop</pFeature></Category>
<Integer Name="Width"><pValue>WidthReg</pValue><Min>1</Min><Max>65535</Max></Integer>
<Integer Name="Height"><pValue>HeightReg</pValue><Min>1</Min><Max>65535</Max></Integer>
<Enumeration Name="PixelFormat"><EnumEntry Name="Mono8"><Value>17301505</Value></EnumEntry>
<EnumEntry Name="Mono16"><Value>17825799</Value></EnumEntry><pValue>PixelFormatReg</pValue></Enumeration>
<Integer Name="PayloadSize"><pValue>PayloadSizeReg</pValue></Integer>
<Integer Name="TLParamsLocked"><Visibility>Invisible</Visibility><pValue>TLParamsLockedReg</pValue>
<Min>0</Min><Max>1</Max></Integer>
<Command Name="AcquisitionStart"><pValue>AcquisitionStartReg</pValue><CommandValue>1</CommandValue></Command>
<Command Name="AcquisitionStop"><pValue>AcquisitionStopReg</pValue><CommandValue>1</CommandValue></Command>
)";

constexpr const char* deviceNodes = R"(
<Category Name="Root"><pFeature>EventSelector</pFeature><pFeature>EventNotification</pFeature>
<pFeature>EventDeviceLost</pFeature></Category>
<Enumeration Name="EventSelector"><EnumEntry Name="FeatureTest"><Value>0</Value></EnumEntry>
<EnumEntry Name="DeviceLost"><Value>1</Value></EnumEntry><pValue>EventSelectorReg</pValue></Enumeration>
<Enumeration Name="EventNotification"><EnumEntry Name="Off"><Value>0</Value></EnumEntry>
<EnumEntry Name="On"><Value>1</Value></EnumEntry><pValue>EventNotificationReg</pValue></Enumeration>
<Integer Name="EventDeviceLost"><EventID>0001</EventID><pValue>EventDeviceLostReg</pValue></Integer>
)";

std::string Register(const char* name, uint64_t address, const char* mode, const char* port,
                     const char* cachable) {
    char text[512];
    std::snprintf(text, sizeof text,
                  "<IntReg Name=\"%s\"><Address>0x%llx</Address><Length>4</Length><AccessMode>%s</AccessMode>"
                  "<pPort>%s</pPort><Cachable>%s</Cachable><Sign>Unsigned</Sign>"
                  "<Endianess>LittleEndian</Endianess></IntReg>\n",
                  name, static_cast<unsigned long long>(address), mode, port, cachable);
    return text;
}

std::string Description(const std::string& nodes, const char* port) {
    return head + nodes + "<Port Name=\"" + port + "\"></Port>\n</RegisterDescription>\n";
}

std::string RemoteDescription() {
    std::string nodes = remoteNodes;
    nodes += Register("WidthReg", Width, "RW", "Device", "WriteThrough");
    nodes += Register("HeightReg", Height, "RW", "Device", "WriteThrough");
    nodes += Register("PixelFormatReg", PixelFormat, "RW", "Device", "WriteThrough");
    nodes += Register("PayloadSizeReg", PayloadSize, "RO", "Device", "NoCache");
    nodes += Register("TLParamsLockedReg", TLParamsLocked, "RW", "Device", "NoCache");
    nodes += Register("AcquisitionStartReg", AcquisitionStart, "WO", "Device", "NoCache");
    nodes += Register("AcquisitionStopReg", AcquisitionStop, "WO", "Device", "NoCache");
    return Description(nodes, "Device");
}

std::string DeviceDescription() {
    std::string nodes = deviceNodes;
    nodes += Register("EventSelectorReg", EventSelector, "RW", "DevicePort", "NoCache");
    nodes += Register("EventNotificationReg", EventNotification, "RW", "DevicePort", "NoCache");
    nodes += Register("EventDeviceLostReg", EventDeviceLost, "RO", "DevicePort", "NoCache");
    return Description(nodes, "DevicePort");
}

std::string PlainDescription(const char* port) {
    return Description("<Category Name=\"Root\"></Category>\n", port);
}

void SetUsual(Ports& ports, const char* kind, const char* fileName, const std::string& text) {
    ports.ForEach(kind, [&](Port& port) { SetDescription(port, fileName, text.data(), text.size()); });
}

void SetNumber(Ports& ports, const char* kind, uint64_t address, uint32_t value) {
    ports.ForEach(kind, [&](Port& port) { port.registers.Write(address, &value, sizeof value); });
}

} // namespace

void SetDescription(Port& port, const std::string& fileName, const void* bytes, size_t size) {
    char place[64];
    std::snprintf(place, sizeof place, ";%llX;%llX", static_cast<unsigned long long>(descriptionAddress),
                  static_cast<unsigned long long>(size));
    port.registers.Write(descriptionAddress, bytes, size);
    port.urls.assign(1, "Local:" + fileName + place);
}

void MakeUsualPorts(Ports& ports) {
    SetUsual(ports, "TL", "system.xml", PlainDescription("TLPort"));
    SetUsual(ports, "IF", "interface.xml", PlainDescription("InterfacePort"));
    SetUsual(ports, "DEV", "device.xml", DeviceDescription());
    SetUsual(ports, "REMOTE", "camera.xml", RemoteDescription());
    SetUsual(ports, "DS", "stream.xml", PlainDescription("StreamPort"));
    SetNumber(ports, "REMOTE", Width, 64);
    SetNumber(ports, "REMOTE", Height, 64);
    SetNumber(ports, "REMOTE", PixelFormat, 0x01080001);
    SetNumber(ports, "REMOTE", PayloadSize, 4096);
}

} // namespace Scripted
