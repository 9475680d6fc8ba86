#include "tests/unit/ZqApi_TL/OpenedStream.h"

namespace ZqTest {
namespace {

/// What a callback may not do on the thread that runs it, because it would destroy that thread.
class OnOwnThread : public OpenedStream {
protected:
    /// Runs `action` inside an error callback of the module and gives what it threw.
    template <class Module, class Action>
    std::string InErrorCallback(Module& module, const char* symbol, Action action) {
        Signal done;
        std::string text;
        module.StartEventAcquisitionThread();
        void* const handle = module.RegisterCallback(MakeCallback([&](IZqCallbackParamBase*) {
            text = Catch<GenICam::LogicalErrorException>(action).text;
            done.Set();
        }));
        EXPECT_TRUE(producer.PushError(symbol, GC_ERR_IO, "x"));
        EXPECT_TRUE(done.Wait());
        module.DeregisterCallback(handle);
        return text;
    }

    static constexpr const char* SYSTEM_TEXT =
        "A system can't be released or updated on an event thread of its own or of its interfaces.";
    static constexpr const char* STREAM_TEXT =
        "A data stream can't be stopped or released inside one of its own callbacks.";
};

TEST_F(OnOwnThread, SystemIsNeitherReleasedNorUpdatedInItsErrorCallback) {
    EXPECT_EQ(InErrorCallback(*system, "TL1", [&] { system->Release(); }), SYSTEM_TEXT);
    EXPECT_EQ(InErrorCallback(*system, "TL1", [&] { system->UpdateInterfaceList(); }), SYSTEM_TEXT);
    EXPECT_EQ(system->GetInterfaceCount(), 1u);
}

TEST_F(OnOwnThread, SystemIsNotUpdatedInAnErrorCallbackOfAVanishedInterface) {
    producer.RemoveInterface("IF1");
    IZqInterface& interface = *system->GetIZqInterface(0);
    EXPECT_EQ(InErrorCallback(interface, "IF1", [&] { system->UpdateInterfaceList(); }), SYSTEM_TEXT);
    EXPECT_TRUE(system->UpdateInterfaceList());
}

TEST_F(OnOwnThread, DeviceIsNotReleasedInAnErrorCallbackOfItsInterface) {
    IZqInterface& interface = *system->GetIZqInterface(0);
    EXPECT_EQ(InErrorCallback(interface, "IF1", [&] { device->Release(); }),
              "A device can't be released on an event thread of its own or of its interface.");
}

TEST_F(OnOwnThread, StreamIsNotStoppedInAnErrorCallbackOfItsBuffers) {
    Start();
    const Buffer buffer = RetrieveNewFrame();
    EXPECT_EQ(InErrorCallback(*buffer, "BUF1", [&] { Stop(); }), STREAM_TEXT);
    EXPECT_EQ(InErrorCallback(*buffer, "BUF1", [&] { stream->Release(); }), STREAM_TEXT);
    EXPECT_TRUE(stream->IsGrabbing());
    buffer->StopEventAcquisitionThread();
}

TEST_F(OnOwnThread, StreamOfAnotherDeviceMayBeStopped) {
    Start();
    Signal stopped;
    device->RegisterCallback(MakeCallback([&](IZqCallbackParamBase*) {
        EXPECT_NO_THROW(Stop());
        stopped.Set();
    }));
    ASSERT_TRUE(producer.PushError("DEV1", GC_ERR_IO, "x"));
    EXPECT_TRUE(stopped.Wait());
}

TEST_F(OnOwnThread, EventThreadsStartAndStopFromSeveralThreads) {
    const auto startAndStop = [&] {
        for (int round = 0; round < 50; ++round) {
            device->StartEventAcquisitionThread();
            device->StopEventAcquisitionThread();
        }
    };
    std::thread other(startAndStop);
    startAndStop();
    other.join();
}

std::string Description(const char* schemaMinor, const std::string& nodes, const char* port) {
    return std::string("<RegisterDescription ModelName=\"M\" VendorName=\"V\" StandardNameSpace=\"None\" "
                       "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"") +
           schemaMinor +
           "\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\">"
           "<Category Name=\"Root\"/>" +
           nodes + "<Port Name=\"" + port + "\"/></RegisterDescription>";
}

/// The value that the mechanism's register has once a camera of that schema is open.
uint32_t MechanismFor(const ScriptedProducer& producer, System& system, const char* schemaMinor,
                      uint32_t before) {
    const std::string mechanism =
        "<Enumeration Name=\"DeviceEndianessMechanism\"><EnumEntry "
        "Name=\"Legacy\"><Value>0</Value></EnumEntry>"
        "<EnumEntry Name=\"Standard\"><Value>1</Value></EnumEntry><pValue>MechanismReg</pValue></Enumeration>"
        "<IntReg Name=\"MechanismReg\"><Address>0x200</Address><Length>4</Length><AccessMode>RW</AccessMode>"
        "<pPort>DevicePort</pPort><Endianess>LittleEndian</Endianess></IntReg>";
    producer.SetDescription("DEV", "device.xml", Description("1", mechanism, "DevicePort"));
    producer.SetDescription("REMOTE", "camera.xml", Description(schemaMinor, "", "Device"));
    producer.SetRegister<uint32_t>("DEV1", 0x200, before);
    const Device device(system->GetIZqInterface(0)->CreateIZqDevice(size_t{0}, DEVICE_ACCESS_CONTROL));
    return producer.GetRegister<uint32_t>("DEV1", 0x200);
}

class EndianessMechanism : public ModuleTree {};

TEST_F(EndianessMechanism, FollowsTheSchemaOfTheCamerasDescription) {
    System system = OpenSystem();
    EXPECT_EQ(MechanismFor(producer, system, "0", 1), 0u);
    EXPECT_EQ(MechanismFor(producer, system, "1", 0), 1u);
}

TEST_F(EndianessMechanism, IsNotWrittenWhenItIsRightAlready) {
    System system = OpenSystem();
    MechanismFor(producer, system, "1", 1);
    EXPECT_EQ(producer.Log("GCWritePort"), Calls{});
}

} // namespace
} // namespace ZqTest
