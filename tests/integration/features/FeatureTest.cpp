// Every feature is read; every writable one is written at its limits and a step above the lower, every entry,
// both states, and its effect is seen where its row of the table says.

#include "Row.h"

#include <algorithm>
#include <map>
#include <set>

namespace {

using GenApi::INode;

Rows AllRows() {
    Rows all;
    for (const Rows& rows : {ModuleRows(), ImageRows(), AcquisitionRows(), ControlRows(), StreamingRows(),
                             KeepingRows(), SimulationRows()})
        all.insert(all.end(), rows.begin(), rows.end());
    return all;
}

constexpr Module modulesWithWritableFeatures[] = {Module::System, Module::Interface, Module::Device,
                                                  Module::Stream, Module::Camera};

/// The features under a category, those of its categories among them.
void Collect(INode& category, std::vector<INode*>& features) {
    GenApi::FeatureList_t listed;
    dynamic_cast<GenApi::ICategory&>(category).GetFeatures(listed);
    for (GenApi::IValue* value : listed) {
        if (value->GetNode()->GetPrincipalInterfaceType() == GenApi::intfICategory)
            Collect(*value->GetNode(), features);
        else
            features.push_back(value->GetNode());
    }
}

std::vector<INode*> FeaturesOf(Rig& rig, Module module) {
    std::vector<INode*> features;
    Collect(rig.Node(module, "Root"), features);
    return features;
}

std::string Property(const INode& node, const char* name) {
    GenICam::gcstring value, attribute;
    return node.GetProperty(name, value, attribute) ? value.c_str() : "";
}

/// What the description lets a host write at one time or another, whatever locks it now.
bool IsWritableByDescription(Rig& rig, Module module, const INode& node) {
    const std::string imposed = Property(node, "ImposedAccessMode");
    const std::string access = Property(node, "AccessMode");
    const std::string target = Property(node, "pValue");
    if (imposed == "RO" || access == "RO")
        return false;
    return target.empty() || IsWritableByDescription(rig, module, rig.Node(module, target));
}

std::string Key(Module module, const std::string& feature) {
    return std::string(moduleNames[static_cast<size_t>(module)]) + "." + feature;
}

std::set<std::string> WritableFeatures(Rig& rig) {
    std::set<std::string> names;
    for (const Module module : modulesWithWritableFeatures) {
        for (const INode* node : FeaturesOf(rig, module)) {
            if (IsWritableByDescription(rig, module, *node))
                names.insert(Key(module, node->GetName().c_str()));
        }
    }
    return names;
}

/// The values of a feature to be written: its least, its greatest and one step, or all it has.
std::vector<Written> ValuesOf(INode& node) {
    std::vector<Written> values;
    const auto add = [&](int64_t whole, double real, const std::string& text) {
        values.push_back({whole, real, text});
    };
    if (auto* entries = dynamic_cast<GenApi::IEnumeration*>(&node)) {
        GenApi::NodeList_t list;
        entries->GetEntries(list);
        for (INode* entry : list) {
            auto& named = dynamic_cast<GenApi::IEnumEntry&>(*entry);
            add(named.GetValue(), 0, named.GetSymbolic().c_str());
        }
    } else if (dynamic_cast<GenApi::ICommand*>(&node) != nullptr) {
        add(1, 0, "");
    } else if (dynamic_cast<GenApi::IBoolean*>(&node) != nullptr) {
        add(0, 0, "");
        add(1, 0, "");
    } else if (auto* integer = dynamic_cast<GenApi::IInteger*>(&node)) {
        std::set<int64_t> numbers{integer->GetMin(), integer->GetMax()};
        const GenApi::int64_autovector_t valid = integer->GetListOfValidValues();
        if (integer->GetIncMode() == GenApi::listIncrement)
            numbers = {valid.begin(), valid.end()};
        else
            numbers.insert(std::min(integer->GetMin() + integer->GetInc(), integer->GetMax()));
        for (const int64_t number : numbers)
            add(number, 0, "");
    } else if (auto* real = dynamic_cast<GenApi::IFloat*>(&node)) {
        const double step = (real->GetMax() - real->GetMin()) / 100;
        for (const double number : {real->GetMin(), real->GetMax(), real->GetMin() + step})
            add(0, number, "");
    } else if (auto* text = dynamic_cast<GenApi::IString*>(&node)) {
        const auto longest = static_cast<size_t>(text->GetMaxLength());
        for (const std::string& value : {std::string(), std::string("x"), std::string(longest, 'y')})
            add(0, 0, value);
    } else {
        const auto length = static_cast<size_t>(dynamic_cast<GenApi::IRegister&>(node).GetLength());
        std::string counting(length, '\0');
        for (size_t i = 0; i < length; ++i)
            counting[i] = static_cast<char>(i * 7);
        for (const std::string& value : {std::string(length, '\0'), std::string(length, '\xFF'), counting})
            add(0, 0, value);
    }
    return values;
}

std::vector<Written> WrittenTexts(const std::vector<std::string>& texts) {
    std::vector<Written> values;
    for (const std::string& text : texts)
        values.push_back({0, 0, text});
    return values;
}

void Write(INode& node, const Written& value) {
    if (auto* entries = dynamic_cast<GenApi::IEnumeration*>(&node))
        *entries = value.text.c_str();
    else if (auto* command = dynamic_cast<GenApi::ICommand*>(&node))
        command->Execute();
    else if (auto* flag = dynamic_cast<GenApi::IBoolean*>(&node))
        flag->SetValue(value.whole != 0);
    else if (auto* integer = dynamic_cast<GenApi::IInteger*>(&node))
        integer->SetValue(value.whole);
    else if (auto* real = dynamic_cast<GenApi::IFloat*>(&node))
        real->SetValue(value.real);
    else if (auto* text = dynamic_cast<GenApi::IString*>(&node))
        text->SetValue(value.text.c_str());
    else
        dynamic_cast<GenApi::IRegister&>(node).Set(reinterpret_cast<const uint8_t*>(value.text.data()),
                                                   static_cast<int64_t>(value.text.size()));
}

/// Features without an effect are numbers or entries; what is in the register is what was written.
void ExpectKept(INode& node, const Written& value) {
    auto* entries = dynamic_cast<GenApi::IEnumeration*>(&node);
    EXPECT_EQ(entries != nullptr ? entries->GetIntValue(false, true)
                                 : dynamic_cast<GenApi::IInteger&>(node).GetValue(false, true),
              value.whole);
}

std::string Describe(const Written& value) {
    return value.text.substr(0, 40) + " " + std::to_string(value.whole) + " " + std::to_string(value.real);
}

struct Case {
    Flavour flavour;
    Row row;
};

void PrintTo(const Case& shown, std::ostream* out) {
    *out << shown.row.effect;
}

std::vector<Case> AllCases(const Flavour& flavour) {
    std::vector<Case> cases;
    Rig rig(flavour);
    const std::set<std::string> features = WritableFeatures(rig);
    for (const Row& row : AllRows()) {
        if (features.count(Key(row.module, row.feature)) != 0)
            cases.push_back({flavour, row});
    }
    return cases;
}

std::vector<Case> AllCases() {
    std::vector<Case> all;
    for (const Flavour& flavour : flavours) {
        const std::vector<Case> cases = AllCases(flavour);
        all.insert(all.end(), cases.begin(), cases.end());
    }
    return all;
}

std::vector<Written> ValuesOf(const Row& row, const Flavour& flavour) {
    if (row.texts != nullptr)
        return WrittenTexts(row.texts());
    Rig rig(flavour);
    row.prepare(rig);
    return ValuesOf(rig.Node(row.module, row.feature));
}

class WritableFeature : public testing::TestWithParam<Case> {};

} // namespace

TEST_P(WritableFeature, HasItsEffect) {
    const Row& row = GetParam().row;
    const std::vector<Written> values = ValuesOf(row, GetParam().flavour);
    ASSERT_FALSE(values.empty());
    for (const Written& value : values) {
        SCOPED_TRACE(std::string(row.effect) + ": " + Describe(value));
        Rig rig(GetParam().flavour);
        row.prepare(rig);
        INode& node = rig.Node(row.module, row.feature);
        Write(node, value);
        if (row.see == nullptr)
            ExpectKept(node, value);
        else
            row.see(rig, value);
        if (HasFatalFailure())
            return;
    }
}

INSTANTIATE_TEST_SUITE_P(Of, WritableFeature, testing::ValuesIn(AllCases()), [](const auto& info) {
    return std::string(info.param.flavour.name) + moduleNames[static_cast<size_t>(info.param.row.module)] +
           info.param.row.feature;
});

namespace {

/// What a node map shows of one feature.
struct Shown {
    std::string value;
    std::string access;
    std::string limits;
};
using Snapshot = std::map<std::string, Shown>;

/// What changes by itself, or at every look.
bool IsVolatile(const INode& node) {
    return node.GetCachingMode() == GenApi::NoCache || node.GetPollingTime() > 0 ||
           node.GetName() == "DeviceTemperature"; // told by an event
}

std::string LimitsOf(INode& node) {
    if (auto* integer = dynamic_cast<GenApi::IInteger*>(&node))
        return std::to_string(integer->GetMin()) + " to " + std::to_string(integer->GetMax()) + " by " +
               std::to_string(integer->GetInc());
    if (auto* real = dynamic_cast<GenApi::IFloat*>(&node))
        return std::to_string(real->GetMin()) + " to " + std::to_string(real->GetMax());
    return "";
}

template <class Look>
std::string Tried(Look look) {
    try {
        return look();
    } catch (const GenICam::GenericException&) {
        return "a failure";
    }
}

Snapshot Look(Rig& rig, Module module) {
    Snapshot snapshot;
    for (INode* node : FeaturesOf(rig, module)) {
        Shown& shown = snapshot[node->GetName().c_str()];
        shown.access = std::to_string(node->GetAccessMode());
        if (!GenApi::IsReadable(node))
            continue;
        shown.limits = Tried([&] { return LimitsOf(*node); });
        auto* value = dynamic_cast<GenApi::IValue*>(node);
        if (!IsVolatile(*node) && value != nullptr)
            shown.value = Tried([&] { return std::string(value->ToString(false, false).c_str()); });
    }
    return snapshot;
}

/// Nothing is read behind these, or it takes ten seconds.
bool ShutsThePort(const std::string& feature) {
    return feature == "SimulationDeviceLost" || feature == "SimulationInterfaceLost" ||
           feature == "SimulationPortDelay";
}

bool WriteIfPossible(INode& node, size_t step) {
    if (!GenApi::IsWritable(&node) || node.GetPrincipalInterfaceType() == GenApi::intfICommand)
        return false;
    const std::vector<Written> values = ValuesOf(node);
    return Tried([&] {
               Write(node, values[step % values.size()]);
               return std::string();
           })
        .empty();
}

/// Gives what a selector selects another value at each of its own, and ends at one that is not the one given.
void TellApart(INode& selector, const std::vector<Written>& values, size_t avoided) {
    GenApi::FeatureList_t selected;
    dynamic_cast<GenApi::ISelector&>(selector).GetSelectedFeatures(selected);
    for (size_t i = 1; i <= values.size(); ++i) {
        Write(selector, values[(avoided + i) % values.size()]);
        for (GenApi::IValue* value : selected)
            WriteIfPossible(*value->GetNode(), i);
    }
    Write(selector, values[(avoided + 1) % values.size()]);
}

/// So that a set of settings is another than that which is loaded.
void ChangeWhatSetsKeep(Rig& rig) {
    size_t changed = 0;
    for (INode* node : FeaturesOf(rig, Module::Camera)) {
        const std::string name = node->GetName().c_str();
        if (name.find("Simulation") != 0 && name.find("Selector") == std::string::npos &&
            name != "TLParamsLocked" && name != "ChunkModeActive")
            changed += WriteIfPossible(*node, 1) ? 1 : 0;
    }
    EXPECT_GT(changed, 30U);
}

class CachedFeatures : public testing::TestWithParam<Flavour> {};

} // namespace

TEST_P(CachedFeatures, AreAsFreshAsTheDeviceAfterEveryWrite) {
    size_t compared = 0;
    for (const auto& [flavour, row] : AllCases(GetParam())) {
        SCOPED_TRACE(Key(row.module, row.feature));
        if (ShutsThePort(row.feature))
            continue;
        const std::vector<Written> values = ValuesOf(row, flavour);
        for (size_t i = 0; i < values.size(); ++i) {
            const Written& value = values[i];
            Rig rig(flavour);
            row.prepare(rig);
            INode& node = rig.Node(row.module, row.feature);
            if (std::string(row.feature) == "UserSetLoad")
                ChangeWhatSetsKeep(rig);
            if (const auto* selector = dynamic_cast<GenApi::ISelector*>(&node);
                selector != nullptr && selector->IsSelector())
                TellApart(node, values, i);
            rig.Map(row.module).InvalidateNodes();
            Look(rig, row.module); // now all is cached that can be
            Write(node, value);
            const Snapshot cached = Look(rig, row.module);
            rig.Map(row.module).InvalidateNodes();
            for (const auto& [name, fresh] : Look(rig, row.module)) {
                ++compared;
                EXPECT_EQ(cached.at(name).value, fresh.value) << name << " after " << Describe(value);
                EXPECT_EQ(cached.at(name).access, fresh.access) << name << " after " << Describe(value);
                EXPECT_EQ(cached.at(name).limits, fresh.limits) << name << " after " << Describe(value);
            }
        }
    }
    EXPECT_GT(compared, 10'000U);
}

INSTANTIATE_TEST_SUITE_P(Of, CachedFeatures, testing::ValuesIn(flavours),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(FeatureTable, HasARowForEveryWritableFeature) {
    std::set<std::string> rows, features;
    for (const Row& row : AllRows())
        EXPECT_TRUE(rows.insert(Key(row.module, row.feature)).second) << row.feature;
    for (const Flavour& flavour : flavours) {
        Rig rig(flavour);
        for (const std::string& feature : WritableFeatures(rig)) {
            EXPECT_EQ(rows.count(feature), 1U) << feature << " has no row";
            features.insert(feature);
        }
    }
    EXPECT_EQ(rows, features);
}

TEST(FeatureTable, NamesAnEffectUnlessThereIsNone) {
    for (const Row& row : AllRows())
        EXPECT_EQ(row.see == nullptr, row.seen == Seen::Own) << row.feature;
}

namespace {

/// A frame with all chunks, and each event once, all of them given to the camera's node map.
void FillChunksAndEvents(Rig& rig, Frame& frame) {
    GenApi::StringList_t names;
    rig.Listen(Module::Camera, GenTL::EVENT_REMOTE_DEVICE);
    rig.As<GenApi::IEnumeration>(Module::Camera, "EventSelector").GetSymbolics(names);
    for (const auto& name : names)
        rig.SwitchOn(name.c_str());
    const size_t events = names.size();
    rig.As<GenApi::IEnumeration>(Module::Camera, "ChunkSelector").GetSymbolics(names);
    for (const auto& name : names)
        rig.EnableChunk(name.c_str());
    rig.SmallAndFast();
    frame = rig.One();
    rig.Attach(frame);
    for (const char* command : {"TestEventGenerate", "SimulationErrorEvent"})
        rig.Do(command);
    const auto every = [&](const char* selector, const char* feature, const char* value) {
        GenApi::StringList_t selected;
        rig.As<GenApi::IEnumeration>(Module::Camera, selector).GetSymbolics(selected);
        for (const auto& name : selected) {
            rig.Set(selector, name.c_str());
            rig.Set(feature, value);
        }
    };
    every("CounterSelector", "CounterEventSource", "Line0");
    every("TimerSelector", "TimerTriggerSource", "Line0");
    rig.Pulse(0);
    std::set<std::string> seen;
    while (seen.size() < events) {
        const std::string id = rig.NextEvent();
        ASSERT_NE(id, "") << seen.size() << " of " << events;
        seen.insert(id);
    }
}

} // namespace

TEST(Features, AreAllRead) {
    for (const Flavour& flavour : flavours) {
        SCOPED_TRACE(flavour.name);
        Rig rig(flavour);
        rig.Do(Module::System, "InterfaceUpdateList");
        rig.Do(Module::Interface, "DeviceUpdateList");
        rig.Set(Module::System, "InterfaceSelector", 1); // the only one with addresses
        rig.Set(Module::Device, "EventNotification", "On");
        Frame frame;
        ASSERT_NO_FATAL_FAILURE(FillChunksAndEvents(rig, frame));
        rig.Set("AcquisitionMode", "SingleFrame"); // no other is written into the buffer that is read
        rig.Begin();
        ASSERT_TRUE(rig.Next());
        size_t read = 0;
        for (size_t module = 0; module < std::size(moduleNames); ++module) {
            for (INode* node : FeaturesOf(rig, static_cast<Module>(module))) {
                const std::string name = node->GetName().c_str();
                SCOPED_TRACE(std::string(moduleNames[module]) + "." + name);
                const bool told = module < 4 && name.find("Event") == 0 && name != "EventSelector" &&
                                  name != "EventNotification"; // by events that the rows of the table have
                if (told || node->GetPrincipalInterfaceType() == GenApi::intfICommand ||
                    (name == "ActionDeviceKey" && module == 5))
                    continue;
                ++read;
                EXPECT_TRUE(GenApi::IsReadable(node));
                EXPECT_NO_THROW(dynamic_cast<GenApi::IValue&>(*node).ToString(true, true));
            }
        }
        EXPECT_GT(read, 150U);
    }
}
