#include "tests/unit/support/OpenModules.h"

#include <memory>
#include <thread>

using namespace GenTL;
using ZqTest::Latch;
using ZqTest::ScriptedProducer;

namespace {

using Lines = std::vector<std::string>;

TEST(ScriptedCalls, UsualProducerOpensSystemToDeviceAndLogsIt) {
    const ScriptedProducer producer;
    OpenModules open(producer);
    open.OpenDevice();
    EXPECT_TRUE(open.changed);
    EXPECT_EQ(producer.Log(),
              (Lines{"GCInitLib()", "TLOpen()", "TLUpdateInterfaceList(TL1, 250)",
                     "TLOpenInterface(TL1, IF1)", "IFOpenDevice(IF1, DEV1, 3)", "DevGetPort(DEV1)"}));
}

TEST(ScriptedCalls, FailureOnThirdCallOnly) {
    const ScriptedProducer producer;
    producer.Answer("TLGetNumInterfaces").OnCall(3).With(GC_ERR_ACCESS_DENIED);
    OpenModules open(producer);
    open.OpenSystem();
    std::vector<GC_ERROR> results;
    for (int i = 0; i < 4; ++i) {
        uint32_t count = 7;
        results.push_back(open.Call<PTLGetNumInterfaces>("TLGetNumInterfaces", open.system, &count));
        EXPECT_EQ(count, i == 2 ? 7U : 1U);
    }
    EXPECT_EQ(results, (std::vector<GC_ERROR>{0, 0, -1005, 0}));
    EXPECT_EQ(producer.Log("TLGetNumInterfaces")[2], "TLGetNumInterfaces(TL1) = -1005");
}

TEST(ScriptedCalls, RulesMatchCommandIdAndQuery) {
    const ScriptedProducer producer;
    producer.Answer("TLGetInfo").Command(TL_INFO_VENDOR).DataQuery().With(GC_ERR_IO);
    producer.Answer("TLGetInterfaceInfo").Id("IF2").With(GC_ERR_BUSY);
    OpenModules open(producer);
    open.OpenSystem();
    size_t size = 0;
    char text[32];
    const auto info = [&](TL_INFO_CMD command, void* buffer) {
        size = sizeof text;
        return open.Call<PTLGetInfo>("TLGetInfo", open.system, command, static_cast<INFO_DATATYPE*>(nullptr),
                                     buffer, &size);
    };
    EXPECT_EQ(info(TL_INFO_VENDOR, nullptr), 0);
    EXPECT_EQ(size, sizeof "Scripted");
    EXPECT_EQ(info(TL_INFO_VENDOR, text), GC_ERR_IO);
    EXPECT_EQ(info(TL_INFO_MODEL, text), 0);
    EXPECT_STREQ(text, "Scripted");
    const auto interfaceInfo = [&](const char* id) {
        return open.Call<PTLGetInterfaceInfo>("TLGetInterfaceInfo", open.system, id, INFO_DATATYPE{},
                                              static_cast<INFO_DATATYPE*>(nullptr), static_cast<void*>(text),
                                              &size);
    };
    EXPECT_EQ(interfaceInfo("IF1"), 0);
    EXPECT_EQ(interfaceInfo("IF2"), GC_ERR_BUSY);
    EXPECT_EQ(producer.Log("TLGetInterfaceInfo")[1], "TLGetInterfaceInfo(TL1, IF2, 0, 4) = -1022");
}

TEST(ScriptedCalls, RulesMatchKindOfHandleAndEventType) {
    const ScriptedProducer producer;
    producer.Answer("GCRegisterEvent").On("IF").Event(EVENT_ERROR).With(GC_ERR_NOT_IMPLEMENTED);
    OpenModules open(producer);
    open.OpenDevice();
    EVENT_HANDLE event = nullptr;
    EXPECT_EQ(open.Register(open.iface, EVENT_ERROR, &event), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(open.Register(open.iface, EVENT_MODULE, &event), 0);
    EXPECT_EQ(open.Register(open.device, EVENT_ERROR, &event), 0);
    EXPECT_EQ(open.Register(open.device, EVENT_ERROR, &event), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(producer.Log("GCRegisterEvent"),
              (Lines{"GCRegisterEvent(IF1, 0) = -1003", "GCRegisterEvent(IF1, 5)", "GCRegisterEvent(DEV1, 0)",
                     "GCRegisterEvent(DEV1, 0) = -1004"}));
}

TEST(ScriptedCalls, OutputsLieAsScripted) {
    const ScriptedProducer producer;
    producer.Answer("TLOpenInterface").With(GC_ERR_IO).Value(reinterpret_cast<void*>(0xBAD));
    producer.Answer("TLGetInterfaceID").SizeQuery().Size(SIZE_MAX);
    producer.Answer("TLGetInterfaceID").DataQuery().Bytes("abc");
    producer.Answer("TLGetInfo")
        .Command(TL_INFO_CHAR_ENCODING)
        .Value<uint8_t>(0x5A)
        .Type(INFO_DATATYPE_BOOL8);
    OpenModules open(producer);
    open.OpenSystem();
    IF_HANDLE iface = nullptr;
    EXPECT_EQ(open.Call<PTLOpenInterface>("TLOpenInterface", open.system, "IF1", &iface), GC_ERR_IO);
    EXPECT_EQ(iface, reinterpret_cast<void*>(0xBAD));
    size_t size = 0;
    char text[8] = "-------";
    const auto id = [&](char* buffer) {
        return open.Call<PTLGetInterfaceID>("TLGetInterfaceID", open.system, 0U, buffer, &size);
    };
    EXPECT_EQ(id(nullptr), 0);
    EXPECT_EQ(size, SIZE_MAX);
    size = sizeof text;
    EXPECT_EQ(id(text), 0);
    EXPECT_EQ(size, 3U);
    EXPECT_STREQ(text, "abc----");
    uint32_t encoding = 0xFFFFFFFF;
    INFO_DATATYPE type = 0;
    size = sizeof encoding;
    EXPECT_EQ(open.Call<PTLGetInfo>("TLGetInfo", open.system, TL_INFO_CMD{TL_INFO_CHAR_ENCODING}, &type,
                                    static_cast<void*>(&encoding), &size),
              0);
    EXPECT_EQ(encoding, 0xFFFFFF5AU);
    EXPECT_EQ(size, 1U);
    EXPECT_EQ(type, INFO_DATATYPE_BOOL8);
}

TEST(ScriptedCalls, ValueNeverExceedsTheCallersCapacity) {
    const ScriptedProducer producer;
    producer.Answer("GCReadPort").At(0x100).Bytes("0123456789");
    OpenModules open(producer);
    open.OpenDevice();
    uint32_t words[2] = {0, 0xAAAAAAAA};
    size_t size = 4;
    EXPECT_EQ(open.ReadWord(0x100, words, &size), 0);
    EXPECT_EQ(size, 10U);
    EXPECT_EQ(words[0], 0x33323130U);
    EXPECT_EQ(words[1], 0xAAAAAAAAU);
}

TEST(ScriptedCalls, UnwrittenOutputsKeepTheCallersValues) {
    const ScriptedProducer producer;
    producer.Answer("IFUpdateDeviceList").WithoutData();
    producer.Answer("GCReadPort").WithoutData().WithoutSize();
    OpenModules open(producer);
    open.OpenDevice();
    uint8_t changed = 0x77;
    EXPECT_EQ(open.Call<PIFUpdateDeviceList>("IFUpdateDeviceList", open.iface,
                                             reinterpret_cast<bool8_t*>(&changed), uint64_t{1}),
              0);
    EXPECT_EQ(changed, 0x77);
    uint32_t word = 0x12345678;
    size_t size = 4;
    EXPECT_EQ(open.ReadWord(0x100, &word, &size), 0);
    EXPECT_EQ(word, 0x12345678U);
}

TEST(ScriptedCalls, LastErrorSaysWhatTheRuleSaysOnThatThread) {
    const ScriptedProducer producer;
    producer.Answer("TLGetNumInterfaces").With(GC_ERR_IO).Saying(std::string(5000, 'x'));
    OpenModules open(producer);
    open.OpenSystem();
    uint32_t count = 0;
    GC_ERROR code = 1;
    size_t size = 0;
    EXPECT_EQ(open.LastError(&code, nullptr, &size), 0);
    EXPECT_EQ(code, GC_ERR_SUCCESS);
    EXPECT_EQ(size, sizeof "No Error");
    open.Call<PTLGetNumInterfaces>("TLGetNumInterfaces", open.system, &count);
    EXPECT_EQ(open.LastError(&code, nullptr, &size), 0);
    EXPECT_EQ(code, GC_ERR_IO);
    EXPECT_EQ(size, 5001U);
    std::thread([&] {
        EXPECT_EQ(open.LastError(&code, nullptr, &size), 0);
        EXPECT_EQ(code, GC_ERR_SUCCESS);
    }).join();
}

TEST(ScriptedCalls, LastErrorItselfCanLieAndFail) {
    const ScriptedProducer producer;
    producer.Answer("TLGetNumInterfaces").With(GC_ERR_IO).Saying(GC_ERR_BUSY, "busy");
    producer.Answer("GCGetLastError").OnCall(2).WithoutCode().Size(SIZE_MAX);
    producer.Answer("GCGetLastError").OnCall(3).With(GC_ERR_ERROR);
    OpenModules open(producer);
    open.OpenSystem();
    uint32_t count = 0;
    open.Call<PTLGetNumInterfaces>("TLGetNumInterfaces", open.system, &count);
    GC_ERROR code = 77;
    char text[16] = "";
    size_t size = sizeof text;
    EXPECT_EQ(open.LastError(&code, text, &size), 0);
    EXPECT_EQ(code, GC_ERR_BUSY);
    EXPECT_STREQ(text, "busy");
    code = 77;
    EXPECT_EQ(open.LastError(&code, nullptr, &size), 0);
    EXPECT_EQ(code, 77);
    EXPECT_EQ(size, SIZE_MAX);
    EXPECT_EQ(open.LastError(&code, text, &size), GC_ERR_ERROR);
}

TEST(ScriptedCalls, LatchHoldsTheCallUntilReleased) {
    const ScriptedProducer producer;
    OpenModules open(producer);
    open.OpenDevice();
    const Latch latch(producer.Answer("GCReadPort").OnCall(2).With(GC_ERR_IO));
    std::vector<GC_ERROR> results;
    std::thread reader([&] {
        for (int i = 0; i < 3; ++i) {
            uint32_t word = 0;
            size_t size = 4;
            results.push_back(open.ReadWord(0, &word, &size));
        }
    });
    EXPECT_TRUE(latch.WaitUntilHeld());
    EXPECT_EQ(producer.Count("GCReadPort"), 2U);
    latch.Release();
    reader.join();
    EXPECT_EQ(results, (std::vector<GC_ERROR>{0, GC_ERR_IO, 0}));
}

TEST(ScriptedCalls, LatchSaysWhenNothingIsHeld) {
    const ScriptedProducer producer;
    const Latch latch(producer.Answer("GCReadPort"));
    EXPECT_FALSE(latch.WaitUntilHeld(1, 10));
}

TEST(ScriptedCalls, EndOfTheFixtureLetsHeldCallsGo) {
    auto producer = std::make_unique<ScriptedProducer>();
    ZqspRule rule{};
    rule.function = "GCInitLib";
    rule.hold = 1;
    const uint32_t id = producer->Resolve<decltype(&Zqsp_AddRule)>("Zqsp_AddRule")(&rule);
    std::thread caller([init = producer->Resolve<PGCInitLib>("GCInitLib"),
                        close = producer->Resolve<PGCCloseLib>("GCCloseLib")] {
        EXPECT_EQ(init(), 0);
        EXPECT_EQ(close(), 0);
    });
    EXPECT_EQ(producer->Resolve<decltype(&Zqsp_WaitHeld)>("Zqsp_WaitHeld")(id, 1, 10000), 1);
    producer.reset();
    caller.join();
}

TEST(ScriptedCalls, CloseThatFailsButRunsLeavesTheModuleClosed) {
    const ScriptedProducer producer;
    producer.Answer("IFClose").With(GC_ERR_ERROR).AlsoRuns();
    OpenModules open(producer);
    open.OpenDevice();
    EXPECT_EQ(open.Call<PIFClose>("IFClose", open.iface), GC_ERR_ERROR);
    EXPECT_EQ(open.Call<PDevGetPort>("DevGetPort", open.device, &open.remote), GC_ERR_INVALID_HANDLE);
}

TEST(ScriptedCalls, BalanceNamesWhatIsLeftOpen) {
    const ScriptedProducer producer;
    {
        OpenModules open(producer);
        open.OpenDevice();
        open.Call<PTLClose>("TLClose", open.system);
    }
    EXPECT_STREQ(producer.NothingOpen().message(), "IF: 1 opened, 0 closed; DEV: 1 opened, 0 closed; ");
}

TEST(ScriptedCalls, BalanceHoldsWhenAllIsClosed) {
    const ScriptedProducer producer;
    {
        OpenModules open(producer);
        open.OpenDevice();
        open.Call<PDevClose>("DevClose", open.device);
        open.Call<PIFClose>("IFClose", open.iface);
        open.Call<PTLClose>("TLClose", open.system);
    }
    EXPECT_TRUE(producer.NothingOpen());
    EXPECT_EQ(producer.Opened("DEV"), 1U);
}

TEST(ScriptedCalls, SecondInitIsRefusedUnlessAllowed) {
    const ScriptedProducer producer;
    OpenModules open(producer);
    open.OpenSystem();
    TL_HANDLE second = nullptr;
    EXPECT_EQ(open.Call<PGCInitLib>("GCInitLib"), GC_ERR_RESOURCE_IN_USE);
    producer.AllowSeveralSystems();
    EXPECT_EQ(open.Call<PGCInitLib>("GCInitLib"), 0);
    EXPECT_EQ(open.Call<PTLOpen>("TLOpen", &second), 0);
    EXPECT_EQ(open.Call<PGCCloseLib>("GCCloseLib"), 0);
    EXPECT_EQ(open.Call<PTLClose>("TLClose", second), 0);
}

TEST(ScriptedCalls, ScriptSurvivesInitUnderTheFixtureAndIsResetWithoutIt) {
    const ScriptedProducer producer;
    producer.Answer("TLOpen").With(GC_ERR_IO);
    TL_HANDLE system = nullptr;
    {
        const OpenModules open(producer);
        open.Call<PGCInitLib>("GCInitLib");
        EXPECT_EQ(open.Call<PTLOpen>("TLOpen", &system), GC_ERR_IO);
    }
    producer.Resolve<decltype(&Zqsp_KeepScript)>("Zqsp_KeepScript")(0);
    const OpenModules open(producer);
    open.Call<PGCInitLib>("GCInitLib");
    EXPECT_EQ(open.Call<PTLOpen>("TLOpen", &system), 0);
}

TEST(ScriptedCalls, ListsChangeOnlyInAnUpdateAndSaySo) {
    const ScriptedProducer producer;
    OpenModules open(producer);
    open.OpenSystem();
    const auto update = [&] {
        open.Call<PTLUpdateInterfaceList>("TLUpdateInterfaceList", open.system, &open.changed, uint64_t{250});
        return open.changed;
    };
    EXPECT_FALSE(update());
    producer.AddInterface("IF2", "GEV");
    uint32_t count = 0;
    open.Call<PTLGetNumInterfaces>("TLGetNumInterfaces", open.system, &count);
    EXPECT_EQ(count, 1U);
    EXPECT_TRUE(update());
    open.Call<PTLGetNumInterfaces>("TLGetNumInterfaces", open.system, &count);
    EXPECT_EQ(count, 2U);
    producer.RemoveInterface("IF1");
    EXPECT_TRUE(update());
}

TEST(ScriptedCalls, WritesAreLoggedAndKept) {
    const ScriptedProducer producer;
    OpenModules open(producer);
    open.OpenDevice();
    const uint32_t one = 1;
    size_t size = 4;
    open.Call<PGCWritePort>("GCWritePort", open.remote, uint64_t{0x110}, static_cast<const void*>(&one),
                            &size);
    EXPECT_EQ(producer.Log("GCWritePort"), Lines{"GCWritePort(REMOTE1, 0x110, 01000000)"});
    EXPECT_EQ(producer.GetRegister<uint32_t>("REMOTE1", 0x110), 1U);
    EXPECT_EQ(producer.GetRegister<uint32_t>("REMOTE2", 0x110), 0U);
}

TEST(ScriptedCalls, DescriptionIsReadWhereTheUrlPoints) {
    const ScriptedProducer producer;
    producer.SetDescription("REMOTE", "tiny.xml", "<xml/>");
    OpenModules open(producer);
    open.OpenDevice();
    char url[64] = "";
    size_t size = sizeof url;
    INFO_DATATYPE type = 0;
    open.Call<PGCGetPortURLInfo>("GCGetPortURLInfo", open.remote, 0U, URL_INFO_CMD{URL_INFO_URL}, &type,
                                 static_cast<void*>(url), &size);
    EXPECT_STREQ(url, "Local:tiny.xml;10000;6");
    char text[7] = "";
    size = 6;
    open.Call<PGCReadPort>("GCReadPort", open.remote, uint64_t{0x10000}, static_cast<void*>(text), &size);
    EXPECT_STREQ(text, "<xml/>");
}

TEST(WithoutPointers, LeavesNumbersAlone) {
    EXPECT_EQ(ZqTest::WithoutPointers("-1004 = IFOpenDevice(0x0x7f12ab, 0x(nil), 0x3, 0x0x1)"),
              "-1004 = IFOpenDevice(PTR, PTR, 0x3, PTR)");
    EXPECT_EQ(ZqTest::WithoutPointers("0 = GCReadPort(0x0x10, 16, 0x 0x7f, 0x 0x8) Length:4 != 2"),
              "0 = GCReadPort(PTR, 16, 0x PTR, 0x PTR) Length:4 != 2");
}

} // namespace
