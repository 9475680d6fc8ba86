#include "Camera.h"

using namespace GenICam;
using namespace GenApi;

namespace {

std::string Feature(const std::string& name, const std::string& inside) {
    return ::Node("Integer", name, inside);
}

} // namespace

TEST(Access, EveryPredicateRestrictsAndIsNamed) {
    Camera camera(Feature("Flag", "<Value>1</Value>") +
                  Feature("Imp", "<pIsImplemented>Flag</pIsImplemented><Value>1</Value>") +
                  Feature("Ava", "<pIsAvailable>Flag</pIsAvailable><Value>1</Value>") +
                  Feature("Loc", "<pIsLocked>Flag</pIsLocked><Value>1</Value>"));
    EXPECT_EQ(camera.Mode("Imp"), RW);
    EXPECT_EQ(camera.Mode("Ava"), RW);
    EXPECT_EQ(camera.Mode("Loc"), RO);
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("Loc")->SetValue(2); }),
              "Node 'Loc' is not writable: it is locked by 'Flag' (access mode RO).");
    camera.Int("Flag")->SetValue(0);
    EXPECT_EQ(camera.Mode("Imp"), NI);
    EXPECT_EQ(camera.Mode("Ava"), NA);
    EXPECT_EQ(camera.Mode("Loc"), RW);
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("Imp")->GetValue(); }),
              "Node 'Imp' is not readable: it is not implemented, as 'Flag' says (access mode NI).");
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("Ava")->SetValue(2); }),
              "Node 'Ava' is not writable: it is not available, as 'Flag' says (access mode NA).");
}

TEST(Access, AnyNonZeroPredicateIsTrue) {
    Camera camera(Feature("Flag", "<Value>0x80</Value>") + ::Node("Boolean", "B", "<Value>true</Value>") +
                  Feature("A", "<pIsAvailable>Flag</pIsAvailable><Value>1</Value>") +
                  Feature("C", "<pIsAvailable>B</pIsAvailable><Value>1</Value>"));
    EXPECT_EQ(camera.Mode("A"), RW);
    EXPECT_EQ(camera.Mode("C"), RW);
}

TEST(Access, MissingPredicateRestrictsNothing) {
    Camera camera(
        Feature("A", "<pIsImplemented>Gone</pIsImplemented><pIsLocked>Gone</pIsLocked><Value>1</Value>"));
    EXPECT_EQ(camera.Mode("A"), RW);
}

TEST(Access, PredicateThatFailsMakesTheNodeUnavailable) {
    Camera camera(Feature("A", "<pIsAvailable>R</pIsAvailable><Value>1</Value>") + IntReg("R", 0));
    camera.port.failure = true;
    EXPECT_EQ(camera.Mode("A"), NA);
}

TEST(Access, ModeOfAChainIsTheMeetOfItsLinks) {
    Camera camera(Feature("A", "<pValue>R</pValue>") +
                  Feature("Imposed", "<pValue>W</pValue><ImposedAccessMode>RO</ImposedAccessMode>") +
                  IntReg("R", 0, 4, "<AccessMode>RO</AccessMode>") + IntReg("W", 4) +
                  Feature("Nothing", "<pValue>R</pValue><ImposedAccessMode>WO</ImposedAccessMode>"));
    EXPECT_EQ(camera.Mode("A"), RO);
    EXPECT_EQ(camera.Mode("Imposed"), RO);
    EXPECT_EQ(camera.Mode("Nothing"), NA);
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("A")->SetValue(1); }),
              "Node 'A' is not writable: 'R' is not writable, its register is RO (access mode RO).");
}

TEST(Access, UnconnectedPortMakesRegistersUnavailable) {
    Camera camera(Feature("A", "<pValue>R</pValue>") + IntReg("R", 0), false);
    EXPECT_EQ(camera.Mode("A"), NA);
    EXPECT_EQ(
        Failure<AccessException>([&] { camera.Int("A")->GetValue(); }),
        "Node 'A' is not readable: 'R' is not readable, port 'Device' is not connected (access mode NA).");
    camera.map._Connect(&camera.port);
    EXPECT_EQ(camera.Mode("A"), RW);
}

TEST(Access, ReadOnlyPortRefusesAWriteItself) {
    Camera camera(Feature("A", "<pValue>R</pValue>") + IntReg("R", 0) +
                  Feature("Locked", "<pIsLocked>One</pIsLocked><pValue>R</pValue>") +
                  Feature("One", "<Value>1</Value>"));
    camera.port.mode = RO;
    EXPECT_EQ(camera.Mode("A"), RO);
    EXPECT_FALSE(IsWritable(camera.Node("A")));
    EXPECT_EQ(Failure<RuntimeException>([&] { camera.Int("A")->SetValue(5); }), "Port is not writable.");
    EXPECT_THROW(camera.Int("Locked")->SetValue(5), AccessException);
    EXPECT_EQ(camera.Int("A")->GetValue(), 0);
}

TEST(Access, ImposedModeNarrowsAndRunsCallbacks) {
    Camera camera(Feature("A", "<Value>1</Value>"));
    int* const count = camera.Watch("A");
    camera.Node("A")->ImposeAccessMode(RO);
    EXPECT_EQ(camera.Mode("A"), RO);
    EXPECT_EQ(*count, 1);
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("A")->SetValue(2); }),
              "Node 'A' is not writable: its access is imposed to be RO (access mode RO).");
    camera.Node("A")->ImposeAccessMode(RW);
    EXPECT_EQ(camera.Mode("A"), RW);
}

TEST(Access, ModeIsKeptUntilAPredicateChanges) {
    Camera camera(Feature("A", "<pIsAvailable>Flag</pIsAvailable><Value>1</Value>") + IntReg("Flag", 0));
    camera.port.Put(0, {1});
    EXPECT_EQ(camera.Mode("A"), RW);
    EXPECT_EQ(camera.Mode("A"), RW);
    EXPECT_EQ(camera.port.TakeReads(), 1);
    camera.Int("Flag")->SetValue(0);
    EXPECT_EQ(camera.Mode("A"), NA);
    EXPECT_EQ(camera.Node("A")->IsAccessModeCacheable(), Yes);
}

TEST(Access, ModesFollowWhateverDecidesThem) {
    const std::string knife = "<pVariable Name=\"V\">Lock</pVariable><Formula>V+1</Formula>";
    Camera camera(
        IntReg("LockReg", 0) + IntReg("R", 4) + Feature("Lock", "<pValue>LockReg</pValue>") +
        Feature("Own", "<pIsLocked>Knife</pIsLocked><Value>1</Value>") +
        ::Node("IntSwissKnife", "Knife", "<pVariable Name=\"V\">Own</pVariable><Formula>V>5</Formula>") +
        ::Node("IntSwissKnife", "Plain", knife) +
        Feature("Locked", "<pIsLocked>Lock</pIsLocked><pValue>R</pValue>") +
        Feature("OverLocked", "<pValue>Locked</pValue>") +
        Feature("Table", "<pIndex>Lock</pIndex><ValueIndexed Index=\"0\">3</ValueIndexed>") +
        ::Node("IntSwissKnife", "OverTable", "<pVariable Name=\"V\">Table</pVariable><Formula>V</Formula>"));
    const auto modes = [&] {
        return std::vector<EAccessMode>{camera.Mode("Locked"), camera.Mode("OverLocked"),
                                        camera.Mode("Table"), camera.Mode("OverTable"), camera.Mode("Plain")};
    };
    EXPECT_EQ(modes(), (std::vector<EAccessMode>{RW, RW, RW, RO, RO}));
    camera.Int("Lock")->SetValue(1);
    EXPECT_EQ(modes(), (std::vector<EAccessMode>{RO, RO, NA, NA, RO}));
    camera.Int("Lock")->SetValue(0);
    EXPECT_EQ(modes(), (std::vector<EAccessMode>{RW, RW, RW, RO, RO}));
    camera.Node("LockReg")->ImposeAccessMode(WO);
    EXPECT_EQ(modes(), (std::vector<EAccessMode>{NA, NA, NA, NA, NA}));
    camera.Node("LockReg")->ImposeAccessMode(RW);
    EXPECT_EQ(modes(), (std::vector<EAccessMode>{RW, RW, RW, RO, RO}));
    camera.map._Connect(nullptr);
    EXPECT_EQ(modes(), (std::vector<EAccessMode>{NA, NA, NA, NA, NA}));
    EXPECT_EQ(camera.Mode("Own"), RW);
    camera.Int("Own")->SetValue(6); // locks itself
    EXPECT_EQ(camera.Mode("Own"), RO);
}

TEST(Access, PredicateThatIsNeverKeptIsAskedEveryTime) {
    Camera camera(Feature("A", "<pIsAvailable>Flag</pIsAvailable><Value>1</Value>") +
                  IntReg("Flag", 0, 4, "<Cachable>NoCache</Cachable>"));
    EXPECT_EQ(camera.Mode("A"), NA);
    camera.port.Put(0, {1});
    EXPECT_EQ(camera.Mode("A"), RW);
    EXPECT_EQ(camera.Node("A")->IsAccessModeCacheable(), No);
}

TEST(Access, CircleOfPredicatesEnds) {
    Camera camera(Feature("A", "<pIsAvailable>B</pIsAvailable><Value>1</Value>") +
                  Feature("B", "<pIsAvailable>A</pIsAvailable><Value>1</Value>"));
    EXPECT_EQ(camera.Mode("A"), RW);
    EXPECT_EQ(camera.Mode("B"), RW);
}

// While A is asked it counts as readable, which it isn't: B, found to be available then, is not.
TEST(Access, WhatIsFoundInsideACircleIsNotKept) {
    Camera camera(Feature("A", "<pIsAvailable>B</pIsAvailable><pValue>Wo</pValue>") +
                  Feature("B", "<pIsAvailable>A</pIsAvailable><Value>1</Value>") +
                  IntReg("Wo", 0, 4, "<AccessMode>WO</AccessMode>"));
    camera.port.Put(0, {1});
    EXPECT_EQ(camera.Mode("A"), WO);
    EXPECT_EQ(camera.Mode("B"), NA);
}

TEST(Access, KnifeNeedsItsVariablesAndIsNeverWritable) {
    Camera camera(::Node("IntSwissKnife", "K", "<pVariable Name=\"X\">R</pVariable><Formula>X</Formula>") +
                  IntReg("R", 0, 4, "<AccessMode>WO</AccessMode>") +
                  ::Node("SwissKnife", "Const", "<Formula>1.5</Formula>"));
    EXPECT_EQ(camera.Mode("K"), NA);
    EXPECT_EQ(camera.Mode("Const"), RO);
    EXPECT_EQ(camera.Float("Const")->GetValue(), 1.5);
    EXPECT_THROW(camera.Float("Const")->SetValue(1), AccessException);
}

TEST(Access, ExceptionsOfThePortPassUnchanged) {
    Camera camera(Feature("A", "<pValue>R</pValue>") + IntReg("R", 0));
    camera.port.failure = true;
    EXPECT_EQ(Failure<TimeoutException>([&] { camera.Int("A")->GetValue(); }), "no answer");
    camera.port.failure = false;
    EXPECT_EQ(camera.Int("A")->GetValue(), 0);
}

TEST(Access, VisibilityIsTheNarrowerOfBoth) {
    Camera camera(Feature("A", "<Visibility>Expert</Visibility><Value>1</Value>"));
    EXPECT_EQ(camera.Node("A")->GetVisibility(), Expert);
    camera.Node("A")->ImposeVisibility(Guru);
    EXPECT_EQ(camera.Node("A")->GetVisibility(), Guru);
    camera.Node("A")->ImposeVisibility(Beginner);
    EXPECT_EQ(camera.Node("A")->GetVisibility(), Expert);
    EXPECT_TRUE(IsVisible(camera.Node("A"), Expert));
    EXPECT_FALSE(IsVisible(camera.Node("A"), Beginner));
}

TEST(Access, AnotherSpellingOfTheModeIsUnderstood) {
    Camera camera(IntReg("R", 0, 4, "<AccessMode>R</AccessMode>") +
                  IntReg("Odd", 0, 4, "<AccessMode>X</AccessMode>"));
    EXPECT_EQ(camera.Mode("R"), RO);
    EXPECT_EQ(camera.Mode("Odd"), RO);
}

TEST(Access, ReasonsReachTheNodeThatDecided) {
    const std::string formulas = "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom>";
    Camera camera(
        Feature("I", "<Value>5</Value>") + IntReg("Wo", 0, 4, "<AccessMode>WO</AccessMode>") +
        IntReg("Ro", 4, 4, "<AccessMode>RO</AccessMode>") + IntReg("Rw", 8) +
        "<IntReg Name=\"AtWo\"><pAddress>Wo</pAddress><Length>4</Length><AccessMode>RW</AccessMode>"
        "<pPort>Device</pPort></IntReg><IntReg Name=\"OffWo\"><pIndex "
        "pOffset=\"Wo\">I</pIndex><Length>4</Length>"
        "<AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>"
        "<IntReg Name=\"LongAsWo\"><Address>0</Address><pLength>Wo</pLength><AccessMode>RW</AccessMode>"
        "<pPort>Device</pPort></IntReg>"
        "<IntReg Name=\"LongAsI\"><Address>0</Address><pLength>I</pLength><AccessMode>WO</AccessMode>"
        "<pPort>Device</pPort></IntReg>" +
        IntReg("LockedWo", 0, 4, "<AccessMode>WO</AccessMode><pIsLocked>I</pIsLocked>") +
        ::Node("SwissKnife", "Sum",
               "<pVariable Name=\"W\">Wo</pVariable><pVariable Name=\"X\">I</pVariable>"
               "<Formula>W.Max+X+W</Formula>") +
        IntReg("WoAtI", 16, 4, "<AccessMode>WO</AccessMode><pIndex Offset=\"4\">I</pIndex>") +
        ::Node("Command", "C", "<pValue>Rw</pValue><CommandValue>1</CommandValue>") +
        ::Node("Command", "OverRo", "<pValue>Ro</pValue><CommandValue>1</CommandValue>") +
        Feature("OverC", "<pValue>C</pValue>") +
        Feature("Table", "<pIndex>I</pIndex><ValueIndexed Index=\"1\">1</ValueIndexed>") +
        Feature("Copies", "<pValue>Rw</pValue><pValueCopy>Ro</pValueCopy>") +
        Feature("CopiesOfWo", "<pValue>Wo</pValue><pValueCopy>Rw</pValueCopy>") +
        Feature("CopiesOfRo", "<pValue>Ro</pValue><pValueCopy>Rw</pValueCopy>") +
        ::Node(
            "Converter", "Conv",
            "<pVariable Name=\"V\">Wo</pVariable><FormulaTo>FROM</FormulaTo><FormulaFrom>TO+V</FormulaFrom>"
            "<pValue>Rw</pValue>") +
        ::Node("Converter", "ConvRo", formulas + "<pValue>Ro</pValue>") +
        ::Node("SwissKnife", "Knife", "<Formula>1</Formula>") + ::Node("Category", "Group", "") +
        ::Node("String", "S", "<pIsLocked>I</pIsLocked><Value>x</Value>"));
    const auto whyNotRead = [&](const char* name) {
        return Failure<AccessException>([&] { camera.Value(name)->ToString(); });
    };
    const auto whyNotWrite = [&](const char* name) {
        return Failure<AccessException>([&] { camera.Value(name)->FromString("1"); });
    };
    EXPECT_EQ(whyNotRead("AtWo"),
              "Node 'AtWo' is not readable: 'Wo' is not readable, its register is WO (access mode NA).");
    EXPECT_EQ(whyNotRead("OffWo"),
              "Node 'OffWo' is not readable: 'Wo' is not readable, its register is WO (access mode NA).");
    EXPECT_EQ(whyNotRead("LongAsWo"),
              "Node 'LongAsWo' is not readable: 'Wo' is not readable, its register is WO (access mode NA).");
    EXPECT_EQ(whyNotRead("LongAsI"), "Node 'LongAsI' is not readable: its register is WO (access mode WO).");
    EXPECT_EQ(camera.Mode("LockedWo"), NA);
    EXPECT_EQ(whyNotRead("Sum"),
              "Node 'Sum' is not readable: 'Wo' is not readable, its register is WO (access mode NA).");
    EXPECT_EQ(whyNotRead("WoAtI"), "Node 'WoAtI' is not readable: its register is WO (access mode WO).");
    EXPECT_EQ(whyNotRead("OverC"),
              "Node 'OverC' is not readable: 'C' is not readable, it is a command (access mode WO).");
    EXPECT_EQ(camera.Mode("OverRo"), NA);
    EXPECT_EQ(whyNotWrite("OverRo"),
              "Node 'OverRo' is not writable: 'Ro' is not writable, its register is RO (access mode NA).");
    EXPECT_EQ(whyNotRead("Table"),
              "Node 'Table' is not readable: of the entry that 'I' chooses (access mode NA).");
    EXPECT_EQ(camera.Mode("Copies"), RO);
    EXPECT_EQ(whyNotWrite("Copies"),
              "Node 'Copies' is not writable: 'Ro' is not writable, its register is RO (access mode RO).");
    EXPECT_EQ(
        whyNotRead("CopiesOfWo"),
        "Node 'CopiesOfWo' is not readable: 'Wo' is not readable, its register is WO (access mode WO).");
    EXPECT_EQ(
        whyNotWrite("CopiesOfRo"),
        "Node 'CopiesOfRo' is not writable: 'Ro' is not writable, its register is RO (access mode RO).");
    EXPECT_EQ(whyNotRead("Conv"),
              "Node 'Conv' is not readable: 'Wo' is not readable, its register is WO (access mode NA).");
    EXPECT_EQ(whyNotWrite("ConvRo"),
              "Node 'ConvRo' is not writable: 'Ro' is not writable, its register is RO (access mode RO).");
    EXPECT_EQ(whyNotWrite("Knife"), "Node 'Knife' is not writable: it is computed (access mode RO).");
    EXPECT_EQ(whyNotWrite("S"), "Node 'S' is not writable: it is locked by 'I' (access mode RO).");
}

TEST(Access, PortThatTakesNothingIsTheReason) {
    Camera camera(IntReg("R", 0));
    camera.port.mode = NA;
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("R")->GetValue(); }),
              "Node 'R' is not readable: port 'Device' is NA (access mode NA).");
    camera.port.mode = WO;
    camera.Node("Device")->InvalidateNode();
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("R")->GetValue(); }),
              "Node 'R' is not readable: port 'Device' is WO (access mode WO).");
}

TEST(Access, PortOfChunksIsTheReasonWhenItIsConnectedAsWell) {
    Camera camera("<Port Name=\"P\"><ChunkID>1</ChunkID></Port><IntReg Name=\"R\"><Address>0</Address>"
                  "<Length>4</Length><AccessMode>RW</AccessMode><pPort>P</pPort></IntReg>");
    FakePort chunks;
    chunks.mode = WO;
    ASSERT_TRUE(camera.map._Connect(&chunks, "P"));
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("R")->GetValue(); }),
              "Node 'R' is not readable: port 'P' is WO (access mode WO).");
}

TEST(Access, PredicateThatCannotBeReadMakesTheNodeUnavailable) {
    Camera camera(Feature("A", "<pIsImplemented>Wo</pIsImplemented><Value>1</Value>") +
                  Feature("B", "<pIsLocked>Wo</pIsLocked><Value>1</Value>") +
                  IntReg("Wo", 0, 4, "<AccessMode>WO</AccessMode>"));
    EXPECT_EQ(camera.Mode("A"), NA);
    EXPECT_EQ(camera.Mode("B"), NA);
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("A")->GetValue(); }),
              "Node 'A' is not readable: it is not implemented, as 'Wo' says (access mode NA).");
}

TEST(Access, PredicateOfAPortHoldsForItsRegisters) {
    Camera camera(
        "<Port Name=\"P\"><pIsAvailable>Flag</pIsAvailable></Port>" + Feature("Flag", "<Value>1</Value>") +
        "<IntReg Name=\"R\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>P</pPort>"
        "</IntReg>" +
        Feature("A", "<pValue>R</pValue>") +
        ::Node(
            "IntSwissKnife", "K",
            "<pVariable Name=\"X\">A</pVariable><pVariable Name=\"Y\">R</pVariable><Formula>X+Y</Formula>"));
    FakePort second;
    ASSERT_TRUE(camera.map._Connect(&second, "P"));
    EXPECT_EQ(camera.Mode("K"), RO);
    EXPECT_EQ(camera.Mode("A"), RW);
    camera.Int("Flag")->SetValue(0);
    for (const char* name : {"P", "R", "A", "K"})
        EXPECT_EQ(camera.Mode(name), NA) << name;
    camera.Int("Flag")->SetValue(1);
    EXPECT_EQ(camera.Mode("A"), RW);
}

TEST(Access, ModesThatDoubleWithEveryLinkAreGivenUp) {
    std::string nodes = IntReg("N0", 0) + IntReg("Flag", 4, 4, "<Cachable>NoCache</Cachable>");
    for (int i = 1; i < 60; ++i) {
        const std::string below = "N" + std::to_string(i - 1);
        nodes += Feature("N" + std::to_string(i), "<pIsAvailable>Flag</pIsAvailable><pValue>" + below +
                                                      "</pValue><pValueCopy>" + below + "</pValueCopy>");
    }
    Camera camera(nodes);
    camera.port.Put(4, {1});
    EXPECT_EQ(camera.Mode("N3"), RW);
    EXPECT_FALSE(IsWritable(camera.Node("N59")));
}

TEST(Selector, BothDirectionsAreListed) {
    Camera camera(Feature("Sel", "<Value>0</Value><pSelected>Gain</pSelected><pSelected>Gone</pSelected>") +
                  Feature("Gain", "<Value>0</Value>"));
    FeatureList_t list;
    const CSelectorPtr selector = camera.Node("Sel");
    EXPECT_TRUE(selector->IsSelector());
    selector->GetSelectedFeatures(list);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_TRUE(list[0]->GetNode()->GetName() == "Gain");
    CSelectorPtr(camera.Node("Gain"))->GetSelectingFeatures(list);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_TRUE(list[0]->GetNode()->GetName() == "Sel");
}
