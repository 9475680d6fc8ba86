#include "Camera.h"

using namespace GenICam;
using namespace GenApi;

namespace {

std::string Feature(const std::string& name, const std::string& target, const std::string& more = "") {
    return ::Node("Integer", name, "<pValue>" + target + "</pValue>" + more);
}

} // namespace

TEST(Caching, ColdReadIsOneAccessAndWarmReadIsNone) {
    Camera camera(Feature("F", "R") + IntReg("R", 0));
    EXPECT_FALSE(camera.Value("F")->IsValueCacheValid());
    EXPECT_EQ(camera.Int("F")->GetValue(), 0);
    EXPECT_EQ(camera.port.TakeReads(), 1);
    EXPECT_EQ(camera.Int("F")->GetValue(), 0);
    EXPECT_EQ(camera.Int("R")->GetValue(), 0);
    EXPECT_EQ(camera.port.TakeReads(), 0);
    EXPECT_TRUE(camera.Value("F")->IsValueCacheValid());
}

TEST(Caching, WriteThroughKeepsWhatWasWritten) {
    Camera camera(Feature("F", "R") + IntReg("R", 0));
    camera.Int("F")->SetValue(5);
    EXPECT_EQ(camera.Int("F")->GetValue(), 5);
    EXPECT_EQ(camera.port.TakeReads(), 0);
    EXPECT_EQ(camera.port.TakeWrites(), 1);
}

TEST(Caching, WriteAroundReadsOnceAfterAWrite) {
    Camera camera(Feature("F", "R") + IntReg("R", 0, 4, "<Cachable>WriteAround</Cachable>"));
    camera.Int("F")->SetValue(5);
    EXPECT_EQ(camera.Int("F")->GetValue(), 5);
    EXPECT_EQ(camera.Int("F")->GetValue(), 5);
    EXPECT_EQ(camera.port.TakeReads(), 1);
}

TEST(Caching, BytesWrittenAroundItAreReadOnceToo) {
    Camera camera(Register("StringReg", "Text", 0, 4, "<Cachable>WriteAround</Cachable>"));
    camera.String("Text")->SetValue("abc");
    camera.port.Put(0, {'x'}); // the device has made something else of it
    EXPECT_EQ(camera.String("Text")->GetValue(), "xbc");
    EXPECT_EQ(camera.String("Text")->GetValue(), "xbc");
    EXPECT_EQ(camera.port.TakeReads(), 1);
}

TEST(Caching, NoCacheReadsEveryTimeThroughEveryLayer) {
    Camera camera(Feature("Outer", "K") + IntReg("R", 0, 4, "<Cachable>NoCache</Cachable>") +
                  ::Node("IntSwissKnife", "K", "<pVariable Name=\"X\">R</pVariable><Formula>X+1</Formula>"));
    EXPECT_EQ(camera.Int("Outer")->GetValue(), 1);
    camera.port.Put(0, {9});
    EXPECT_EQ(camera.Int("Outer")->GetValue(), 10);
    EXPECT_EQ(camera.port.TakeReads(), 2);
    EXPECT_FALSE(camera.Node("Outer")->IsCachable());
}

TEST(Caching, IgnoringTheCacheRefreshesWhatOthersSee) {
    Camera camera(Feature("F", "R") + Feature("G", "R") + IntReg("R", 0));
    EXPECT_EQ(camera.Int("G")->GetValue(), 0);
    camera.port.Put(0, {3});
    EXPECT_EQ(camera.Int("F")->GetValue(false, true), 3);
    EXPECT_EQ(camera.port.TakeReads(), 2);
    EXPECT_EQ(camera.Int("G")->GetValue(), 3);
    EXPECT_EQ(camera.port.TakeReads(), 0);
}

TEST(Caching, FormulaIsKeptUntilAVariableChanges) {
    Camera camera(IntReg("R", 0) + Feature("F", "R") +
                  ::Node("SwissKnife", "K", "<pVariable Name=\"X\">R</pVariable><Formula>X/2</Formula>"));
    camera.port.Put(0, {5});
    EXPECT_EQ(camera.Float("K")->GetValue(), 2.5);
    EXPECT_TRUE(camera.Value("K")->IsValueCacheValid());
    camera.Int("F")->SetValue(8);
    EXPECT_FALSE(camera.Value("K")->IsValueCacheValid());
    EXPECT_EQ(camera.Float("K")->GetValue(), 4.0);
}

TEST(Caching, FailedWriteForgetsTheValue) {
    Camera camera(Feature("F", "R") + IntReg("R", 0));
    camera.Int("F")->SetValue(1);
    camera.port.failure = true;
    EXPECT_THROW(camera.Int("F")->SetValue(2), TimeoutException);
    camera.port.failure = false;
    camera.port.TakeReads();
    EXPECT_EQ(camera.Int("F")->GetValue(), 1);
    EXPECT_EQ(camera.port.TakeReads(), 1);
}

TEST(Invalidation, InvalidatorMakesNodesAndWhatReadsThemStale) {
    Camera camera(Feature("Binning", "B") + IntReg("B", 0) + Feature("Width", "W") +
                  IntReg("W", 4, 4, "<pInvalidator>Binning</pInvalidator>") + Feature("Other", "O") +
                  IntReg("O", 8));
    EXPECT_EQ(camera.Int("Width")->GetValue(), 0);
    EXPECT_EQ(camera.Int("Other")->GetValue(), 0);
    camera.port.Put(4, {7});
    camera.Int("Binning")->SetValue(2);
    EXPECT_EQ(camera.Int("Width")->GetValue(), 7);
    camera.port.TakeReads();
    EXPECT_EQ(camera.Int("Other")->GetValue(), 0);
    EXPECT_EQ(camera.port.TakeReads(), 0);
}

TEST(Invalidation, CommandInvalidates) {
    Camera camera(::Node("Command", "Load", "<pValue>C</pValue><CommandValue>1</CommandValue>") +
                  IntReg("C", 0, 4, "<AccessMode>WO</AccessMode>") +
                  IntReg("W", 4, 4, "<pInvalidator>Load</pInvalidator>"));
    EXPECT_EQ(camera.Int("W")->GetValue(), 0);
    camera.port.Put(4, {9});
    camera.Command("Load")->Execute();
    EXPECT_EQ(camera.Int("W")->GetValue(), 9);
}

TEST(Invalidation, SelectorMakesTheRegistersOfItsFeaturesStale) {
    Camera camera(::Node("Integer", "Selector", "<pValue>S</pValue><pSelected>Gain</pSelected>") +
                  IntReg("S", 0) + Feature("Gain", "G") + IntReg("G", 4));
    EXPECT_EQ(camera.Int("Gain")->GetValue(), 0);
    camera.port.Put(4, {8});
    camera.Int("Selector")->SetValue(1);
    EXPECT_EQ(camera.Int("Gain")->GetValue(), 8);
}

TEST(Invalidation, InvalidateNodeReachesTheRegistersBelow) {
    Camera camera(Feature("F", "K") + IntReg("R", 0) +
                  ::Node("IntConverter", "K",
                         "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>R</pValue>"));
    EXPECT_EQ(camera.Int("F")->GetValue(), 0);
    camera.port.Put(0, {6});
    camera.Node("F")->InvalidateNode();
    camera.port.TakeReads();
    EXPECT_EQ(camera.Int("F")->GetValue(), 6);
    EXPECT_EQ(camera.port.TakeReads(), 1);
}

TEST(Invalidation, InvalidateNodesDropsEverythingButOwnValues) {
    Camera camera(IntReg("R", 0) + ::Node("Integer", "Own", "<Value>4</Value>"));
    camera.Int("Own")->SetValue(5);
    EXPECT_EQ(camera.Int("R")->GetValue(), 0);
    camera.map._InvalidateNodes();
    camera.port.TakeReads();
    EXPECT_EQ(camera.Int("R")->GetValue(), 0);
    EXPECT_EQ(camera.port.TakeReads(), 1);
    EXPECT_EQ(camera.Int("Own")->GetValue(), 5);
}

TEST(Invalidation, LegalCirclesThroughLimitsDoNotLoseTheWrittenValue) {
    Camera camera(Feature("Height", "H", "<pMax>HeightMax</pMax>") + IntReg("H", 0) +
                  Feature("OffsetY", "O", "<pMax>OffsetMax</pMax>") + IntReg("O", 4) +
                  ::Node("IntSwissKnife", "HeightMax",
                         "<pVariable Name=\"Y\">OffsetY</pVariable><Formula>1000-Y</Formula>") +
                  ::Node("IntSwissKnife", "OffsetMax",
                         "<pVariable Name=\"H\">Height</pVariable><Formula>1000-H</Formula>"));
    camera.Int("Height")->SetValue(600);
    camera.Int("OffsetY")->SetValue(400);
    EXPECT_EQ(camera.Int("Height")->GetMax(), 600);
    EXPECT_EQ(camera.Int("OffsetY")->GetMax(), 400);
    EXPECT_THROW(camera.Int("OffsetY")->SetValue(401), OutOfRangeException);
}

TEST(Polling, NodeIsStaleWhenItsTimeHasPassed) {
    Camera camera(IntReg("R", 0, 4, "<PollingTime>100</PollingTime>"));
    EXPECT_EQ(camera.Node("R")->GetPollingTime(), 100);
    EXPECT_EQ(camera.Int("R")->GetValue(), 0);
    camera.port.TakeReads();
    camera.map._Poll(99);
    EXPECT_EQ(camera.Int("R")->GetValue(), 0);
    EXPECT_EQ(camera.port.TakeReads(), 0);
    camera.map._Poll(1);
    EXPECT_EQ(camera.Int("R")->GetValue(), 0);
    EXPECT_EQ(camera.port.TakeReads(), 1);
}

TEST(Caching, WhatIsNotKeptMakesNothingAboveItKept) {
    Camera camera(
        IntReg("Never", 0, 4, "<Cachable>NoCache</Cachable>") + Feature("A", "Never") +
        Feature("B", "Never") +
        ::Node(
            "IntSwissKnife", "K",
            "<pVariable Name=\"X\">A</pVariable><pVariable Name=\"Y\">B</pVariable><Formula>X+Y</Formula>") +
        "<IntReg Name=\"Twice\"><pAddress>Never</pAddress><pAddress>K</pAddress><Length>4</Length>"
        "<pPort>Device</pPort></IntReg>" +
        ::Register("FloatReg", "Around", 8, 4) +
        ::Node("SwissKnife", "Both",
               "<pVariable Name=\"X\">Around</pVariable><pVariable Name=\"Y\">Never</pVariable>"
               "<pVariable Name=\"Z\">Over</pVariable><Formula>X+Y+Z</Formula>") +
        ::Node("Float", "Over", "<pValue>Around</pValue>"));
    EXPECT_EQ(camera.Node("K")->GetCachingMode(), NoCache);
    EXPECT_EQ(camera.Node("Both")->GetCachingMode(), NoCache);
    EXPECT_EQ(camera.Node("Over")->GetCachingMode(), WriteAround);
    EXPECT_EQ(camera.Int("K")->GetValue(), 0);
    camera.port.Put(0, {3});
    EXPECT_EQ(camera.Int("K")->GetValue(), 6);
    EXPECT_EQ(camera.Reg("Twice")->GetAddress(), 9);
}

namespace {

/// Registers with features over them, and a formula "F" that adds all of them.
std::string SumOfRegisters(int count) {
    std::string nodes;
    std::string variables;
    std::string formula = "0";
    for (int i = 0; i < count; ++i) {
        const std::string name = "R" + std::to_string(i);
        nodes += IntReg(name, 4 * i) + Feature("Over" + name, name);
        variables += "<pVariable Name=\"" + name + "\">Over" + name + "</pVariable><pVariable Name=\"A" +
                     name + "\">" + name + "</pVariable>";
        formula += "+" + name + "+A" + name;
    }
    return nodes + ::Node("IntSwissKnife", "F", variables + "<Formula>" + formula + "</Formula>");
}

} // namespace

TEST(Invalidation, SelectorReachesTheRegistersOfAFeatureHoweverManyThereAre) {
    for (const int count : {20, 600}) {
        Camera camera(::Node("Integer", "S", "<Value>0</Value><pSelected>F</pSelected>") +
                      SumOfRegisters(count));
        EXPECT_EQ(camera.Int("F")->GetValue(), 0);
        EXPECT_EQ(camera.port.TakeReads(), count);
        EXPECT_EQ(camera.Int("F")->GetValue(), 0);
        EXPECT_EQ(camera.port.TakeReads(), 0);
        int* const changes = camera.Watch("R7");
        camera.port.Put(4 * (count - 1), {21});
        camera.Int("S")->SetValue(1);
        EXPECT_EQ(*changes, 1);
        EXPECT_EQ(camera.Int("F")->GetValue(), 42);
        EXPECT_EQ(camera.port.TakeReads(), count);
        camera.Int("R0")->SetValue(1); // is no selector
        EXPECT_EQ(camera.Int("F")->GetValue(), 44);
        EXPECT_EQ(camera.port.TakeReads(), 0);
    }
}

// What changes a selector through its register selects as well, and the register keeps what was written.
TEST(Invalidation, SelectorOverARegisterReachesManyRegistersToo) {
    Camera camera(Feature("S", "Place", "<pSelected>F</pSelected>") + IntReg("Place", 0x10000) +
                  Feature("T", "Place", "<pSelected>F</pSelected>") + SumOfRegisters(600));
    EXPECT_EQ(camera.Int("F")->GetValue(), 0);
    camera.port.Put(4 * 599, {21});
    camera.port.TakeReads();
    camera.Int("Place")->SetValue(3);
    EXPECT_EQ(camera.Int("S")->GetValue(), 3);
    EXPECT_EQ(camera.port.TakeReads(), 0);
    EXPECT_EQ(camera.Int("F")->GetValue(), 42);
    camera.port.Put(4 * 598, {1});
    camera.Int("T")->SetValue(4);
    EXPECT_EQ(camera.Int("F")->GetValue(), 44);
}

TEST(Polling, BlockedNodesAreLeftAlone) {
    Camera camera(IntReg("R", 0, 4, "<pBlockPolling>Block</pBlockPolling><PollingTime>100</PollingTime>") +
                  ::Node("Integer", "Block", "<Value>1</Value>"));
    EXPECT_EQ(camera.Int("R")->GetValue(), 0);
    camera.port.TakeReads();
    camera.map._Poll(1000);
    EXPECT_EQ(camera.Int("R")->GetValue(), 0);
    EXPECT_EQ(camera.port.TakeReads(), 0);
    camera.Int("Block")->SetValue(0);
    camera.map._Poll(100);
    EXPECT_EQ(camera.Int("R")->GetValue(), 0);
    EXPECT_EQ(camera.port.TakeReads(), 1);
}

TEST(Polling, TimeNeverRunsBackOrOver) {
    Camera camera(IntReg("R", 0, 4, "<PollingTime>9223372036854775807</PollingTime>") +
                  ::Node("Integer", "Bad", "<PollingTime>1</PollingTime><pValue>Gone</pValue>"));
    EXPECT_EQ(camera.Int("R")->GetValue(), 0);
    camera.port.TakeReads();
    camera.map._Poll(-5);
    camera.map._Poll(INT64_MAX - 1);
    EXPECT_EQ(camera.Int("R")->GetValue(), 0);
    EXPECT_EQ(camera.port.TakeReads(), 0);
    camera.map._Poll(INT64_MAX);
    EXPECT_EQ(camera.Int("R")->GetValue(), 0);
    EXPECT_EQ(camera.port.TakeReads(), 1);
}

TEST(Polling, CommandsAreWatchedUntilTheyAreDone) {
    Camera camera(::Node("Command", "C",
                         "<pValue>R</pValue><CommandValue>1</CommandValue><PollingTime>10</PollingTime>") +
                  IntReg("R", 0));
    int* const done = camera.Watch("C");
    camera.map._Poll(10);
    EXPECT_EQ(camera.port.TakeReads(), 0); // nobody has executed it
    camera.Command("C")->Execute();
    EXPECT_EQ(*done, 1);
    camera.map._Poll(10);
    EXPECT_EQ(camera.port.TakeReads(), 1);
    EXPECT_EQ(*done, 1);
    camera.port.Put(0, {0});
    camera.map._Poll(10);
    EXPECT_EQ(*done, 2);
    camera.port.TakeReads();
    camera.map._Poll(10);
    EXPECT_EQ(camera.port.TakeReads(), 0);
}

TEST(Polling, EnumerationsAreWatchedWhileTheirEntryClearsItself) {
    Camera camera("<Enumeration Name=\"E\"><EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry><EnumEntry "
                  "Name=\"Once\">"
                  "<Value>1</Value><IsSelfClearing>Yes</IsSelfClearing></EnumEntry><pValue>R</pValue>"
                  "<PollingTime>10</PollingTime></Enumeration>" +
                  IntReg("R", 0));
    camera.Value("E")->FromString("Once");
    camera.port.Put(0, {0}); // the device is through with it
    EXPECT_TRUE(camera.Value("E")->ToString() == "Once");
    camera.map._Poll(10);
    EXPECT_TRUE(camera.Value("E")->ToString() == "Off");
    camera.port.Put(0, {1});
    camera.map._Poll(10);
    EXPECT_TRUE(camera.Value("E")->ToString() == "Off"); // stays as it is kept
    camera.Enum("E")->SetIntValue(0);
    camera.port.Put(0, {7});
    camera.Node("R")->InvalidateNode();
    EXPECT_EQ(camera.Enum("E")->GetIntValue(), 7);
    camera.map._Poll(10); // no entry at all
    camera.map._Connect(nullptr);
    camera.map._Poll(10);
    EXPECT_EQ(camera.Mode("E"), NA);
}

TEST(Callbacks, RunOncePerChangeForEveryNodeConcerned) {
    Camera camera(Feature("F", "R") + Feature("G", "R") + IntReg("R", 0) + IntReg("Other", 8));
    int* const f = camera.Watch("F");
    int* const g = camera.Watch("G", cbPostOutsideLock);
    int* const r = camera.Watch("R");
    int* const other = camera.Watch("Other");
    camera.Int("F")->SetValue(3);
    EXPECT_EQ(*f, 1);
    EXPECT_EQ(*g, 1);
    EXPECT_EQ(*r, 1);
    EXPECT_EQ(*other, 0);
}

TEST(Callbacks, InsideOnesHoldTheLockAndOutsideOnesDoNot) {
    for (const bool inside : {true, false}) {
        Camera camera(Feature("F", "R") + IntReg("R", 0));
        int64_t seen = -1;
        bool wasFree = inside;
        Register(
            camera.Node("F"),
            [&](INode* node) {
                wasFree = camera.IsFree();
                seen = CIntegerPtr(node)->GetValue();
            },
            inside ? cbPostInsideLock : cbPostOutsideLock);
        EXPECT_TRUE(camera.IsFree());
        camera.Int("F")->SetValue(12);
        EXPECT_EQ(wasFree, !inside);
        EXPECT_EQ(seen, 12);
        EXPECT_TRUE(camera.IsFree());
    }
}

// Both kinds on one node: each runs in its own phase of the same operation.
TEST(Callbacks, OutsideOnesRunBehindTheInsideOnes) {
    Camera camera(IntReg("R", 0));
    std::vector<bool> free;
    Register(
        camera.Node("R"), [&](INode*) { free.push_back(camera.IsFree()); }, cbPostOutsideLock);
    Register(
        camera.Node("R"), [&](INode*) { free.push_back(camera.IsFree()); }, cbPostInsideLock);
    camera.Node("R")->InvalidateNode();
    EXPECT_EQ(free, (std::vector<bool>{false, true}));
}

TEST(Callbacks, OfNestedOperationsWaitForTheOutermost) {
    Camera camera(IntReg("R", 0) + ::Node("Integer", "Own", "<Value>0</Value>"));
    int* const own = camera.Watch("Own");
    int during = -1;
    camera.port.onWrite = [&] {
        camera.Int("Own")->SetValue(1);
        during = *own;
    };
    camera.Int("R")->SetValue(1);
    EXPECT_EQ(during, 0);
    EXPECT_EQ(*own, 1);
}

TEST(Callbacks, DeregisteredOnesNoLongerRun) {
    Camera camera(IntReg("R", 0));
    int count = 0;
    const CallbackHandleType handle = Register(camera.Node("R"), [&](INode*) { ++count; });
    camera.Int("R")->SetValue(1);
    Deregister(handle);
    Deregister(handle);
    camera.Int("R")->SetValue(2);
    EXPECT_EQ(count, 1);
    EXPECT_FALSE(camera.Node("R")->DeregisterCallback(handle));
}

TEST(Callbacks, MayDeregisterThemselves) {
    Camera camera(IntReg("R", 0));
    CallbackHandleType handle = 0;
    int count = 0;
    handle = Register(camera.Node("R"), [&](INode*) {
        ++count;
        Deregister(handle);
    });
    camera.Int("R")->SetValue(1);
    camera.Int("R")->SetValue(2);
    EXPECT_EQ(count, 1);
}

TEST(Callbacks, ThoseThatAnotherOneDeregistersNoLongerRun) {
    Camera camera(IntReg("R", 0));
    CallbackHandleType inside = 0;
    CallbackHandleType outside = 0;
    Register(camera.Node("R"), [&](INode*) {
        Deregister(inside);
        Deregister(outside);
    });
    int count = 0;
    inside = Register(camera.Node("R"), [&](INode*) { ++count; });
    outside = Register(
        camera.Node("R"), [&](INode*) { ++count; }, cbPostOutsideLock);
    camera.Int("R")->SetValue(1);
    EXPECT_EQ(count, 0);
}

TEST(Callbacks, MembersOfAClientCanBeRegistered) {
    struct Client {
        void OnChange(INode* node) { name = node->GetName(); }
        gcstring name;
    } client;
    Camera camera(IntReg("R", 0));
    Register(camera.Node("R"), client, &Client::OnChange);
    camera.Int("R")->SetValue(1);
    EXPECT_TRUE(client.name == "R");
}

TEST(Callbacks, ExceptionPassesAfterAllHaveRun) {
    Camera camera(IntReg("R", 0));
    Register(camera.Node("R"), [](INode*) { throw RUNTIME_EXCEPTION("from the callback"); });
    int* const count = camera.Watch("R");
    EXPECT_EQ(Failure<RuntimeException>([&] { camera.Int("R")->SetValue(1); }), "from the callback");
    EXPECT_EQ(*count, 1);
}

TEST(Callbacks, SuppressedOnesDoNotRun) {
    Camera camera(IntReg("R", 0));
    int* const count = camera.Watch("R");
    camera.map._Ptr->SetSuppressCallbackMode(true);
    camera.Int("R")->SetValue(1);
    camera.map._Ptr->SetSuppressCallbackMode(false);
    EXPECT_EQ(*count, 0);
    camera.Int("R")->SetValue(2);
    EXPECT_EQ(*count, 1);
}

TEST(Callbacks, OfNoNodeAreRefused) {
    struct Client {
        void OnChange(INode*) {}
        void OnChangeConst(INode*) const {}
    } client;
    Camera camera(IntReg("R", 0) + IntReg("Other", 4));
    const std::string refusal = "NULL pointer dereferenced";
    EXPECT_EQ(Failure<LogicalErrorException>([&] { Register(nullptr, [](INode*) {}); }), refusal);
    EXPECT_EQ(Failure<LogicalErrorException>([&] { Register(nullptr, client, &Client::OnChange); }), refusal);
    const Client& fixed = client;
    EXPECT_EQ(Failure<LogicalErrorException>([&] { Register(nullptr, fixed, &Client::OnChangeConst); }),
              refusal);
    EXPECT_EQ(Failure<InvalidArgumentException>([&] { camera.Node("R")->RegisterCallback(nullptr); }),
              "No callback for node 'R'.");
    Register(camera.Node("R"), fixed, &Client::OnChangeConst);
    const CallbackHandleType handle = Register(camera.Node("R"), client, &Client::OnChange);
    EXPECT_FALSE(camera.Node("Other")->DeregisterCallback(handle));
    EXPECT_TRUE(camera.Node("R")->DeregisterCallback(handle));
}

TEST(Callbacks, FirstOfSeveralExceptionsPasses) {
    Camera camera(IntReg("R", 0));
    Register(camera.Node("R"), [](INode*) { throw RUNTIME_EXCEPTION("first"); });
    Register(camera.Node("R"), [](INode*) { throw RUNTIME_EXCEPTION("second"); });
    EXPECT_EQ(Failure<RuntimeException>([&] { camera.Int("R")->SetValue(1); }), "first");
}
