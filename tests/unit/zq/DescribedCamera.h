#pragma once

#include "tests/unit/zq/Tool.h"

#include <string>

/// The scripted camera with more features: a Gain for each GainSelector, and the events FrameStart, with a
/// frame id, and FrameStartWait.
class DescribedCamera : public testing::Test {
protected:
    static constexpr uint64_t gainSelector = 0x300, gain = 0x304, eventSelector = 0x200, notification = 0x204;

    DescribedCamera() {
        std::string text(20000, '\0');
        producer.ReadRegister("REMOTE1", 0x10000, text.data(), text.size());
        text = text.c_str();
        text.insert(text.find("<pFeature>Width"),
                    "<pFeature>Gains</pFeature><pFeature>EventControl</pFeature>");
        text.insert(text.find("<Port Name"), Gains() + Events());
        producer.SetDescription("REMOTE", "camera.xml", text);
    }

    uint32_t Register(uint64_t address) { return producer.GetRegister<uint32_t>("REMOTE1", address); }
    void SetRegister(uint64_t address, uint32_t value) {
        producer.SetRegister<uint32_t>("REMOTE", address, value);
    }

    const ZqTest::ScriptedProducer producer;
    Tool tool;

private:
    static std::string Reg(const std::string& name, const std::string& address, int length,
                           const std::string& mode, const std::string& port, const std::string& endianess) {
        return "<IntReg Name=\"" + name + "\"><Address>" + address + "</Address>" +
               (name == "GainReg" ? "<pIndex Offset=\"4\">GainSelectorReg</pIndex>" : "") +
               (name == "EventNotificationReg" ? "<pIndex Offset=\"4\">EventSelectorReg</pIndex>" : "") +
               "<Length>" + std::to_string(length) + "</Length><AccessMode>" + mode + "</AccessMode><pPort>" +
               port + "</pPort><Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>" + endianess +
               "</Endianess></IntReg>";
    }
    static std::string DeviceReg(const std::string& name, const std::string& address) {
        return Reg(name, address, 4, "RW", "Device", "LittleEndian");
    }
    static std::string Enumeration(const std::string& name, const std::string& first,
                                   const std::string& second, const std::string& more = "") {
        return "<Enumeration Name=\"" + name + "\"><EnumEntry Name=\"" + first +
               "\"><Value>0</Value></EnumEntry><EnumEntry Name=\"" + second +
               "\"><Value>1</Value></EnumEntry><pValue>" + name + "Reg</pValue>" + more + "</Enumeration>";
    }
    static std::string Gains() {
        return "<Category Name=\"Gains\"><pFeature>GainSelector</pFeature><pFeature>Gain</pFeature>"
               "<pFeature>Hidden</pFeature></Category>" +
               Enumeration("GainSelector", "Red", "Blue", "<pSelected>Gain</pSelected>") +
               "<Integer Name=\"Gain\"><pValue>GainReg</pValue><Min>0</Min><Max>100</Max><Unit>dB</Unit>"
               "</Integer><Integer "
               "Name=\"Hidden\"><Visibility>Invisible</Visibility><Value>7</Value></Integer>" +
               DeviceReg("GainSelectorReg", "0x300") + DeviceReg("GainReg", "0x304");
    }
    static std::string EventNumber(const std::string& name, const std::string& address, int length,
                                   const std::string& port) {
        return "<Integer Name=\"" + name + "\"><pValue>" + name + "Reg</pValue></Integer>" +
               Reg(name + "Reg", address, length, "RO", port, "BigEndian");
    }
    static std::string Events() {
        return "<Category Name=\"EventControl\"><pFeature>EventSelector</pFeature>"
               "<pFeature>EventNotification</pFeature><pFeature>EventFrameStart</pFeature>"
               "<pFeature>EventFrameStartTimestamp</pFeature><pFeature>EventFrameStartFrameID</pFeature>"
               "<pFeature>EventFrameStartWait</pFeature><pFeature>EventFrameStartWaitTimestamp</pFeature>"
               "</Category>" +
               Enumeration("EventSelector", "FrameStart", "FrameStartWait",
                           "<pSelected>EventNotification</pSelected>") +
               Enumeration("EventNotification", "Off", "On") + DeviceReg("EventSelectorReg", "0x200") +
               DeviceReg("EventNotificationReg", "0x204") +
               EventNumber("EventFrameStart", "2", 2, "StartPort") +
               EventNumber("EventFrameStartTimestamp", "8", 8, "StartPort") +
               EventNumber("EventFrameStartFrameID", "16", 4, "StartPort") +
               EventNumber("EventFrameStartWait", "2", 2, "WaitPort") +
               EventNumber("EventFrameStartWaitTimestamp", "8", 8, "WaitPort") +
               "<Port Name=\"StartPort\"><EventID>9C41</EventID></Port>"
               "<Port Name=\"WaitPort\"><EventID>9C49</EventID></Port>";
    }
};
