#include "tests/unit/ZqApi_TL/ModuleTree.h"

#include "ZqApi_TL/ZqInterface.h"

namespace ZqTest {
namespace {

class InterfaceModule : public ModuleTree {
protected:
    explicit InterfaceModule(const std::string& variant = "full") : ModuleTree(variant) {}

    /// One interface of that type with the given devices.
    void Offer(const std::string& tlType, const std::vector<std::pair<std::string, int32_t>>& devices = {}) {
        producer.ClearInterfaces();
        producer.AddInterface("IF1", tlType);
        for (const auto& [id, status] : devices)
            producer.AddDevice("IF1", id, status);
    }

    IZqInterface* Open(EZqSystemVendor_t vendor = ZqSystemVendor_Default) {
        system = OpenSystem(ZqInterfaceType_All, vendor);
        return system->GetIZqInterface(0);
    }

    void TearDown() override {
        system.reset();
        ModuleTree::TearDown();
    }

    System system;
};

TEST(InterfaceType, IsMatchedByPrefixWithoutCase) {
    const auto type = [](const char* text) { return static_cast<int>(CZqInterface::TypeOfTLType(text)); };
    EXPECT_EQ(type("U3V"), 1);
    EXPECT_EQ(type("gev"), 2);
    EXPECT_EQ(type("GE"), 2);
    EXPECT_EQ(type(""), 1);
    EXPECT_EQ(type("U"), 1);
    EXPECT_EQ(type("cX"), 4);
    EXPECT_EQ(type("GEVX"), 0);
    EXPECT_EQ(type("CL"), 0);
    EXPECT_EQ(type("Mixed"), 0);
    EXPECT_EQ(type("\xC7"), 0);
}

TEST_F(InterfaceModule, IsBuiltInTheStatedOrder) {
    Offer("GEV");
    Open();
    EXPECT_EQ(producer.Log({"TLOpenInterface", "GCRegisterEvent", "IFUpdateDeviceList", "IFGetNumDevices"}),
              (Calls{"GCRegisterEvent(TL1, 0)", "TLOpenInterface(TL1, IF1)", "GCRegisterEvent(IF1, 0)",
                     "GCRegisterEvent(IF1, 5)", "IFUpdateDeviceList(IF1, 250)", "IFGetNumDevices(IF1)"}));
}

TEST_F(InterfaceModule, TimeoutIs500OnlyForU3VOfTheDefaultVendor) {
    Offer("U3V");
    EXPECT_EQ(Open()->GetUpdateDeviceListTimeout(), 500u);
    system.reset();
    Offer("GEV");
    EXPECT_EQ(Open()->GetUpdateDeviceListTimeout(), 250u);
}

TEST_F(InterfaceModule, TimeoutIsStoredAndPassedUnchecked) {
    Offer("GEV");
    IZqInterface* const interface = Open();
    interface->SetUpdateDeviceListTimeout(0xFFFFFFFFFFFFFFFFull);
    EXPECT_EQ(interface->GetUpdateDeviceListTimeout(), 0xFFFFFFFFFFFFFFFFull);
    interface->SetUpdateDeviceListTimeout(7);
    interface->UpdateDeviceList();
    EXPECT_EQ(producer.Log("IFUpdateDeviceList").back(), "IFUpdateDeviceList(IF1, 7)");
}

TEST_F(InterfaceModule, FailingInterfaceInformationIsReported) {
    Offer("GEV");
    const IZqInterfaceInfo* const info = Open()->GetIZqInterfaceInfo();
    producer.Answer("IFGetInfo").Command(INTERFACE_INFO_DISPLAYNAME).With(GC_ERR_NOT_AVAILABLE);
    const Thrown thrown = CatchProducerError([&] { info->GetDisplayName(); });
    EXPECT_EQ(thrown.text, "-1014 = IFGetInfo(PTR, 1, PTR, PTR, PTR)");
    EXPECT_EQ(thrown.function, "IFGetInfo");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqInterfaceInfo");
}

class EuresysInterface : public InterfaceModule {
protected:
    EuresysInterface() : InterfaceModule("euresys") {}
};

TEST_F(EuresysInterface, FirstUpdateFillsTheListWithoutAReportedChange) {
    Offer("CXP", {{"DEVA", 1}});
    producer.Answer("IFUpdateDeviceList").AlsoRuns().Value<uint8_t>(0);
    IZqInterface* const interface = Open(ZqSystemVendor_Euresys);
    EXPECT_EQ(interface->GetDeviceCount(), 1u);
    EXPECT_FALSE(interface->UpdateDeviceList());
}

TEST_F(InterfaceModule, NoReportedChangeLeavesTheListEmpty) {
    Offer("GEV", {{"DEVA", 1}});
    producer.Answer("IFUpdateDeviceList").Value<uint8_t>(0);
    EXPECT_EQ(Open()->GetDeviceCount(), 0u);
}

TEST_F(InterfaceModule, ListFollowsTheProducer) {
    Offer("GEV", {{"DEVA", 1}, {"DEVB", 1}});
    IZqInterface* const interface = Open();
    EXPECT_EQ(interface->GetDeviceCount(), 2u);
    EXPECT_STREQ(interface->GetIZqDeviceInfo(1)->GetID().c_str(), "DEVB");
    producer.RemoveDevice("IF1", "DEVA");
    EXPECT_TRUE(interface->UpdateDeviceList());
    EXPECT_EQ(interface->GetDeviceCount(), 1u);
    EXPECT_STREQ(interface->GetIZqDeviceInfo(0)->GetID().c_str(), "DEVB");
    EXPECT_FALSE(interface->UpdateDeviceList());
}

TEST_F(InterfaceModule, FailingListQueriesAreReportedWithTheirCall) {
    Offer("GEV", {{"DEVA", 1}});
    struct Row {
        const char* function;
        const char* reported;
        bool dataQuery;
        const char* text;
    };
    const Row rows[] = {
        {"IFUpdateDeviceList", "IFUpdateDeviceList", false, "-1017 = IFUpdateDeviceList(PTR, PTR, 250)"},
        {"IFGetNumDevices", "IFGetNumDevices", false, "-1017 = IFGetNumDevices(PTR, PTR)"},
        {"IFGetDeviceID", "IFGetNumDevices", false, "-1017 = IFGetNumDevices(PTR, 0, PTR, PTR)"},
        {"IFGetDeviceID", "IFGetNumDevices", true, "-1017 = IFGetNumDevices(PTR, 0, PTR, PTR)"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.function);
        {
            Answer answer(producer, row.function);
            if (row.dataQuery)
                answer.DataQuery();
            answer.With(GC_ERR_INVALID_INDEX);
        }
        const Thrown thrown = CatchProducerError([this] { OpenSystem(); });
        EXPECT_EQ(thrown.text, row.text);
        EXPECT_EQ(thrown.function, row.reported);
        EXPECT_EQ(thrown.source, "ZqApi_TL/ZqInterface");
        EXPECT_TRUE(producer.NothingOpen());
        producer.AnswerAsUsual();
    }
}

TEST_F(InterfaceModule, FailureWhileFillingLeavesTheRecordsSoFar) {
    Offer("GEV", {{"DEVA", 1}, {"DEVB", 1}});
    IZqInterface* const interface = Open();
    producer.AddDevice("IF1", "DEVC");
    producer.Answer("IFGetDeviceID").Index(1).With(GC_ERR_IO);
    EXPECT_EQ(CatchProducerError([&] { interface->UpdateDeviceList(); }).text,
              "-1010 = IFGetNumDevices(PTR, 1, PTR, PTR)");
    EXPECT_EQ(interface->GetDeviceCount(), 1u);
}

TEST_F(InterfaceModule, DeviceIndexIsChecked) {
    Offer("GEV", {{"DEVA", 1}});
    IZqInterface* const interface = Open();
    const auto text = [](auto action) { return Catch<GenICam::OutOfRangeException>(action).text; };
    const std::string above = "nIndex = 1 must be smaller than Max = 1";
    const std::string below = "nIndex = -1 must be equal or greater than Min = 0";
    const auto minusOne = static_cast<size_t>(-1);
    EXPECT_EQ(text([&] { interface->GetIZqDeviceInfo(1); }), above);
    EXPECT_EQ(text([&] { interface->GetIZqDeviceInfo(minusOne); }), below);
    EXPECT_EQ(text([&] { interface->IsDeviceAvailable(1, DEVICE_ACCESS_CONTROL); }), above);
    EXPECT_EQ(text([&] { interface->CreateIZqDevice(size_t{1}, DEVICE_ACCESS_CONTROL); }), above);
    EXPECT_EQ(text([&] { interface->CreateIZqDevice(minusOne, DEVICE_ACCESS_CONTROL); }), below);
}

TEST_F(InterfaceModule, AvailabilityFollowsStatusAndFlags) {
    Offer("GEV", {{"RW", 1}, {"RO", 2}, {"NA", 3}, {"BUSY", 4}, {"OPEN", 5}});
    IZqInterface* const interface = Open();
    const bool expected[5][3] = {{true, true, true},
                                 {true, false, false},
                                 {false, false, false},
                                 {false, false, false},
                                 {false, false, false}};
    for (size_t index = 0; index < 5; ++index)
        for (int flags = DEVICE_ACCESS_READONLY; flags <= DEVICE_ACCESS_EXCLUSIVE; ++flags)
            EXPECT_EQ(interface->IsDeviceAvailable(index, flags), expected[index][flags - 2])
                << index << " " << flags;
}

TEST_F(InterfaceModule, FlagsOutsideTheirRangeAreRefusedBeforeTheIndex) {
    Offer("GEV");
    IZqInterface* const interface = Open();
    const auto text = [&](int flags) {
        return Catch<GenICam::OutOfRangeException>([&] { interface->IsDeviceAvailable(9, flags); }).text;
    };
    EXPECT_EQ(text(1), "eDeviceAccessFlags = 1 must be equal or greater than Min = 2");
    EXPECT_EQ(text(5), "eDeviceAccessFlags = 5 must be equal or smaller than Max = 4");
}

TEST_F(InterfaceModule, RefusedOpeningIsReportedWithItsFlags) {
    Offer("GEV", {{"DEVA", 1}});
    IZqInterface* const interface = Open();
    producer.Answer("IFOpenDevice").With(GC_ERR_RESOURCE_IN_USE);
    const Thrown thrown =
        CatchProducerError([&] { interface->CreateIZqDevice(size_t{0}, DEVICE_ACCESS_CONTROL); });
    EXPECT_EQ(thrown.text, "-1004 = IFOpenDevice(PTR, PTR, 0x3, PTR)");
    EXPECT_EQ(thrown.function, "IFOpenDevice");
    EXPECT_EQ(producer.Count("DevClose"), 0u);
}

TEST_F(InterfaceModule, DeviceCanBeOpenedByAnIdThatIsNotListed) {
    Offer("GEV", {{"DEVA", 1}});
    producer.Answer("IFUpdateDeviceList").Value<uint8_t>(0);
    IZqInterface* const interface = Open();
    const Device device(interface->CreateIZqDevice(gcstring("DEVA"), DEVICE_ACCESS_CONTROL));
    EXPECT_STREQ(device->GetIZqDeviceInfo()->GetID().c_str(), "DEVA");
}

TEST_F(InterfaceModule, FirstDeviceSkipsOneThatDoesNotOpen) {
    Offer("GEV", {{"BUSY", 4}, {"BROKEN", 1}, {"GOOD", 1}});
    IZqInterface* const interface = Open();
    producer.Answer("IFOpenDevice").Id("BROKEN").With(GC_ERR_ACCESS_DENIED);
    const Device device(interface->CreateFirstIZqDevice(DEVICE_ACCESS_CONTROL));
    EXPECT_STREQ(device->GetIZqDeviceInfo()->GetID().c_str(), "GOOD");
    EXPECT_EQ(producer.Log("IFOpenDevice"),
              (Calls{"IFOpenDevice(IF1, BROKEN, 3) = -1005", "IFOpenDevice(IF1, GOOD, 3)"}));
}

TEST_F(InterfaceModule, NoDeviceOrWrongFlagsMeansNoneIsAvailable) {
    Offer("GEV", {{"BUSY", 4}});
    IZqInterface* const interface = Open();
    const auto text = [&](int flags) {
        return Catch<GenICam::RuntimeException>([&] { interface->CreateFirstIZqDevice(flags); }).text;
    };
    EXPECT_EQ(text(DEVICE_ACCESS_CONTROL), "There is no available device.");
    EXPECT_EQ(text(1), "There is no available device.");
    EXPECT_EQ(text(5), "There is no available device.");
}

TEST_F(InterfaceModule, StopStartsTheModuleEvent) {
    Offer("GEV");
    IZqInterface* const interface = Open();
    EXPECT_EQ(producer.Count("EventGetData"), 0u);
    interface->StopEventAcquisitionThread();
    EXPECT_TRUE(producer.WaitForCalls("EventGetData", 1));
    const auto calls = producer.Log("EventGetData");
    ASSERT_FALSE(calls.empty());
    EXPECT_NE(calls.front().find("IF1/5"), std::string::npos) << calls.front();
}

TEST_F(InterfaceModule, IsTornDownInTheStatedOrder) {
    Offer("GEV");
    Open();
    producer.ClearLog();
    system.reset();
    EXPECT_EQ(producer.Log({"EventKill", "GCUnregisterEvent", "IFClose"}),
              (Calls{"EventKill(IF1/5)", "GCUnregisterEvent(IF1, 5)", "GCUnregisterEvent(IF1, 0)",
                     "IFClose(IF1)", "GCUnregisterEvent(TL1, 0)"}));
}

TEST_F(InterfaceModule, FailingCloseIsNotSeen) {
    expectNothingOpen = false;
    Offer("GEV");
    Open();
    producer.Answer("IFClose").With(GC_ERR_IO).AlsoRuns();
    EXPECT_NO_THROW(system.reset());
    EXPECT_EQ(producer.Log({"IFClose", "TLClose"}), (Calls{"IFClose(IF1) = -1010", "TLClose(TL1)"}));
}

TEST_F(InterfaceModule, EventsThatAreNotImplementedAreAbsent) {
    Offer("GEV");
    producer.Answer("GCRegisterEvent").On("IF").With(GC_ERR_NOT_IMPLEMENTED);
    IZqInterface* const interface = Open();
    EXPECT_NO_THROW(interface->StartEventAcquisitionThread());
    EXPECT_NO_THROW(interface->StopEventAcquisitionThread());
}

TEST_F(InterfaceModule, DamagedDescriptionMakesTheModuleEventAbsent) {
    Offer("GEV");
    producer.SetDescription("IF", "interface.xml", "no description at all");
    IZqInterface* const interface = Open();
    EXPECT_EQ(producer.Log({"GCRegisterEvent", "GCUnregisterEvent"}),
              (Calls{"GCRegisterEvent(TL1, 0)", "GCRegisterEvent(IF1, 0)", "GCRegisterEvent(IF1, 5)",
                     "GCUnregisterEvent(IF1, 5)"}));
    EXPECT_THROW(interface->GetIZqPort()->GetINodeMap(), GenICam::GenericException);
}

TEST_F(InterfaceModule, InterfaceGoneFromTheListLivesUntilItsDeviceIsReleased) {
    Offer("GEV", {{"DEVA", 1}});
    IZqInterface* const interface = Open();
    Device device(interface->CreateIZqDevice(size_t{0}, DEVICE_ACCESS_CONTROL));
    producer.RemoveInterface("IF1");
    EXPECT_TRUE(system->UpdateInterfaceList());
    EXPECT_EQ(producer.Count("IFClose"), 0u);
    producer.ClearLog();
    device.reset();
    EXPECT_EQ(producer.Log({"DevClose", "IFClose"}), (Calls{"DevClose(DEV1)", "IFClose(IF1)"}));
}

class InterfaceWithoutDeviceInfo : public InterfaceModule {
protected:
    InterfaceWithoutDeviceInfo() : InterfaceModule("without_IFGetDeviceInfo") {}
};

TEST_F(InterfaceWithoutDeviceInfo, EveryGetterButTheIdThrows) {
    Offer("GEV", {{"DEVA", 1}});
    const IZqDeviceInfo* const info = Open()->GetIZqDeviceInfo(0);
    EXPECT_STREQ(info->GetID().c_str(), "DEVA");
    const auto error = [](auto getter) {
        const Thrown thrown = CatchProducerError(getter);
        EXPECT_EQ(thrown.function, "IFGetDeviceInfo");
        EXPECT_EQ(thrown.source, "ZqApi_TL/ZqIFDeviceInfo");
        return thrown.text;
    };
    EXPECT_EQ(error([&] { info->GetVendor(); }), "-1003 = IFGetDeviceInfo(PTR, PTR, 1, PTR, PTR, PTR)");
    EXPECT_EQ(error([&] { info->GetModel(); }), "-1003 = IFGetDeviceInfo(PTR, PTR, 2, PTR, PTR, PTR)");
    EXPECT_EQ(error([&] { info->GetTLType(); }), "-1003 = IFGetDeviceInfo(PTR, PTR, 3, PTR, PTR, PTR)");
    EXPECT_EQ(error([&] { info->GetDisplayName(); }), "-1003 = IFGetDeviceInfo(PTR, PTR, 4, PTR, PTR, PTR)");
    EXPECT_EQ(error([&] { info->GetAccessStatus(); }), "-1003 = IFGetDeviceInfo(PTR, PTR, 5, PTR, PTR, PTR)");
    EXPECT_EQ(error([&] { info->GetUserDefinedName(); }),
              "-1003 = IFGetDeviceInfo(PTR, PTR, 6, PTR, PTR, PTR)");
    EXPECT_EQ(error([&] { info->GetSerialNumber(); }), "-1003 = IFGetDeviceInfo(PTR, PTR, 7, PTR, PTR, PTR)");
    EXPECT_EQ(error([&] { info->GetVersion(); }), "-1003 = IFGetDeviceInfo(PTR, PTR, 8, PTR, PTR, PTR)");
    EXPECT_EQ(error([&] { info->GetTimestampFrequency(); }),
              "-1003 = IFGetDeviceInfo(PTR, PTR, 9, PTR, PTR, PTR)");
}

} // namespace
} // namespace ZqTest
