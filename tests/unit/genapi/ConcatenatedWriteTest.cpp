#include "Camera.h"

using namespace GenICam;
using namespace GenApi;

namespace {

struct Destroyer {
    void operator()(CNodeWriteConcatenator* values) const { values->Destroy(); }
};

const std::string kFeatures = IntReg("Width", 0) + Register("FloatReg", "Gain", 4, 4) +
                              Node("Boolean", "Flip", "<pValue>FlipReg</pValue>") + IntReg("FlipReg", 8) +
                              Node("Enumeration", "Mode",
                                   "<EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry><EnumEntry "
                                   "Name=\"On\"><Value>5</Value></EnumEntry>"
                                   "<pValue>ModeReg</pValue>") +
                              IntReg("ModeReg", 12) + Register("StringReg", "Text", 16, 4) +
                              IntReg("Fixed", 20, 4, "<AccessMode>RO</AccessMode>") +
                              Node("Category", "Root", "");

/// Commands that a device has for many values at once; each is done at once.
const std::string kStreaming =
    Node("Command", "DeviceRegistersStreamingStart", "<pValue>Start</pValue><CommandValue>1</CommandValue>") +
    Node("Command", "DeviceRegistersStreamingEnd", "<pValue>End</pValue><CommandValue>1</CommandValue>") +
    IntReg("Start", 100, 4, "<AccessMode>WO</AccessMode>") +
    IntReg("End", 104, 4, "<AccessMode>WO</AccessMode>") +
    Node("Boolean", "DeviceRegistersValid", "<pValue>Valid</pValue>") +
    IntReg("Valid", 108, 4, "<AccessMode>RO</AccessMode>");

class WritingCamera : public Camera {
public:
    explicit WritingCamera(const std::string& more = "")
        : Camera(kFeatures + more), values(map._Ptr->NewNodeWriteConcatenator()) {}

    bool Write(bool streaming = false) {
        return map._Ptr->ConcatenatedWrite(values.get(), streaming, &errors);
    }
    /// Where was written, in order.
    std::vector<int64_t> Addresses() {
        std::vector<int64_t> addresses;
        for (const auto& write : port.log)
            addresses.push_back(write.first);
        return addresses;
    }

    std::unique_ptr<CNodeWriteConcatenator, Destroyer> values;
    gcstring_vector errors;
};

using Addresses = std::vector<int64_t>;

} // namespace

TEST(ConcatenatedWrite, WritesAllKindsInOrder) {
    WritingCamera camera;
    camera.values->Add("Mode", "On");
    camera.values->Add("Width", 640);
    camera.values->Add("Gain", 1.5);
    camera.values->Add("Flip", int64_t{1});
    camera.values->Add("Text", "abc");
    EXPECT_TRUE(camera.Write());
    EXPECT_EQ(camera.errors.size(), 0u);
    EXPECT_EQ(camera.Addresses(), (Addresses{12, 0, 4, 8, 16}));
    EXPECT_EQ(camera.port.Bytes(0, 4), (std::vector<int>{0x80, 2, 0, 0}));
    EXPECT_EQ(camera.Float("Gain")->GetValue(), 1.5);
    EXPECT_EQ(camera.Enum("Mode")->GetIntValue(), 5);
    EXPECT_TRUE(camera.Bool("Flip")->GetValue());
    EXPECT_EQ(camera.String("Text")->GetValue(), "abc");
}

TEST(ConcatenatedWrite, NumbersAreCheckedLikeAnyValue) {
    WritingCamera camera(Node("Integer", "Small", "<pValue>Width</pValue><Max>10</Max>"));
    camera.values->Add("Small", 11);
    camera.values->Add("Mode", 4);
    camera.values->Add("Fixed", 1);
    EXPECT_FALSE(camera.Write());
    ASSERT_EQ(camera.errors.size(), 3u);
    EXPECT_EQ(camera.errors[0], "Small: Value 11 of 'Small' must be at most 10 (min 0, max 10, inc 1).");
    EXPECT_EQ(camera.errors[1], "Mode: Value 4 is no entry of 'Mode'.");
    EXPECT_EQ(camera.errors[2], "Fixed: Node 'Fixed' is not writable: its register is RO (access mode RO).");
    EXPECT_TRUE(camera.port.log.empty());
}

TEST(ConcatenatedWrite, AFailureKeepsNobodyFromTheNextValue) {
    WritingCamera camera;
    camera.values->Add("Nowhere", 1);
    camera.values->Add("Root", "x");
    camera.values->Add("Root", 1);
    camera.values->Add("Device", "x");
    camera.values->Add("Width", 7);
    EXPECT_FALSE(camera.Write());
    ASSERT_EQ(camera.errors.size(), 4u);
    EXPECT_EQ(camera.errors[0], "Nowhere: There is no node 'Nowhere'.");
    EXPECT_EQ(camera.errors[2],
              "Root: Node 'Root' is not writable: nodes of this kind never are (access mode RO).");
    EXPECT_EQ(camera.errors[3], "Device: Node 'Device' has no value.");
    EXPECT_EQ(camera.Int("Width")->GetValue(), 7);
}

TEST(ConcatenatedWrite, WithoutAListTheFirstFailureLeaves) {
    WritingCamera camera(kStreaming);
    camera.values->Add("Fixed", 1);
    camera.values->Add("Width", 7);
    EXPECT_THROW(camera.map._Ptr->ConcatenatedWrite(camera.values.get()), AccessException);
    EXPECT_EQ(camera.Addresses(), (Addresses{100, 104}));
}

TEST(ConcatenatedWrite, WithoutAListSuccessIsTold) {
    WritingCamera camera;
    camera.values->Add("Width", 7);
    EXPECT_TRUE(camera.map._Ptr->ConcatenatedWrite(camera.values.get()));
    EXPECT_EQ(camera.Int("Width")->GetValue(), 7);
}

TEST(ConcatenatedWrite, TheDeviceIsToldWhenValuesStream) {
    WritingCamera camera(kStreaming);
    camera.port.Put(108, {1});
    camera.values->Add("Width", 7);
    EXPECT_TRUE(camera.Write(true));
    EXPECT_EQ(camera.Addresses(), (Addresses{100, 0, 104}));
    camera.port.log.clear();
    camera.port.Put(108, {0});
    EXPECT_FALSE(camera.Write(true));
    ASSERT_EQ(camera.errors.size(), 1u);
    EXPECT_EQ(camera.errors[0],
              "DeviceRegistersValid: The device finds its registers inconsistent ('DeviceRegistersValid' is "
              "false).");
    camera.port.log.clear();
    EXPECT_TRUE(camera.Write(false));
    EXPECT_EQ(camera.Addresses(), (Addresses{0}));
}

TEST(ConcatenatedWrite, ADeviceThatCannotBeToldEndsNoStream) {
    WritingCamera camera(kStreaming);
    camera.port.Put(108, {1});
    camera.values->Add("Width", 7);
    camera.port.failure = true;
    EXPECT_FALSE(camera.Write(true));
    ASSERT_EQ(camera.errors.size(), 3u);
    EXPECT_EQ(camera.errors[0], "DeviceRegistersStreamingStart: no answer");
    EXPECT_EQ(camera.errors[1], "Width: no answer");
    EXPECT_EQ(camera.errors[2], "DeviceRegistersValid: no answer");
    EXPECT_EQ(camera.port.TakeWrites(), 2); // none for the end
}

TEST(ConcatenatedWrite, CallbacksRunOnceBehindTheLastValue) {
    WritingCamera camera;
    int* const changes = camera.Watch("Width");
    int writesAtCallback = 0;
    Register(camera.Node("Width"), [&](INode*) { writesAtCallback = camera.port.writes; });
    camera.values->Add("Width", 1);
    camera.values->Add("Width", 2);
    camera.values->Add("Gain", 1.0);
    EXPECT_TRUE(camera.Write());
    EXPECT_EQ(*changes, 1);
    EXPECT_EQ(writesAtCallback, 3);
}

TEST(ConcatenatedWrite, AListCanBeClearedAndNullIsRefused) {
    WritingCamera camera;
    camera.values->Add("Width", 1);
    camera.values->Clear();
    EXPECT_TRUE(camera.Write());
    EXPECT_TRUE(camera.port.log.empty());
    EXPECT_THROW(camera.map._Ptr->ConcatenatedWrite(nullptr), InvalidArgumentException);
}
