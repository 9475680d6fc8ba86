#include "Camera.h"

#include <sstream>

using namespace GenICam;
using namespace GenApi;

namespace {

const char kHead[] = "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n"
                     "# GenApi persistence file (version 3.0.0)\n"
                     "# \n";

std::string Root(const std::string& features) {
    return ::Node("Category", "Root", features);
}
std::string Feature(const std::string& name) {
    return "<pFeature>" + name + "</pFeature>";
}
const std::string kStreamable = "<Streamable>Yes</Streamable>";

/// A register that lies elsewhere for each value of an integer node.
std::string Indexed(const std::string& name, int64_t address, const std::string& index,
                    const std::string& more = "") {
    return IntReg(name, address, 4, more + "<pIndex Offset=\"4\">" + index + "</pIndex>");
}

/// An enumeration over a register, with entries A to C of the values 0 to 2.
std::string Selector(const std::string& name, int64_t address, const std::string& more) {
    std::string entries;
    for (const char entry : {'A', 'B', 'C'})
        entries +=
            ::Node("EnumEntry", std::string(1, entry), "<Value>" + std::to_string(entry - 'A') + "</Value>");
    return ::Node("Enumeration", name, entries + "<pValue>" + name + "Reg</pValue>" + more) +
           IntReg(name + "Reg", address);
}
std::string Selects(const std::string& name) {
    return "<pSelected>" + name + "</pSelected>";
}

std::string Text(const CFeatureBag& bag) {
    std::ostringstream text;
    text << bag;
    const std::string whole = text.str();
    EXPECT_EQ(whole.substr(0, sizeof kHead - 1), kHead);
    return whole.substr(sizeof kHead - 1);
}
std::string Stored(Camera& camera, int maxEntries = -1) {
    CFeatureBag bag;
    const int64_t count = bag.StoreToBag(camera.map._Ptr, maxEntries);
    const std::string text = Text(bag);
    EXPECT_EQ(count, std::count(text.begin(), text.end(), '\n'));
    return text;
}
CFeatureBag Bag(const std::string& lines) {
    std::istringstream stream(kHead + lines);
    CFeatureBag bag;
    stream >> bag;
    return bag;
}
/// The failures, in lines; empty when all went well.
std::string Load(Camera& camera, const std::string& lines, bool verify = true) {
    gcstring_vector errors;
    const bool good = Bag(lines).LoadFromBag(camera.map._Ptr, verify, &errors);
    EXPECT_EQ(good, errors.size() == 0);
    std::string text;
    for (const gcstring& error : errors)
        text += std::string(error.c_str()) + "\n";
    return text;
}

} // namespace

TEST(SelectorSet, WalksEveryCombinationLastSelectorFastest) {
    Camera camera(
        Selector("Outer", 0, Selects("X")) +
        ::Node("Integer", "Inner", "<Value>4</Value><Min>2</Min><Max>4</Max><Inc>2</Inc>" + Selects("X")) +
        IntReg("X", 8));
    camera.Value("Outer")->FromString("C");
    CSelectorSet set(camera.Node("X"));
    EXPECT_FALSE(set.IsEmpty());
    std::vector<std::string> seen;
    for (bool more = set.SetFirst(); more; more = set.SetNext())
        seen.push_back(set.ToString().c_str());
    EXPECT_EQ(seen, (std::vector<std::string>{"Outer=A, Inner=2", "Outer=A, Inner=4", "Outer=B, Inner=2",
                                              "Outer=B, Inner=4", "Outer=C, Inner=2", "Outer=C, Inner=4"}));
    set.Restore();
    EXPECT_STREQ(set.ToString().c_str(), "Outer=C, Inner=4");
}

TEST(SelectorSet, SelectorsOfSelectorsComeFirstAndDecideWhatInnerOnesOffer) {
    Camera camera(
        ::Node("Integer", "Bank", "<Value>1</Value><Min>0</Min><Max>1</Max>" + Selects("Line")) +
        ::Node("Integer", "Line", "<Value>0</Value><Min>0</Min><pMax>Last</pMax>" + Selects("X")) +
        ::Node("IntSwissKnife", "Last", "<pVariable Name=\"B\">Bank</pVariable><Formula>B*2</Formula>") +
        IntReg("X", 8));
    CSelectorSet set(camera.Node("X"));
    std::vector<std::string> seen;
    for (bool more = set.SetFirst(); more; more = set.SetNext())
        seen.push_back(set.ToString().c_str());
    EXPECT_EQ(seen, (std::vector<std::string>{"Bank=0, Line=0", "Bank=1, Line=0", "Bank=1, Line=1",
                                              "Bank=1, Line=2"}));
}

TEST(SelectorSet, FeatureWithoutSelectorsHasOneCombination) {
    Camera camera(IntReg("X", 8));
    CSelectorSet set(camera.Node("X"));
    EXPECT_TRUE(set.IsEmpty());
    EXPECT_TRUE(set.SetFirst());
    EXPECT_FALSE(set.SetNext());
    EXPECT_STREQ(set.ToString().c_str(), "");
    CSelectorSet none(nullptr);
    EXPECT_TRUE(none.IsEmpty());
}

TEST(SelectorSet, TickChoosesTheNextElseThePresentOneAgain) {
    Camera camera(Selector("S", 0, Selects("X")) + IntReg("X", 8));
    CSelectorSet set(camera.Node("X"));
    EXPECT_FALSE(set.SetNext(false)); // none chosen yet
    EXPECT_FALSE(set.SetNext());
    ASSERT_TRUE(set.SetFirst());
    camera.Value("S")->FromString("C");
    EXPECT_TRUE(set.SetNext(false));
    EXPECT_STREQ(set.ToString().c_str(), "S=A");
    EXPECT_TRUE(set.SetNext(true));
    EXPECT_STREQ(set.ToString().c_str(), "S=B");
}

TEST(SelectorSet, UnavailableEntriesAndUnwritableSelectorsAreNotWalked) {
    Camera camera(
        ::Node("Enumeration", "S",
               ::Node("EnumEntry", "A", "<Value>0</Value>") +
                   ::Node("EnumEntry", "B", "<pIsAvailable>Never</pIsAvailable><Value>1</Value>") +
                   ::Node("EnumEntry", "C", "<Value>2</Value>") + "<Value>0</Value>" + Selects("X")) +
        ::Node("Integer", "Never", "<Value>0</Value>") +
        ::Node("Integer", "Fixed",
               "<ImposedAccessMode>RO</ImposedAccessMode><Value>7</Value><Max>9</Max>" + Selects("X")) +
        IntReg("X", 8));
    CSelectorSet set(camera.Node("X"));
    std::vector<std::string> seen;
    for (bool more = set.SetFirst(); more; more = set.SetNext())
        seen.push_back(set.ToString().c_str());
    EXPECT_EQ(seen, (std::vector<std::string>{"S=A, Fixed=7", "S=C, Fixed=7"}));
}

TEST(SelectorSet, EndOfItsLifeRestores) {
    Camera camera(Selector("S", 0, Selects("X")) + IntReg("X", 8));
    camera.Value("S")->FromString("B");
    {
        CSelectorSet set(camera.Node("X"));
        set.SetFirst();
        EXPECT_STREQ(camera.Value("S")->ToString().c_str(), "A");
    }
    EXPECT_STREQ(camera.Value("S")->ToString().c_str(), "B");
}

TEST(SelectorSet, CirclesEnd) {
    Camera camera(Selector("S", 0, Selects("T")) + Selector("T", 4, Selects("S")));
    CSelectorSet set(camera.Node("S"));
    int count = 0;
    for (bool more = set.SetFirst(); more; more = set.SetNext())
        ++count;
    EXPECT_EQ(count, 3);
}

TEST(FeatureBag, StoresStreamableFeaturesInTheOrderOfTheTree) {
    Camera camera(
        Root(Feature("Sub") + Feature("B") + Feature("NotMarked")) +
        ::Node("Category", "Sub", Feature("A") + Feature("B") + Feature("Root")) +
        IntReg("Loose", 12, 4, kStreamable) + ::Node("Float", "B", kStreamable + "<Value>0.1</Value>") +
        IntReg("A", 0, 4, kStreamable + "<Representation>HexNumber</Representation>") +
        IntReg("NotMarked", 4) + IntReg("ReadOnly", 8, 4, kStreamable + "<AccessMode>RO</AccessMode>"));
    camera.Int("A")->SetValue(255);
    EXPECT_EQ(Stored(camera), "A\t255\nB\t0.1\nLoose\t0\n");
}

TEST(FeatureBag, StoresEveryKindOfValue) {
    Camera camera(::Node("Boolean", "Bool", kStreamable + "<Value>true</Value>") +
                  Selector("Enum", 0, kStreamable) + Register("StringReg", "Text", 16, 8, kStreamable) +
                  Register("Register", "Bytes", 32, 3, kStreamable) +
                  ::Node("Command", "Run", kStreamable + "<Value>0</Value><CommandValue>1</CommandValue>") +
                  Register("StringReg", "Lines", 48, 8, kStreamable));
    camera.port.Put(32, {0x01, 0xAB, 0xFF});
    camera.String("Text")->SetValue("a b");
    camera.String("Lines")->SetValue("a\nb");
    EXPECT_EQ(Stored(camera), "Bool\t1\nEnum\tA\nText\ta b\nBytes\t0x01ABFF\n");
}

TEST(FeatureBag, WithoutMarksAllFeaturesUnderRootAreStored) {
    Camera camera(Root(Feature("A") + Feature("Const")) + IntReg("A", 0) + IntReg("Inner", 4) +
                  ::Node("IntSwissKnife", "Const", "<Formula>1</Formula>"));
    EXPECT_EQ(Stored(camera), "A\t0\n");
}

TEST(FeatureBag, SelectedFeaturesAreStoredForEveryValueAndSelectorsComeBack) {
    Camera camera(Selector("S", 0, Selects("X") + Selects("Y")) + Indexed("X", 16, "S", kStreamable) +
                  Indexed("Y", 32, "S", kStreamable) + IntReg("Z", 48, 4, kStreamable));
    camera.Value("S")->FromString("B");
    camera.port.Put(16, {1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0});
    camera.port.Put(32, {4, 0, 0, 0, 5, 0, 0, 0, 6, 0, 0, 0});
    EXPECT_EQ(Stored(camera), "S\tA\nX\t1\nY\t4\nS\tB\nX\t2\nY\t5\nS\tC\nX\t3\nY\t6\nS\tB\nZ\t0\n");
    EXPECT_STREQ(camera.Value("S")->ToString().c_str(), "B");
    EXPECT_EQ(Stored(camera, 4), "S\tA\nX\t1\nY\t4\nS\tB\n");
    EXPECT_STREQ(camera.Value("S")->ToString().c_str(), "B");
    EXPECT_EQ(Stored(camera, 0), "");
}

TEST(FeatureBag, ASelectorOutsideItsLimitsIsLeftThereAsWell) {
    Camera camera(::Node("Integer", "S", "<Value>2</Value><Min>0</Min><pMax>Max</pMax>" + Selects("X")) +
                  ::Node("Integer", "Max", "<Value>1</Value>") + Indexed("X", 16, "S", kStreamable));
    camera.port.Put(16, {4, 0, 0, 0, 5, 0, 0, 0});
    EXPECT_EQ(Stored(camera), "S\t0\nX\t4\nS\t1\nX\t5\nS\t2\n");
    EXPECT_EQ(camera.Int("S")->GetValue(), 2);
    EXPECT_EQ(Load(camera, "X\t{S=1}\t7\n"), "");
    EXPECT_EQ(camera.port.memory[20], 7);
    EXPECT_EQ(camera.Int("S")->GetValue(), 2);
}

TEST(FeatureBag, LongTablesAreStoredOnlyWhereMarked) {
    const auto table = [](const std::string& mark) {
        return Root(Feature("X")) +
               ::Node("Integer", "S", "<Value>7</Value><Min>0</Min><Max>999</Max>" + Selects("X")) +
               Indexed("X", 16, "S", mark);
    };
    Camera marked(table(kStreamable));
    const std::string text = Stored(marked);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2001);
    Camera unmarked(table(""));
    EXPECT_EQ(Stored(unmarked), "S\t7\nX\t0\n");
}

TEST(FeatureBag, LoadsInOrderWhateverTheLineEnds) {
    Camera camera(Selector("S", 0, Selects("X")) + Indexed("X", 16, "S"));
    EXPECT_EQ(Load(camera, "S\tA\r\nX\t1\r\n\r\n# comment\nS\tC\nX\t0x3\nS\tB\n"), "");
    EXPECT_EQ(camera.port.Bytes(16, 12), (std::vector<int>{1, 0, 0, 0, 0, 0, 0, 0, 3, 0, 0, 0}));
    EXPECT_STREQ(camera.Value("S")->ToString().c_str(), "B");
}

TEST(FeatureBag, LoadsTheVariantThatNamesItsSelectors) {
    Camera camera(Selector("S", 0, Selects("X")) +
                  ::Node("Integer", "I", "<Value>0</Value><Max>1</Max>" + Selects("X")) +
                  IntReg("X", 16, 4, "<pIndex Offset=\"4\">S</pIndex><pIndex Offset=\"12\">I</pIndex>"));
    camera.Value("S")->FromString("B");
    EXPECT_EQ(Load(camera, "X\t{S=C, I=1}\t9\nX\t{ S = A,I=0 }\t8\n"), "");
    EXPECT_EQ(camera.port.Bytes(16, 1), std::vector<int>{8});
    EXPECT_EQ(camera.port.Bytes(36, 1), std::vector<int>{9});
    EXPECT_STREQ(camera.Value("S")->ToString().c_str(), "B");
    EXPECT_EQ(Load(camera, "X\t{Nobody=C}\t9\n"),
              "'X' could not be set to '9': there is no selector 'Nobody=C'\n");
}

TEST(FeatureBag, SelectorsComeBackWhenTheNextOneRefuses) {
    Camera camera(Selector("S", 0, Selects("X")) +
                  ::Node("Integer", "I", "<Value>0</Value><Min>0</Min><Max>1</Max>" + Selects("X")) +
                  Indexed("X", 16, "S"));
    camera.Value("S")->FromString("B");
    EXPECT_EQ(Load(camera, "X\t{S=C, I=5}\t9\n"),
              "'X' could not be set to '9': Value 5 of 'I' must be at most 1 (min 0, max 1, inc 1).\n");
    EXPECT_STREQ(camera.Value("S")->ToString().c_str(), "B");
    EXPECT_EQ(camera.port.Bytes(16, 12), std::vector<int>(12, 0));
}

TEST(FeatureBag, FailedLinesAreTriedAgainWithTheirSelectors) {
    Camera camera(Selector("S", 0, Selects("X")) + Indexed("XReg", 16, "S") +
                  ::Node("Integer", "X", "<pValue>XReg</pValue><pMax>Limit</pMax>") +
                  ::Node("Integer", "Limit", "<Value>10</Value>"));
    EXPECT_EQ(Load(camera, "S\tA\nX\t50\nS\tB\nX\t60\nS\tC\nLimit\t100\n"), "");
    EXPECT_EQ(camera.port.Bytes(16, 8), (std::vector<int>{50, 0, 0, 0, 60, 0, 0, 0}));
    EXPECT_STREQ(camera.Value("S")->ToString().c_str(), "C");
}

TEST(FeatureBag, FinalFailuresAreListedAndTheRestIsLoaded) {
    Camera camera(IntReg("A", 0) + IntReg("Fixed", 4, 4, "<AccessMode>RO</AccessMode>") +
                  ::Node("Integer", "Small", "<Value>1</Value><Max>5</Max>"));
    EXPECT_EQ(Load(camera, "Nothing\t1\nFixed\t2\nSmall\t6\nno tab here\nA\t3\n"),
              "'Nothing' could not be set to '1': there is no such feature\n"
              "'Fixed' could not be set to '2': it is not writable (access mode RO)\n"
              "'Small' could not be set to '6': Value 6 of 'Small' must be at most 5 (min "
              "-9223372036854775808, max 5, inc 1).\n"
              "'no tab here' could not be set to '': there is no such feature\n");
    EXPECT_EQ(camera.Int("A")->GetValue(), 3);
    EXPECT_FALSE(Bag("Nothing\t1\n").LoadFromBag(camera.map._Ptr)); // nobody asks for the list
    EXPECT_TRUE(Bag("").LoadFromBag(camera.map._Ptr));
}

TEST(FeatureBag, VerificationReadsBack) {
    Camera camera(IntReg("A", 0) + Register("FloatReg", "F", 4, 4) + IntReg("Other", 8));
    camera.port.onWrite = [&] { camera.port.memory[0] = 77; };
    EXPECT_EQ(Load(camera, "A\t5\nF\t0.1\n", false), "");
    EXPECT_EQ(Load(camera, "A\t5\nF\t0.1\n", true), "'A' could not be set to '5': it reads back as '77'\n");
}

TEST(FeatureBag, VerificationLooksOnlyForTheLastValueOfEachSetting) {
    Camera camera(Selector("S", 0, Selects("X")) + Indexed("X", 16, "S"));
    EXPECT_EQ(Load(camera, "S\tA\nX\t1\nX\t2\nS\tB\nX\t3\nS\tA\n"), "");
    EXPECT_EQ(camera.port.Bytes(16, 8), (std::vector<int>{2, 0, 0, 0, 3, 0, 0, 0}));
    EXPECT_STREQ(camera.Value("S")->ToString().c_str(), "A");
}

TEST(FeatureBag, NothingIsLoadedWhileTheDeviceStreams) {
    Camera camera(IntReg("A", 0) + ::Node("Integer", "TLParamsLocked", "<Value>1</Value>"));
    camera.port.TakeWrites();
    EXPECT_EQ(Load(camera, "A\t5\n"),
              "The device is streaming ('TLParamsLocked' is not 0): nothing has been loaded.\n");
    EXPECT_EQ(camera.port.TakeWrites(), 0);
}

TEST(FeatureBag, DeviceIsToldBeforeAndAfter) {
    const auto command = [](const std::string& name, int address) {
        return ::Node("Command", name, "<pValue>" + name + "Reg</pValue><CommandValue>1</CommandValue>") +
               IntReg(name + "Reg", address, 4, "<AccessMode>WO</AccessMode>");
    };
    Camera camera(
        IntReg("A", 0, 4, kStreamable) + command("DeviceFeaturePersistenceStart", 0x10) +
        command("DeviceFeaturePersistenceEnd", 0x20) + command("DeviceRegistersStreamingStart", 0x30) +
        command("DeviceRegistersStreamingEnd", 0x40) +
        ::Node("Boolean", "DeviceRegistersValid", "<pValue>ValidReg</pValue>") + IntReg("ValidReg", 0x50));
    const auto addresses = [&] {
        std::vector<int64_t> list;
        for (const auto& [address, bytes] : camera.port.log)
            list.push_back(address);
        camera.port.log.clear();
        return list;
    };
    Stored(camera);
    EXPECT_EQ(addresses(), (std::vector<int64_t>{0x10, 0x20}));
    EXPECT_EQ(Load(camera, "A\t1\nNothing\t1\n"),
              "'Nothing' could not be set to '1': there is no such feature\n"
              "The device finds its registers inconsistent ('DeviceRegistersValid' is false).\n");
    EXPECT_EQ(addresses(), (std::vector<int64_t>{0x30, 0x0, 0x40}));
    camera.port.Put(0x50, {1});
    EXPECT_EQ(Load(camera, "A\t1\n"), "");
}

TEST(FeatureBag, CallbacksRunOnceWhenAllIsLoaded) {
    Camera camera(IntReg("A", 0));
    const int* const calls = camera.Watch("A", cbPostOutsideLock);
    EXPECT_EQ(Load(camera, "A\t1\nA\t2\nA\t3\n"), "");
    EXPECT_EQ(*calls, 1);
}

TEST(FeatureBag, ReadsBackWhatItWrites) {
    CFeatureBag bag = Bag("A\t1\nText\ta\tb  \nEmpty\t\n");
    EXPECT_EQ(Text(bag), "A\t1\nText\ta\tb  \nEmpty\t\n");
    EXPECT_STREQ(bag.ToString().c_str(), "A = 1\nText = a\tb  \nEmpty = \n");
    EXPECT_TRUE(bag == Bag(Text(bag)));
    EXPECT_TRUE(bag != Bag("A\t1\n"));
}

TEST(FeatureBag, RefusesOtherStreams) {
    CFeatureBag bag = Bag("A\t1\n");
    std::istringstream empty("");
    EXPECT_EQ(Failure<RuntimeException>([&] { empty >> bag; }), "The stream is eof");
    EXPECT_EQ(Text(bag), "A\t1\n");
    std::istringstream other("A\t1\n");
    EXPECT_EQ(
        Failure<RuntimeException>([&] { other >> bag; }),
        "The stream is not a GenApi feature stream since it is missing the magic GUID in the first line");
    EXPECT_EQ(Text(bag), "");
    std::istringstream zero(kHead + std::string("A\t1\0\n", 5));
    EXPECT_EQ(Failure<RuntimeException>([&] { zero >> bag; }),
              "The stream is not a GenApi feature stream since it contains a NUL");
    EXPECT_EQ(Failure<InvalidArgumentException>([&] { bag.LoadFromBag(nullptr); }),
              "Nodemap pointer is NULL");
    EXPECT_EQ(Failure<InvalidArgumentException>([&] { bag.StoreToBag(nullptr); }), "Nodemap pointer is NULL");
}

TEST(SelectorSet, EveryKindOfSelectorIsWalked) {
    Camera camera(
        ::Node("Boolean", "B", "<Value>0</Value>" + Selects("X")) +
        ::Node("Integer", "List", "<Value>1</Value><ValidValueSet>1;5</ValidValueSet>" + Selects("X")) +
        ::Node("Float", "F", "<Value>0.5</Value>" + Selects("X")) +
        ::Node("Integer", "Wide", "<Value>9</Value>" + Selects("X")) +
        ::Node("Integer", "Empty", "<Value>4</Value><Min>6</Min><Max>5</Max>" + Selects("X")) +
        IntReg("X", 8));
    CSelectorSet set(camera.Node("X"));
    std::vector<std::string> seen;
    for (bool more = set.SetFirst(); more; more = set.SetNext())
        seen.push_back(set.ToString().c_str());
    EXPECT_EQ(seen, (std::vector<std::string>{
                        "B=0, List=1, F=0.5, Wide=9, Empty=4", "B=0, List=5, F=0.5, Wide=9, Empty=4",
                        "B=1, List=1, F=0.5, Wide=9, Empty=4", "B=1, List=5, F=0.5, Wide=9, Empty=4"}));
    EXPECT_FALSE(set.SetNext(false)); // it has ended
}

TEST(SelectorSet, SelectorsThatCannotBeReadAreLeftOut) {
    Camera camera(
        IntReg("WoReg", 0, 4, "<AccessMode>WO</AccessMode>") +
        ::Node("Integer", "Wo", "<pValue>WoReg</pValue>" + Selects("X")) +
        ::Node("Enumeration", "NoEntry",
               ::Node("EnumEntry", "A", "<Value>3</Value>") + "<pValue>Odd</pValue>" + Selects("X")) +
        IntReg("Odd", 4) + IntReg("X", 8));
    CSelectorSet set(camera.Node("X"));
    EXPECT_TRUE(set.IsEmpty());
}

TEST(SelectorSet, ValuesThatADeviceRefusesArePassedOver) {
    Camera camera(Selector("S", 0, Selects("X")) + IntReg("X", 8));
    const CNodePtr b = camera.Enum("S")->GetEntryByName("B");
    CSelectorSet set(camera.Node("X"));
    ASSERT_TRUE(set.SetFirst());
    b->ImposeAccessMode(NA); // it was there when the values were listed
    EXPECT_TRUE(set.SetNext());
    EXPECT_STREQ(set.ToString().c_str(), "S=C");
    camera.Value("S")->FromString("A");
    CNodePtr(camera.Enum("S")->GetEntryByName("C"))->ImposeAccessMode(NA);
    EXPECT_FALSE(set.SetNext(false));
}

TEST(SelectorSet, RestoringTellsTheFirstFailure) {
    Camera camera(Selector("S", 0, Selects("X")) + Selector("T", 4, Selects("X")) + IntReg("X", 8));
    camera.Value("S")->FromString("B");
    camera.Value("T")->FromString("C");
    CSelectorSet set(camera.Node("X"));
    ASSERT_TRUE(set.SetFirst());
    CNodePtr(camera.Enum("S")->GetEntryByName("B"))->ImposeAccessMode(NA);
    CNodePtr(camera.Enum("T")->GetEntryByName("C"))->ImposeAccessMode(NA);
    EXPECT_EQ(Failure<AccessException>([&] { set.Restore(); }).find("Entry 'B' of 'S' is not available: "),
              0u);
}

TEST(FeatureBag, VerificationKnowsEveryKindOfText) {
    Camera camera(::Node("Boolean", "Bool", "<Value>0</Value>") + Register("Register", "Bytes", 0, 2) +
                  ::Node("Float", "F", "<Value>0</Value>") + ::Node("Integer", "I", "<Value>0</Value>") +
                  Selector("E", 16, "") + ::Node("String", "S", "<Value>x</Value>") +
                  Register("FloatReg", "Single", 32, 4));
    EXPECT_EQ(Load(camera, "Bool\ttrue\nBytes\tabCD\nF\t1e0\nI\t0x10\nE\t B \nS\tab \nSingle\t0.1\n"), "");
    EXPECT_EQ(Load(camera, "Bool\t FALSE\nBytes\t0XABcd\n"), "");
    EXPECT_EQ(camera.port.Bytes(0, 2), (std::vector<int>{0xAB, 0xCD}));
    EXPECT_FALSE(camera.Bool("Bool")->GetValue());
    EXPECT_EQ(Load(camera, "I\tten\nF\tx\n"),
              "'I' could not be set to 'ten': 'ten' is no value of 'I': a whole number is needed.\n"
              "'F' could not be set to 'x': 'x' is no value of 'F': a number is needed.\n");
}

TEST(FeatureBag, VerificationSeesWhatHasChangedSince) {
    Camera camera(Register("Register", "Bytes", 0, 2) + Register("FloatReg", "F", 8, 4) +
                  ::Node("Boolean", "B", "<pValue>R</pValue>") + IntReg("R", 16) +
                  Register("StringReg", "S", 24, 4) +
                  ::Node("Integer", "Ip", "<pValue>R2</pValue><Representation>IPV4Address</Representation>") +
                  IntReg("R2", 32) + IntReg("Wo", 40, 4, "<AccessMode>WO</AccessMode>"));
    camera.port.onWrite = [&] {
        camera.port.Put(0, {1, 2});
        camera.port.Put(8, {0, 0, 0x80, 0x3F});
        camera.port.Put(16, {0});
        camera.port.Put(24, {'z', 0, 0, 0});
        camera.port.Put(32, {5});
    };
    EXPECT_EQ(Load(camera, "Bytes\t0xFFFF\nF\t2.5\nB\t1\nS\tab\nIp\t10.0.0.1\nWo\t5\n"),
              "'Bytes' could not be set to '0xFFFF': it reads back as '0x0102'\n"
              "'F' could not be set to '2.5': it reads back as '1'\n"
              "'B' could not be set to '1': it reads back as '0'\n"
              "'S' could not be set to 'ab': it reads back as 'z'\n"
              "'Ip' could not be set to '10.0.0.1': it reads back as '167772165'\n");
}

TEST(FeatureBag, NodesWithoutAValueAreNoFeaturesAndNoSelectors) {
    Camera camera(IntReg("A", 0));
    EXPECT_EQ(Load(camera, "Device\t1\nA\t{Device=1}\t5\nA\t{A}\t5\n"),
              "'Device' could not be set to '1': there is no such feature\n"
              "'A' could not be set to '5': there is no selector 'Device=1'\n"
              "'A' could not be set to '5': there is no selector 'A'\n");
}

TEST(FeatureBag, SettingsDifferByEachOfTheirSelectors) {
    Camera camera(Selector("S", 0, Selects("X")) + Selector("T", 4, Selects("X")) +
                  IntReg("X", 64, 4, "<pIndex Offset=\"4\">S</pIndex><pIndex Offset=\"16\">T</pIndex>"));
    EXPECT_EQ(Load(camera, "X\t{S=A}\t1\nX\t{T=B}\t2\nX\t{S=B}\t3\nX\t{S=B, T=C}\t4\n"), "");
    EXPECT_EQ(camera.port.Bytes(64, 5), (std::vector<int>{1, 0, 0, 0, 3}));
    EXPECT_EQ(camera.port.Bytes(80, 1), std::vector<int>{2});
    EXPECT_EQ(camera.port.Bytes(100, 1), std::vector<int>{4});
}

TEST(FeatureBag, EqualityIsOfNamesAndValues) {
    EXPECT_TRUE(Bag("A\t1\n") == Bag("A\t1\n"));
    EXPECT_FALSE(Bag("A\t1\n") == Bag("B\t1\n"));
    EXPECT_FALSE(Bag("A\t1\n") == Bag("A\t2\n"));
}

TEST(FeatureBag, LockThatCannotBeReadHoldsNothingBack) {
    Camera camera(IntReg("A", 0) + IntReg("TLParamsLocked", 4, 4, "<AccessMode>WO</AccessMode>") +
                  IntReg("ValidReg", 8, 4, "<AccessMode>WO</AccessMode>") +
                  ::Node("Boolean", "DeviceRegistersValid", "<pValue>ValidReg</pValue>") +
                  ::Node("Command", "DeviceRegistersStreamingStart", "<pValue>RoReg</pValue>") +
                  IntReg("RoReg", 12, 4, "<AccessMode>RO</AccessMode>"));
    EXPECT_EQ(Load(camera, "A\t5\n"), "");
    EXPECT_EQ(camera.Int("A")->GetValue(), 5);
}

TEST(FeatureBag, WaitsForADeviceThatTakesItsTime) {
    const auto command = [](const std::string& name, int address) {
        return ::Node("Command", name, "<pValue>" + name + "Reg</pValue><CommandValue>1</CommandValue>") +
               IntReg(name + "Reg", address, 4);
    };
    Camera camera(IntReg("A", 0) + command("DeviceRegistersStreamingStart", 0x30) +
                  command("DeviceRegistersStreamingEnd", 0x40) +
                  ::Node("IntSwissKnife", "Unused", "<Formula>1</Formula>"));
    // A command is done when its register is 0 again: three reads later.
    class SlowPort final : virtual public IPort {
    public:
        explicit SlowPort(FakePort& port) : m_port(port) {}
        void Read(void* buffer, int64_t address, int64_t length) override {
            if (address >= 0x30 && ++m_reads % 3 == 0)
                m_port.Put(address, {0});
            m_port.Read(buffer, address, length);
        }
        void Write(const void* buffer, int64_t address, int64_t length) override {
            m_port.Write(buffer, address, length);
        }
        EAccessMode GetAccessMode() const override { return RW; }

    private:
        FakePort& m_port;
        int m_reads = 0;
    } slow(camera.port);
    camera.map._Connect(&slow);
    EXPECT_EQ(Load(camera, "A\t5\n"), "");
    EXPECT_EQ(camera.port.Bytes(0x30, 1), std::vector<int>{0});
    EXPECT_EQ(camera.port.Bytes(0x40, 1), std::vector<int>{0});
}
