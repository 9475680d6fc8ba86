// What a camera keeps: its name, sets of settings, files, the time that was latched.

#include "Row.h"

using namespace GenTL;

namespace {

std::string UserDefinedName(Rig& rig) {
    char name[256] = "";
    size_t size = sizeof name;
    INFO_DATATYPE type = 0;
    EXPECT_EQ(rig.gentl.IFGetDeviceInfo(rig.interface, rig.flavour.deviceId, DEVICE_INFO_USER_DEFINED_NAME,
                                        &type, name, &size),
              GC_ERR_SUCCESS);
    return name;
}

bool Operate(Rig& rig, const char* operation) {
    rig.Set("FileOperationSelector", operation);
    rig.Do("FileOperationExecute");
    return rig.Text("FileOperationStatus") == "Success";
}

/// The file has ten bytes, "0123456789", and is open for everything.
void OpenFile(Rig& rig) {
    std::string bytes(4096, 'x');
    bytes.replace(0, 10, "0123456789");
    rig.Set("FileOpenMode", "ReadWrite");
    ASSERT_TRUE(Operate(rig, "Open"));
    rig.SetBytes("FileAccessBuffer", bytes);
    rig.Set("FileAccessLength", 10);
    ASSERT_TRUE(Operate(rig, "Write"));
}

/// Heights of 16 and 24 in the two sets of the user.
void FillSets(Rig& rig) {
    for (int64_t set : {1, 2}) {
        rig.Set("Height", 8 + 8 * set);
        rig.Set("UserSetSelector", set);
        rig.Do("UserSetSave");
    }
    rig.Set("Height", 100);
}

int64_t HeightIn(int64_t set) {
    return set == 0 ? 480 : 8 + 8 * set;
}

void SeeOpenMode(Rig& rig, const Written& v) {
    ASSERT_TRUE(Operate(rig, "Open"));
    rig.Set("FileAccessLength", 1);
    EXPECT_EQ(Operate(rig, "Write"), v.text != "Read");
    EXPECT_EQ(Operate(rig, "Read"), v.text != "Write");
}

void SeeBuffer(Rig& rig, const Written& v) {
    rig.Set("FileAccessLength", 4096);
    ASSERT_TRUE(Operate(rig, "Write"));
    rig.SetBytes("FileAccessBuffer", std::string(4096, 'z'));
    ASSERT_TRUE(Operate(rig, "Read"));
    EXPECT_EQ(rig.Bytes("FileAccessBuffer"), v.text);
}

} // namespace

Rows KeepingRows() {
    return {
        {Module::Camera, "DeviceUserID", Seen::Register, "the name that the device is found by", Nothing,
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(UserDefinedName(rig), v.text);
             EXPECT_EQ(rig.Text(Module::Device, "DeviceUserID"), v.text);
         }},
        {Module::Camera, "TimestampLatch", Seen::Register, "TimestampLatchValue is the time", Nothing,
         [](Rig& rig, const Written&) {
             const int64_t first = rig.Get("TimestampLatchValue");
             rig.Do("TimestampLatch");
             EXPECT_GT(first, 0);
             EXPECT_GT(rig.Get("TimestampLatchValue"), first);
         }},
        {Module::Camera, "UserSetSelector", Seen::Register, "the set that is loaded", FillSets,
         [](Rig& rig, const Written& v) {
             rig.Do("UserSetLoad");
             EXPECT_EQ(rig.Get("Height"), HeightIn(v.whole));
         }},
        {Module::Camera, "UserSetLoad", Seen::Image, "settings are those of the set",
         [](Rig& rig) {
             FillSets(rig);
             rig.Set("UserSetSelector", "UserSet0");
         },
         [](Rig& rig, const Written&) { EXPECT_EQ(rig.One().height, 16U); }},
        {Module::Camera, "UserSetSave", Seen::Register, "the set has the settings",
         [](Rig& rig) {
             rig.Set("Height", 40);
             rig.Set("UserSetSelector", "UserSet1");
         },
         [](Rig& rig, const Written&) {
             rig.Set("Height", 48);
             rig.Do("UserSetLoad");
             EXPECT_EQ(rig.Get("Height"), 40);
         }},
        {Module::Camera, "UserSetDefault", Seen::Register, "settings after the next opening", FillSets,
         [](Rig& rig, const Written& v) {
             ASSERT_EQ(rig.Reopen(), GC_ERR_SUCCESS);
             EXPECT_EQ(rig.Get("Height"), HeightIn(v.whole));
         }},
        {Module::Camera, "FileSelector", Seen::Register, "FileSize is that of the file", Nothing,
         [](Rig& rig, const Written& v) { EXPECT_EQ(rig.Get("FileSize") > 0, v.text == "Information"); }},
        {Module::Camera, "FileOperationSelector", Seen::Register, "what is done with the file", Nothing,
         [](Rig& rig, const Written& v) {
             rig.Do("FileOperationExecute");
             const bool done = v.text == "Open" || v.text == "Delete"; // of a file that is not open
             EXPECT_EQ(rig.Text("FileOperationStatus") == "Success", done);
         }},
        {Module::Camera, "FileOperationExecute", Seen::Register, "it is done",
         [](Rig& rig) { rig.Set("FileOperationSelector", "Open"); },
         [](Rig& rig, const Written&) {
             EXPECT_EQ(rig.Text("FileOperationStatus"), "Success");
             EXPECT_FALSE(Operate(rig, "Open")) << "it is open now";
         }},
        {Module::Camera, "FileOpenMode", Seen::Register, "what is possible with the open file", Nothing,
         SeeOpenMode},
        {Module::Camera, "FileAccessBuffer", Seen::Register, "what is in the file", OpenFile, SeeBuffer},
        {Module::Camera, "FileAccessOffset", Seen::Register, "the byte of the file that is read first",
         OpenFile,
         [](Rig& rig, const Written& v) {
             EXPECT_EQ(Operate(rig, "Read"), v.whole <= 10);
             EXPECT_EQ(rig.Get("FileOperationResult"), v.whole <= 10 ? 10 - v.whole : 0);
             if (v.whole <= 10) {
                 EXPECT_EQ(rig.Bytes("FileAccessBuffer")[0], '0' + v.whole);
             }
         }},
        {Module::Camera, "FileAccessLength", Seen::Register, "how many bytes are written", OpenFile,
         [](Rig& rig, const Written& v) {
             EXPECT_TRUE(Operate(rig, "Write"));
             EXPECT_EQ(rig.Get("FileOperationResult"), v.whole);
             EXPECT_EQ(rig.Get("FileSize"), std::max<int64_t>(v.whole, 10));
         }},
    };
}
