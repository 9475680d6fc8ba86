#include <chrono>
#include <future>
#include <thread>

#include "tests/unit/ZqApi_TL/ModuleTree.h"

namespace ZqTest {
namespace {

class SystemModule : public ModuleTree {
protected:
    explicit SystemModule(const std::string& variant = "full") : ModuleTree(variant) {}

    void OfferInterfaces(const std::vector<std::pair<std::string, std::string>>& interfaces) {
        producer.ClearInterfaces();
        for (const auto& [id, tlType] : interfaces)
            producer.AddInterface(id, tlType);
    }

    Thrown OpenFails() {
        return CatchProducerError([this] { OpenSystem(); });
    }

    static std::string IdAt(System& system, size_t index) {
        return system->GetIZqInterface(index)->GetIZqInterfaceInfo()->GetID().c_str();
    }
};

TEST_F(SystemModule, OpensInTheStatedOrder) {
    OfferInterfaces({});
    const System system = OpenSystem();
    EXPECT_EQ(producer.Log(
                  {"GCInitLib", "TLOpen", "GCRegisterEvent", "TLUpdateInterfaceList", "TLGetNumInterfaces"}),
              (Calls{"GCInitLib()", "TLOpen()", "GCRegisterEvent(TL1, 0)", "TLUpdateInterfaceList(TL1, 250)",
                     "TLGetNumInterfaces(TL1)"}));
    EXPECT_EQ(producer.Count("GCReadPort"), 0u);
}

TEST_F(SystemModule, ClosesInTheStatedOrder) {
    System system = OpenSystem();
    producer.ClearLog();
    system.reset();
    EXPECT_EQ(producer.Log({"GCUnregisterEvent", "IFClose", "TLClose", "GCCloseLib"}),
              (Calls{"GCUnregisterEvent(IF1, 5)", "GCUnregisterEvent(IF1, 0)", "IFClose(IF1)",
                     "GCUnregisterEvent(TL1, 0)", "TLClose(TL1)", "GCCloseLib()"}));
}

TEST_F(SystemModule, AnswersWhatTheProducerSaysOfItself) {
    const System system = OpenSystem();
    const IZqSystemInfo* const info = system->GetIZqSystemInfo();
    EXPECT_STREQ(info->GetVendor().c_str(), "Scripted");
    EXPECT_STREQ(info->GetTLType().c_str(), "Mixed");
    EXPECT_EQ(info->GetGenTLVersionMajor(), 1u);
    EXPECT_EQ(info->GetGenTLVersionMinor(), 5u);
    EXPECT_EQ(system->GetZqSystemVendor(), ZqSystemVendor_Default);
}

TEST_F(SystemModule, HandleOfAFailedTLOpenIsNotBelieved) {
    expectNothingOpen = false;
    producer.Answer("TLOpen").With(GC_ERR_IO).AlsoRuns();
    EXPECT_EQ(OpenFails().text, "-1010 = TLOpen(PTR)");
    EXPECT_EQ(producer.Log({"TLClose", "GCCloseLib"}), (Calls{"GCCloseLib()"}));
}

TEST_F(SystemModule, FailingTLOpenLeavesNothingLoaded) {
    producer.Answer("TLOpen").With(GC_ERR_RESOURCE_IN_USE).Saying("one at a time");
    const Thrown thrown = OpenFails();
    EXPECT_EQ(thrown.text, "-1004 = TLOpen(PTR) one at a time");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqSystem");
    EXPECT_EQ(thrown.function, "TLOpen");
    EXPECT_EQ(thrown.error, -1004);
    EXPECT_EQ(producer.Count("TLClose"), 0u);
    EXPECT_EQ(producer.Count("GCCloseLib"), 1u);
}

TEST_F(SystemModule, FailingInterfaceQueriesAreReportedWithTheirCall) {
    struct Row {
        const char* function;
        bool dataQuery;
        const char* text;
    };
    const Row rows[] = {
        {"TLUpdateInterfaceList", false, "-1011 = TLUpdateInterfaceList(PTR, PTR, 250)"},
        {"TLGetNumInterfaces", false, "-1011 = TLGetNumInterfaces(PTR, PTR)"},
        {"TLGetInterfaceID", false, "-1011 = TLGetInterfaceID(PTR, 0, PTR, PTR)"},
        {"TLGetInterfaceID", true, "-1011 = TLGetInterfaceID(PTR, 0, PTR, PTR)"},
        {"TLGetInterfaceInfo", false, "-1011 = TLGetInterfaceInfo(PTR, PTR, 2, PTR, PTR, PTR)"},
        {"TLGetInterfaceInfo", true, "-1011 = TLGetInterfaceInfo(PTR, PTR, 2, PTR, PTR, PTR)"},
        {"TLOpenInterface", false, "-1011 = TLOpenInterface(PTR, IF1, PTR)"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.function);
        {
            auto answer = std::make_unique<Answer>(producer, row.function);
            if (row.dataQuery)
                answer->DataQuery();
            answer->With(GC_ERR_TIMEOUT);
        }
        const Thrown thrown = OpenFails();
        EXPECT_EQ(thrown.text, row.text);
        EXPECT_EQ(thrown.function, row.function);
        EXPECT_EQ(thrown.error, -1011);
        EXPECT_EQ(thrown.source, "ZqApi_TL/ZqSystem");
        EXPECT_TRUE(producer.NothingOpen());
        producer.AnswerAsUsual();
    }
}

TEST_F(SystemModule, ThirdInterfaceFailingClosesTheTwoBeforeIt) {
    OfferInterfaces({{"IF1", "U3V"}, {"IF2", "GEV"}, {"IF3", "CXP"}});
    producer.Answer("TLOpenInterface").OnCall(3).With(GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(OpenFails().text, "-1005 = TLOpenInterface(PTR, IF3, PTR)");
    EXPECT_EQ(producer.Log({"IFClose", "TLClose", "GCCloseLib"}),
              (Calls{"IFClose(IF1)", "IFClose(IF2)", "TLClose(TL1)", "GCCloseLib()"}));
}

TEST_F(SystemModule, NoReportedChangeLeavesTheDefaultVendorsListEmpty) {
    producer.Answer("TLUpdateInterfaceList").Value<uint8_t>(0);
    const System system = OpenSystem();
    EXPECT_EQ(system->GetInterfaceCount(), 0u);
}

TEST_F(SystemModule, UnwrittenChangeCountsAsNone) {
    producer.Answer("TLUpdateInterfaceList").WithoutData();
    EXPECT_EQ(OpenSystem()->GetInterfaceCount(), 0u);
}

class EuresysSystem : public SystemModule {
protected:
    EuresysSystem() : SystemModule("euresys") { OfferInterfaces({{"IF1", "CXP"}}); }
};

TEST_F(EuresysSystem, FirstUpdateWrapsWithoutAReportedChange) {
    producer.Answer("TLUpdateInterfaceList").AlsoRuns().Value<uint8_t>(0);
    const System system = OpenSystem(ZqInterfaceType_All, ZqSystemVendor_Euresys);
    EXPECT_EQ(system->GetInterfaceCount(), 1u);
    EXPECT_FALSE(system->UpdateInterfaceList());
}

TEST_F(SystemModule, FilterOpensOnlyItsKinds) {
    OfferInterfaces({{"IF1", "U3V"}, {"IF2", "GEV"}});
    System system = OpenSystem(ZqInterfaceType_GEV);
    ASSERT_EQ(system->GetInterfaceCount(), 1u);
    EXPECT_EQ(IdAt(system, 0), "IF2");
    EXPECT_EQ(producer.Log("TLOpenInterface"), (Calls{"TLOpenInterface(TL1, IF2)"}));
}

TEST_F(SystemModule, UnknownKindsAreNeverOpened) {
    OfferInterfaces({{"IF1", "CL"}, {"IF2", "Mixed"}, {"IF3", "GigEVision"}, {"IF4", "gev"}});
    System system = OpenSystem();
    ASSERT_EQ(system->GetInterfaceCount(), 1u);
    EXPECT_EQ(IdAt(system, 0), "IF4");
}

TEST_F(SystemModule, StayingInterfaceKeepsItsObjectAndAGoneOneIsReleased) {
    OfferInterfaces({{"IF1", "U3V"}, {"IF2", "GEV"}});
    System system = OpenSystem();
    IZqInterface* const staying = system->GetIZqInterface(1);
    producer.RemoveInterface("IF1");
    producer.AddInterface("IF3", "CXP");
    producer.ClearLog();
    EXPECT_TRUE(system->UpdateInterfaceList());
    ASSERT_EQ(system->GetInterfaceCount(), 2u);
    EXPECT_EQ(system->GetIZqInterface(0), staying);
    EXPECT_EQ(IdAt(system, 1), "IF3");
    EXPECT_EQ(producer.Log({"TLOpenInterface", "IFClose"}),
              (Calls{"TLOpenInterface(TL1, IF3)", "IFClose(IF1)"}));
}

TEST_F(SystemModule, UpdateWithoutChangeKeepsEverything) {
    System system = OpenSystem();
    IZqInterface* const before = system->GetIZqInterface(0);
    EXPECT_FALSE(system->UpdateInterfaceList());
    EXPECT_EQ(system->GetIZqInterface(0), before);
}

TEST_F(SystemModule, UpdateFailingMidwayReleasesWhatItDidNotReach) {
    OfferInterfaces({{"IF1", "U3V"}, {"IF2", "GEV"}});
    System system = OpenSystem();
    producer.ClearInterfaces();
    OfferInterfaces({{"IF9", "U3V"}, {"IF1", "U3V"}, {"IF2", "GEV"}});
    producer.Answer("TLOpenInterface").With(GC_ERR_IO);
    producer.ClearLog();
    EXPECT_EQ(CatchProducerError([&] { system->UpdateInterfaceList(); }).text,
              "-1010 = TLOpenInterface(PTR, IF9, PTR)");
    EXPECT_EQ(system->GetInterfaceCount(), 0u);
    EXPECT_EQ(producer.Log("IFClose").size(), 2u);
}

TEST_F(SystemModule, InterfaceIndexIsChecked) {
    OfferInterfaces({{"IF1", "U3V"}, {"IF2", "GEV"}, {"IF3", "CXP"}});
    System system = OpenSystem();
    const auto text = [&](size_t index) {
        return Catch<GenICam::OutOfRangeException>([&] { system->GetIZqInterface(index); }).text;
    };
    EXPECT_EQ(text(3), "GetInterface = 3 must be smaller than Max = 3");
    EXPECT_EQ(text(static_cast<size_t>(-1)), "GetInterface = -1 must be equal or greater than Min = 0");
}

TEST_F(SystemModule, FirstDeviceIsTakenFromTheFirstInterfaceThatHasOne) {
    OfferInterfaces({{"IF1", "U3V"}, {"IF2", "GEV"}});
    producer.AddDevice("IF2", "DEVX");
    System system = OpenSystem();
    const Device device(system->CreateFirstIZqDevice(DEVICE_ACCESS_CONTROL));
    EXPECT_EQ(device->GetIZqInterface(), system->GetIZqInterface(1));
}

TEST_F(SystemModule, NoInterfacesMeansNoDevice) {
    OfferInterfaces({});
    System system = OpenSystem();
    const Thrown thrown =
        Catch<GenICam::RuntimeException>([&] { system->CreateFirstIZqDevice(DEVICE_ACCESS_CONTROL); });
    EXPECT_EQ(thrown.text, "There is no available device.");
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqSystem");
}

TEST_F(SystemModule, FailuresAtReleaseAreNotSeenAndTheLoaderStillCloses) {
    expectNothingOpen = false;
    System system = OpenSystem();
    producer.Answer("TLClose").With(GC_ERR_ERROR).AlsoRuns();
    EXPECT_NO_THROW(system.reset());
    EXPECT_EQ(producer.Count("GCCloseLib"), 1u);
}

TEST_F(SystemModule, FailedConstructionReportsItsFirstFailure) {
    expectNothingOpen = false;
    producer.Answer("TLGetNumInterfaces").With(GC_ERR_IO);
    producer.Answer("TLClose").With(GC_ERR_ERROR).AlsoRuns();
    EXPECT_EQ(OpenFails().text, "-1010 = TLGetNumInterfaces(PTR, PTR)");
    EXPECT_EQ(producer.Count("GCCloseLib"), 1u);
}

TEST_F(SystemModule, ErrorEventThatIsNotImplementedIsAbsent) {
    producer.Answer("GCRegisterEvent").On("TL").With(GC_ERR_NOT_IMPLEMENTED);
    System system = OpenSystem();
    EXPECT_NO_THROW(system->StartEventAcquisitionThread());
    EXPECT_NO_THROW(system->StopEventAcquisitionThread());
}

TEST_F(SystemModule, ReferencesAreCounted) {
    System system = OpenSystem();
    auto* const inside = system.get();
    std::thread([&] { EXPECT_EQ(inside->GetInterfaceCount(), 1u); }).join();
    system.reset();
    EXPECT_EQ(producer.Closed("TL"), 1u);
}

TEST_F(SystemModule, SecondSystemOnAConformingProducerIsRefusedAndTheFirstStays) {
    System first = OpenSystem();
    const Thrown thrown = OpenFails();
    EXPECT_EQ(thrown.text, "-1004 = GCInitLib()");
    EXPECT_EQ(thrown.function, "GCInitLib");
    EXPECT_EQ(producer.Count("GCCloseLib"), 0u);
    EXPECT_STREQ(first->GetIZqSystemInfo()->GetTLType().c_str(), "Mixed");
}

TEST_F(SystemModule, TwoSystemsOnAProducerThatAllowsThem) {
    producer.AllowSeveralSystems();
    System first = OpenSystem();
    System second = OpenSystem();
    first.reset();
    EXPECT_EQ(producer.Count("GCCloseLib"), 1u);
    EXPECT_STREQ(second->GetIZqSystemInfo()->GetTLType().c_str(), "Mixed");
}

TEST_F(SystemModule, UpdateFromACallbackOfADoomedInterfaceDoesNotHang) {
    OfferInterfaces({{"IF1", "U3V"}, {"IF2", "GEV"}});
    System system = OpenSystem();
    std::promise<void> entered;
    IZqInterface* const doomed = system->GetIZqInterface(0);
    doomed->StartEventAcquisitionThread();
    doomed->RegisterCallback(MakeCallback([&](IZqCallbackParamBase*) {
        entered.set_value();
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        system->GetInterfaceCount();
    }));
    ASSERT_TRUE(producer.PushError("IF1", GC_ERR_IO, "late"));
    entered.get_future().wait();
    producer.RemoveInterface("IF1");
    EXPECT_TRUE(system->UpdateInterfaceList());
    EXPECT_EQ(system->GetInterfaceCount(), 1u);
}

class SystemWithoutTLOpenInterface : public SystemModule {
protected:
    SystemWithoutTLOpenInterface() : SystemModule("without_TLOpenInterface") {}
};

TEST_F(SystemWithoutTLOpenInterface, SkipsInterfacesSilently) {
    EXPECT_EQ(OpenSystem()->GetInterfaceCount(), 0u);
}

class SystemWithoutTLOpen : public SystemModule {
protected:
    SystemWithoutTLOpen() : SystemModule("without_TLOpen") {}
};

TEST_F(SystemWithoutTLOpen, IsReportedLikeAFailedCall) {
    const Thrown thrown = OpenFails();
    EXPECT_EQ(thrown.text, "-1003 = TLOpen(PTR)");
    EXPECT_EQ(thrown.error, -1003);
}

class SystemWithoutTLClose : public SystemModule {
protected:
    SystemWithoutTLClose() : SystemModule("without_TLClose") { expectNothingOpen = false; }
};

TEST_F(SystemWithoutTLClose, StillUnloadsTheProducer) {
    OpenSystem().reset();
    EXPECT_EQ(producer.Count("GCCloseLib"), 1u);
}

TEST_F(SystemModule, SuccessWithoutAHandleIsAnInvalidHandle) {
    expectNothingOpen = false;
    producer.Answer("TLOpen").OnCall(1).WithoutData();
    EXPECT_EQ(OpenFails().text, "-1006 = TLOpen(PTR)");
    producer.Answer("TLOpenInterface").OnCall(1).WithoutData();
    EXPECT_EQ(OpenFails().text, "-1006 = TLOpenInterface(PTR, IF1, PTR)");
}

class SystemWithoutGCInitLib : public SystemModule {
protected:
    SystemWithoutGCInitLib() : SystemModule("without_GCInitLib") {}
};

TEST_F(SystemWithoutGCInitLib, IsRefusedWithoutClosingTheLibrary) {
    const Thrown thrown = OpenFails();
    EXPECT_EQ(thrown.text, "-1003 = GCInitLib()");
    EXPECT_EQ(thrown.error, -1003);
    EXPECT_EQ(thrown.source, "ZqGenTLCommon/ZqGenTLLib");
    EXPECT_EQ(producer.Count("GCCloseLib"), 0u);
}

} // namespace
} // namespace ZqTest
