#include "Bytes.h"
#include "Camera.h"

#include <iterator>
#include <limits>
#include <sstream>

using namespace GenICam;
using namespace GenApi;

namespace {

struct FileRegisters {
    uint32_t file;
    uint32_t operation;
    uint32_t openMode;
    uint32_t length;
    int64_t offset;
    uint32_t execute;
    uint32_t status;
    uint32_t result;
    uint32_t size;
    char buffer[16];
};

constexpr int64_t kBase = 0x1000;
enum Operation : uint32_t { kOpen, kClose, kRead, kWrite, kDelete };
enum Status : uint32_t { kSuccess, kFailure };

/// A device with two files, UserSet and Locked, that moves up to 16 bytes at once. Locked can't be written.
class FileDevice final : public CTestPortStruct<FileRegisters> {
public:
    FileDevice() : CTestPortStruct<FileRegisters>(kBase) { Refresh(); }

    void Read(void* bytes, int64_t address, int64_t length) override {
        if (address == kBase + int64_t{offsetof(FileRegisters, execute)} && execute && --slow <= 0)
            execute = 0;
        CTestPortStruct<FileRegisters>::Read(bytes, address, length);
    }
    void Write(const void* bytes, int64_t address, int64_t length) override {
        CTestPortStruct<FileRegisters>::Write(bytes, address, length);
        if (address == kBase + int64_t{offsetof(FileRegisters, execute)} && execute)
            Perform();
        Refresh();
    }

    std::string files[2];
    bool isOpen[2] = {};
    int operations[5] = {};
    int slow = 0; ///< answers that a command takes to be done
    size_t room = std::numeric_limits<size_t>::max();

private:
    void Refresh() { size = static_cast<uint32_t>(files[file % 2].size()); }

    void Perform() {
        ++operations[operation % 5];
        result = 0;
        status = Act(files[file % 2], isOpen[file % 2]) ? kSuccess : kFailure;
        if (slow <= 0)
            execute = 0;
    }
    bool Act(std::string& content, bool& open) {
        const auto from = static_cast<size_t>(offset);
        switch (operation) {
        case kOpen:
            if (open || (file == 1 && openMode != 0))
                return false;
            return open = true;
        case kClose:
            return std::exchange(open, false);
        case kDelete:
            content.clear();
            return !open;
        case kRead:
            if (!open || from + length > content.size() || length > sizeof buffer)
                return false;
            result = static_cast<uint32_t>(content.copy(buffer, length, from));
            return true;
        default:
            if (!open || length > sizeof buffer)
                return false;
            result = static_cast<uint32_t>(std::min<size_t>(length, room - std::min(room, from)));
            content.resize(std::max(content.size(), from + result));
            content.replace(from, result, buffer, result);
            return true;
        }
    }
};

std::string At(const std::string& type, const std::string& name, size_t offset, int length,
               const std::string& more = "") {
    return Register(type, name, kBase + static_cast<int64_t>(offset), length, more);
}

std::string Choice(const std::string& name, size_t offset, const std::vector<std::string>& entries) {
    std::string inside;
    for (size_t i = 0; i < entries.size(); ++i)
        inside += Node("EnumEntry", entries[i], "<Value>" + std::to_string(i) + "</Value>");
    return Node("Enumeration", name, inside + "<pValue>" + name + "Reg</pValue>") +
           At("IntReg", name + "Reg", offset, 4);
}

std::string FileFeatures(const std::string& lengthMore = "<Min>0</Min><Max>16</Max>") {
    return Choice("FileSelector", offsetof(FileRegisters, file), {"UserSet", "Locked"}) +
           Choice("FileOperationSelector", offsetof(FileRegisters, operation),
                  {"Open", "Close", "Read", "Write", "Delete"}) +
           Choice("FileOpenMode", offsetof(FileRegisters, openMode), {"Read", "Write", "ReadWrite"}) +
           Choice("FileOperationStatus", offsetof(FileRegisters, status), {"Success", "Failure"}) +
           At("IntReg", "FileAccessOffset", offsetof(FileRegisters, offset), 8) +
           Node("Integer", "FileAccessLength", "<pValue>LengthReg</pValue>" + lengthMore) +
           At("IntReg", "LengthReg", offsetof(FileRegisters, length), 4) +
           At("Register", "FileAccessBuffer", offsetof(FileRegisters, buffer), 16) +
           Node("Command", "FileOperationExecute",
                "<pValue>ExecuteReg</pValue><CommandValue>1</CommandValue>") +
           At("IntReg", "ExecuteReg", offsetof(FileRegisters, execute), 4);
}

const std::string kAnswers = At("IntReg", "FileOperationResult", offsetof(FileRegisters, result), 4) +
                             At("IntReg", "FileSize", offsetof(FileRegisters, size), 4);

class FileCamera : public Camera {
public:
    explicit FileCamera(const std::string& nodes = FileFeatures() + kAnswers) : Camera(nodes, false) {
        map._Connect(&device);
    }
    INodeMap* Map() { return map._Ptr; }

    FileDevice device;
};

std::string Digits(size_t count) {
    std::string text;
    for (size_t i = 0; i < count; ++i)
        text += static_cast<char>('0' + i % 10);
    return text;
}

std::string ReadAll(std::istream& stream) {
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

} // namespace

TEST(DevFileStream, ReadsAFileOfSeveralBuffers) {
    FileCamera camera;
    for (const size_t size : {0, 1, 15, 16, 17, 32, 100}) {
        camera.device.files[0] = Digits(size);
        IDevFileStream file(camera.Map(), "UserSet");
        ASSERT_TRUE(file.is_open());
        EXPECT_EQ(ReadAll(file), Digits(size));
        file.close();
        EXPECT_FALSE(file.fail());
        EXPECT_FALSE(camera.device.isOpen[0]);
    }
}

TEST(DevFileStream, WritesAFileOfSeveralBuffers) {
    FileCamera camera;
    for (const size_t size : {0, 1, 15, 16, 17, 32, 100}) {
        camera.device.files[0].clear();
        ODevFileStream file;
        file.open(camera.Map(), "UserSet");
        file << Digits(size);
        file.close();
        EXPECT_FALSE(file.fail());
        EXPECT_FALSE(file.is_open());
        EXPECT_EQ(camera.device.files[0], Digits(size));
    }
    EXPECT_EQ(camera.device.operations[kWrite], 1 + 1 + 1 + 2 + 2 + 7);
}

TEST(DevFileStream, BytesOfAnyValuePass) {
    FileCamera camera;
    std::string all;
    for (int i = 0; i < 256; ++i)
        all += static_cast<char>(i);
    ODevFileStream(camera.Map(), "UserSet") << all;
    EXPECT_EQ(camera.device.files[0], all);
    IDevFileStream file(camera.Map(), "UserSet");
    EXPECT_EQ(ReadAll(file), all);
}

TEST(DevFileStream, SeeksAndTells) {
    FileCamera camera;
    camera.device.files[0] = Digits(40);
    IDevFileStream in(camera.Map(), "UserSet");
    in.seekg(25);
    EXPECT_EQ(in.get(), '5');
    EXPECT_EQ(in.tellg(), 26);
    in.seekg(-3, std::ios_base::end);
    EXPECT_EQ(ReadAll(in), "789");
    in.clear();
    in.seekg(-2, std::ios_base::beg);
    EXPECT_TRUE(in.fail());
    in.close();
    ODevFileStream out(camera.Map(), "UserSet");
    out.seekp(2);
    out << "xy";
    EXPECT_EQ(out.tellp(), 4);
    out.close();
    EXPECT_EQ(camera.device.files[0], "01xy" + Digits(40).substr(4));
}

TEST(DevFileStream, AppendingStartsAtTheEnd) {
    FileCamera camera;
    camera.device.files[0] = "abc";
    ODevFileStream(camera.Map(), "UserSet", std::ios_base::app) << "def";
    EXPECT_EQ(camera.device.files[0], "abcdef");
}

TEST(DevFileStream, FlushingBringsTheBytesToTheDevice) {
    FileCamera camera;
    ODevFileStream file(camera.Map(), "UserSet");
    file << "ab";
    EXPECT_EQ(camera.device.files[0], "");
    file << std::flush;
    EXPECT_EQ(camera.device.files[0], "ab");
    file << "c";
    file.close();
    EXPECT_EQ(camera.device.files[0], "abc");
}

TEST(DevFileStream, RefusalsShowInTheState) {
    FileCamera camera;
    IDevFileStream in(camera.Map(), "Nowhere");
    EXPECT_TRUE(in.fail());
    EXPECT_FALSE(in.is_open());
    ODevFileStream out(camera.Map(), "Locked");
    EXPECT_TRUE(out.fail());
    EXPECT_FALSE(out.is_open());
    in.open(camera.Map(), "Locked");
    EXPECT_TRUE(in.good());
    in.open(camera.Map(), "UserSet"); // it is open already
    EXPECT_TRUE(in.fail());
    EXPECT_TRUE(in.is_open());
    EXPECT_THROW(out.open(nullptr, "UserSet"), InvalidArgumentException);
    EXPECT_THROW(out.open(camera.Map(), nullptr), InvalidArgumentException);
    Camera without(IntReg("Width", 0));
    out.open(without.map._Ptr, "UserSet");
    EXPECT_TRUE(out.fail());
}

TEST(DevFileStream, ADeviceThatIsFullFailsTheStream) {
    FileCamera camera;
    camera.device.room = 20;
    ODevFileStream file(camera.Map(), "UserSet");
    file << Digits(40);
    file.close();
    EXPECT_TRUE(file.fail());
    EXPECT_EQ(camera.device.files[0], Digits(20));
}

TEST(DevFileStream, ALostDeviceIsABadStream) {
    FileCamera camera;
    camera.device.files[0] = Digits(40);
    IDevFileStream file(camera.Map(), "UserSet");
    EXPECT_EQ(file.get(), '0');
    camera.device.isOpen[0] = false; // the device closes it by itself
    char rest[40];
    file.read(rest, 39);
    EXPECT_TRUE(file.bad());
    file.clear();
    file.close();
    EXPECT_TRUE(file.fail());
}

TEST(FileProtocolAdapter, TellsWhyADeviceRefuses) {
    FileCamera camera;
    FileProtocolAdapter adapter;
    EXPECT_EQ(Failure<LogicalErrorException>([&] { adapter.closeFile("UserSet"); }),
              "No node map with file access is attached.");
    EXPECT_TRUE(adapter.attach(camera.Map()));
    EXPECT_EQ(Failure<RuntimeException>([&] { adapter.openFile("Locked", std::ios_base::out); }),
              "Open of file 'Locked' failed: the device says 'Failure'.");
    EXPECT_EQ(Failure<InvalidArgumentException>([&] { adapter.openFile("x", std::ios_base::in); }),
              "The device has no file 'x'.");
    EXPECT_THROW(adapter.openFile(nullptr, std::ios_base::in), InvalidArgumentException);
    EXPECT_THROW(adapter.attach(nullptr), InvalidArgumentException);
    Camera without(IntReg("Width", 0));
    EXPECT_FALSE(adapter.attach(without.map._Ptr));
    EXPECT_THROW(adapter.closeFile("UserSet"), LogicalErrorException);
}

TEST(FileProtocolAdapter, OpensForReadingAndWritingAndDeletes) {
    FileCamera camera;
    FileProtocolAdapter adapter;
    adapter.attach(camera.Map());
    adapter.openFile("UserSet", std::ios_base::in | std::ios_base::out);
    EXPECT_EQ(camera.device.openMode, 2u);
    EXPECT_EQ(adapter.write("hello", 3, 5, "UserSet"), 5);
    char text[10] = {};
    EXPECT_EQ(adapter.read(text, 3, 9, "UserSet"), 5);
    EXPECT_STREQ(text, "hello");
    EXPECT_EQ(adapter.read(text, 9, 1, "UserSet"), 0);
    EXPECT_EQ(adapter.getFileSize("UserSet"), 8);
    EXPECT_EQ(adapter.getBufSize("UserSet", std::ios_base::in), 16);
    EXPECT_THROW(adapter.deleteFile("UserSet"), RuntimeException);
    adapter.closeFile("UserSet");
    adapter.deleteFile("UserSet");
    EXPECT_EQ(camera.device.files[0], "");
}

TEST(FileProtocolAdapter, WaitsUntilTheDeviceIsDone) {
    FileCamera camera;
    camera.device.slow = 3;
    FileProtocolAdapter adapter;
    adapter.attach(camera.Map());
    adapter.openFile("UserSet", std::ios_base::in);
    EXPECT_LE(camera.device.slow, 0);
    EXPECT_EQ(camera.device.execute, 0u);
}

TEST(FileProtocolAdapter, WorksWithoutResultAndSize) {
    FileCamera camera(FileFeatures());
    camera.device.files[0] = Digits(32);
    FileProtocolAdapter adapter;
    ASSERT_TRUE(adapter.attach(camera.Map()));
    EXPECT_EQ(adapter.getFileSize("UserSet"), -1);
    adapter.openFile("UserSet", std::ios_base::in);
    char text[33] = {};
    EXPECT_EQ(adapter.read(text, 0, 32, "UserSet"), 32);
    EXPECT_EQ(text, Digits(32));
    EXPECT_THROW(adapter.read(text, 32, 1, "UserSet"), RuntimeException);
}

TEST(FileProtocolAdapter, ALengthWithoutLimitIsBoundedByTheBuffer) {
    FileCamera camera(FileFeatures("") + kAnswers);
    camera.device.files[0] = Digits(50);
    IDevFileStream file(camera.Map(), "UserSet");
    EXPECT_EQ(ReadAll(file), Digits(50));
    EXPECT_EQ(camera.device.operations[kRead], 4);
}

TEST(TestPortStruct, IsARegisterSpaceFromItsBaseOn) {
    CTestPortStruct<FileRegisters> port(kBase);
    const CTestPortStruct<FileRegisters>& fresh = port;
    EXPECT_EQ(fresh.size, 0u);
    EXPECT_EQ(port.GetAccessMode(), RW);
    const uint8_t bytes[] = {0x78, 0x56, 0x34, 0x12};
    port.Write(bytes, kBase + 4, 4);
    EXPECT_EQ(port.operation, 0x12345678u);
    uint8_t back[8] = {};
    port.Read(back, kBase, 8);
    EXPECT_EQ(back[4], 0x78);
    const auto end = kBase + int64_t{sizeof(FileRegisters)};
    port.Read(back, end - 8, 8);
    EXPECT_THROW(port.Read(back, end - 7, 8), OutOfRangeException);
    EXPECT_THROW(port.Read(back, kBase - 1, 1), OutOfRangeException);
    EXPECT_THROW(port.Write(back, INT64_MAX, 8), OutOfRangeException);
    volatile int64_t negative = -1; // the compiler would warn of what it sees
    EXPECT_THROW(port.Write(back, kBase, negative), OutOfRangeException);
}

TEST(DevFileStream, WhatIsNotOpenGivesAndTakesNothing) {
    IDevFileStream in;
    EXPECT_EQ(in.rdbuf()->sgetc(), std::char_traits<char>::eof());
    EXPECT_EQ(in.rdbuf()->pubseekoff(0, std::ios_base::cur), std::streambuf::pos_type(-1));
    in.close();
    EXPECT_TRUE(in.fail());
    ODevFileStream out;
    EXPECT_EQ(out.rdbuf()->sputc('x'), std::char_traits<char>::eof());
    EXPECT_EQ(out.rdbuf()->pubsync(), 0);
    out.close();
    EXPECT_TRUE(out.fail());
}

TEST(DevFileStream, EachDirectionRefusesTheOther) {
    FileCamera camera;
    camera.device.files[0] = Digits(5);
    {
        IDevFileStream in(camera.Map(), "UserSet");
        EXPECT_EQ(in.rdbuf()->sputc('x'), std::char_traits<char>::eof());
    }
    ODevFileStream out(camera.Map(), "UserSet");
    EXPECT_EQ(out.rdbuf()->sgetc(), std::char_traits<char>::eof());
}

TEST(DevFileStream, OverflowWithoutACharacterOnlyMakesRoom) {
    FileCamera camera;
    ODevFileStream file(camera.Map(), "UserSet");
    struct Opened : std::streambuf {
        using std::streambuf::overflow;
    };
    file << "ab";
    auto* const buffer = file.rdbuf();
    EXPECT_NE((buffer->*&Opened::overflow)(std::char_traits<char>::eof()), std::char_traits<char>::eof());
    EXPECT_EQ(camera.device.files[0], "ab");
}

TEST(DevFileStream, SeeksFromWhereItStands) {
    FileCamera camera;
    camera.device.files[0] = Digits(40);
    IDevFileStream in(camera.Map(), "UserSet");
    in.seekg(5);
    in.seekg(10, std::ios_base::cur);
    EXPECT_EQ(in.get(), '5');
    EXPECT_EQ(in.rdbuf()->pubseekoff(INT64_MAX, std::ios_base::cur), std::streambuf::pos_type(-1));
    FileCamera noSize(FileFeatures());
    IDevFileStream blind(noSize.Map(), "UserSet");
    EXPECT_EQ(blind.rdbuf()->pubseekoff(0, std::ios_base::end), std::streambuf::pos_type(-1));
}

TEST(DevFileStream, BytesThatTheDeviceRefusesFailSeekingAndFlushing) {
    FileCamera camera;
    camera.device.room = 1;
    ODevFileStream file(camera.Map(), "UserSet");
    file << "abc";
    EXPECT_EQ(file.rdbuf()->pubseekoff(0, std::ios_base::beg), std::streambuf::pos_type(-1));
    file << "def" << std::flush;
    EXPECT_TRUE(file.bad());
    camera.device.room = 100;
    file.clear();
    camera.device.room = 0;
    file << Digits(40);
    EXPECT_TRUE(file.bad());
}

TEST(DevFileStream, AFileWithoutBufferOrEndIsNotOpened) {
    FileCamera noBuffer(FileFeatures("<Min>0</Min><Max>0</Max>") + kAnswers);
    IDevFileStream in(noBuffer.Map(), "UserSet");
    EXPECT_TRUE(in.fail());
    EXPECT_FALSE(noBuffer.device.isOpen[0]);
    FileCamera noSize(FileFeatures());
    ODevFileStream out(noSize.Map(), "UserSet", std::ios_base::ate);
    EXPECT_TRUE(out.fail());
    EXPECT_FALSE(noSize.device.isOpen[0]);
}

TEST(DevFileStream, AFileThatCannotBeClosedFailsTheStream) {
    FileCamera camera;
    ODevFileStream file(camera.Map(), "UserSet");
    camera.device.isOpen[0] = false;
    file.close();
    EXPECT_TRUE(file.fail());
}

TEST(FileProtocolAdapter, EveryFeatureIsNeeded) {
    const std::string all = FileFeatures();
    for (const std::string name :
         {"FileSelector", "FileOperationSelector", "FileOpenMode", "FileAccessBuffer", "FileAccessOffset",
          "FileAccessLength", "FileOperationExecute", "FileOperationStatus"}) {
        std::string less = all;
        less.replace(less.find("\"" + name + "\""), name.size() + 2, "\"Other\"");
        FileCamera camera(less);
        EXPECT_FALSE(FileProtocolAdapter().attach(camera.Map())) << name;
    }
}

TEST(FileProtocolAdapter, ABufferShorterThanTheAccessBoundsIt) {
    const auto buffer = At("Register", "FileAccessBuffer", offsetof(FileRegisters, buffer), 16);
    std::string features = FileFeatures("<Min>0</Min><Max>16</Max>");
    features.replace(features.find(buffer), buffer.size(),
                     At("Register", "FileAccessBuffer", offsetof(FileRegisters, buffer), 6));
    FileCamera camera(features + kAnswers);
    camera.device.files[0] = Digits(20);
    FileProtocolAdapter adapter;
    ASSERT_TRUE(adapter.attach(camera.Map()));
    adapter.openFile("UserSet", std::ios_base::in);
    char text[21] = {};
    EXPECT_EQ(adapter.read(text, 0, 20, "UserSet"), 20);
    EXPECT_EQ(text, Digits(20));
    EXPECT_EQ(camera.device.operations[kRead], 4);
}

TEST(FileProtocolAdapter, ADeviceThatMovesNothingEndsTheRead) {
    FileCamera camera(FileFeatures() + At("IntReg", "FileSize", offsetof(FileRegisters, size), 4) +
                      Node("Integer", "FileOperationResult", "<Value>0</Value>"));
    camera.device.files[0] = Digits(20);
    FileProtocolAdapter adapter;
    ASSERT_TRUE(adapter.attach(camera.Map()));
    adapter.openFile("UserSet", std::ios_base::in | std::ios_base::out);
    char text[21] = {};
    EXPECT_EQ(adapter.read(text, 0, 20, "UserSet"), 0);
    EXPECT_EQ(adapter.write(text, 0, 20, "UserSet"), 0);
}
