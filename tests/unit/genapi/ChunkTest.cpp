#include "Bytes.h"
#include "Camera.h"

#include <algorithm>
#include <atomic>
#include <thread>

using namespace GenICam;
using namespace GenApi;

namespace {

std::string ChunkPort(const std::string& name, const std::string& id, const std::string& more = "") {
    return Node("Port", name, "<ChunkID>" + id + "</ChunkID>" + more);
}

/// A register behind a chunk port.
std::string ChunkReg(const std::string& name, const std::string& port, const std::string& address,
                     const std::string& length, const std::string& more = "<Endianess>BigEndian</Endianess>",
                     const std::string& type = "IntReg") {
    return Node(type, name,
                "<Address>" + address + "</Address>" + length + "<AccessMode>RW</AccessMode><pPort>" + port +
                    "</pPort>" + more);
}

const std::string kFour = "<Length>4</Length>";
const std::string kEight = "<Length>8</Length>";

/// Two chunks: 1 is the picture, 1001 a number.
const std::string kTwoPorts = ChunkPort("Picture", "00000001") + ChunkPort("Number", "1001") +
                              ChunkReg("First", "Picture", "0", kFour) +
                              ChunkReg("Value", "Number", "0", kEight);
const char* const kGevTwo = "0102030405060708000000010000000811223344556677880000100100000008";
const char* const kU3vTwo = "0102030405060708010000000800000011223344556677880110000008000000";

/// A camera whose chunks come from a buffer of its own.
template <class Adapter>
class ChunkCamera : public Camera {
public:
    explicit ChunkCamera(const std::string& nodes, int64_t maxCache = -1)
        : Camera(nodes, false), adapter(map._Ptr, maxCache) {}

    /// "ports/chunks/attached", or the refusal.
    std::string Attach(const std::string& hex) {
        buffer = FromHex(hex);
        const size_t size = buffer.size();
        buffer.resize(std::max<size_t>(1, size)); // an empty row has no address
        buffer.shrink_to_fit();
        AttachStatistics_t statistics = {9, 9, 9};
        std::string refusal;
        try {
            adapter.AttachBuffer(buffer.data(), static_cast<int64_t>(size), &statistics);
        } catch (const RuntimeException& failure) {
            refusal = " " + std::string(failure.GetDescription());
        }
        return std::to_string(statistics.NumChunkPorts) + "/" + std::to_string(statistics.NumChunks) + "/" +
               std::to_string(statistics.NumAttachedChunks) + refusal;
    }
    /// The value in hexadecimal, or "NA".
    std::string Read(const std::string& name) {
        if (!IsReadable(Node(name)))
            return "NA";
        char text[20];
        std::snprintf(text, sizeof text, "%llx", static_cast<long long>(Int(name)->GetValue()));
        return text;
    }

    ByteRow buffer;
    Adapter adapter;
};

using GevCamera = ChunkCamera<CChunkAdapterGEV>;
using U3vCamera = ChunkCamera<CChunkAdapterU3V>;

struct Row {
    const char* name;
    bool isGev;
    const char* bytes;
    const char* outcome;
    const char* value; ///< of chunk 1001
};

constexpr const char* kNoRow = "0/0/0 The buffer holds no row of chunks: ";

const Row kRows[] = {
    {"two chunks", true, kGevTwo, "2/2/2", "1122334455667788"},
    {"two chunks", false, kU3vTwo, "2/2/2", "1122334455667788"},
    {"the other byte order", false, kGevTwo, "a chunk of 134217728 bytes can't end at 24.", "NA"},
    {"four zeros behind", true, "010203040506070800000001000000081122334455667788000010010000000800000000",
     "the chunk that ends at 36 is empty.", "NA"},
    {"eight zeros behind", true,
     "01020304050607080000000100000008112233445566778800001001000000080000000000000000",
     "the chunk that ends at 40 is empty.", "NA"},
    {"four bytes in front", true, "eeeeeeee0102030405060708000000010000000811223344556677880000100100000008",
     "4 bytes are too few for a chunk.", "NA"},
    {"a length that is too big", true, "0102030405060708000000010000000811223344556677880000100100000040",
     "a chunk of 64 bytes can't end at 24.", "NA"},
    {"a length that wraps", true, "01020304050607080000000100000008112233445566778800001001fffffffc",
     "a chunk of 4294967292 bytes can't end at 24.", "NA"},
    {"an empty chunk", true, "010203040506070800000001000000080000100100000000",
     "the chunk that ends at 24 is empty.", "NA"},
    {"too short", true, "00000000000000", "7 bytes are too few for a chunk.", "NA"},
    {"an unaligned chunk", true, "0102030405060708000000010000000868656c6c6f0000100200000005", "2/2/1", "NA"},
    {"the same ID twice", true,
     "010203040506070800000001000000081122334455667788000010010000000888776655443322110000100100000008",
     "2/3/2", "8877665544332211"},
};

bool IsGood(const Row& row) {
    return row.outcome[1] == '/';
}

template <class Adapter>
void CheckRow(const Row& row) {
    SCOPED_TRACE(row.name);
    ChunkCamera<Adapter> camera(kTwoPorts);
    EXPECT_EQ(camera.Attach(row.bytes), IsGood(row) ? row.outcome : std::string(kNoRow) + row.outcome);
    EXPECT_EQ(camera.Read("Value"), row.value);
    EXPECT_EQ(camera.Read("First"), IsGood(row) ? "1020304" : "NA");
    EXPECT_EQ(
        camera.adapter.CheckBufferLayout(camera.buffer.data(), static_cast<int64_t>(camera.buffer.size())),
        IsGood(row));
}

} // namespace

TEST(ChunkAdapter, BuffersAreTakenOrRefusedWhole) {
    for (const Row& row : kRows)
        row.isGev ? CheckRow<CChunkAdapterGEV>(row) : CheckRow<CChunkAdapterU3V>(row);
}

TEST(ChunkAdapter, ARefusedBufferLeavesNothingAttached) {
    GevCamera camera(kTwoPorts);
    camera.Attach(kGevTwo);
    EXPECT_EQ(camera.Read("Value"), "1122334455667788");
    camera.Attach("01020304050607080000000100000008112233445566778800001001fffffffc");
    EXPECT_EQ(camera.Read("Value"), "NA");
    EXPECT_EQ(camera.Read("First"), "NA");
    EXPECT_EQ(camera.Attach(kGevTwo), "2/2/2");
    EXPECT_EQ(camera.Read("Value"), "1122334455667788");
}

TEST(ChunkAdapter, NullIsRefusedAndAttachesNothing) {
    GevCamera camera(kTwoPorts);
    camera.Attach(kGevTwo);
    EXPECT_THROW(camera.adapter.AttachBuffer(nullptr, 32), InvalidArgumentException);
    EXPECT_EQ(camera.Read("Value"), "NA");
    EXPECT_THROW(camera.adapter.AttachBuffer(camera.buffer.data(), -1), InvalidArgumentException);
    EXPECT_FALSE(camera.adapter.CheckBufferLayout(nullptr, 32));
    EXPECT_FALSE(camera.adapter.CheckBufferLayout(camera.buffer.data(), -1));
    EXPECT_THROW(camera.adapter.AttachNodeMap(nullptr), InvalidArgumentException);
}

TEST(ChunkAdapter, WithoutAMapOnlyTheLayoutIsChecked) {
    ByteRow buffer = FromHex(kGevTwo);
    CChunkAdapterGEV adapter;
    AttachStatistics_t statistics;
    adapter.AttachBuffer(buffer.data(), 32, &statistics);
    EXPECT_EQ(statistics.NumChunkPorts, 0);
    EXPECT_EQ(statistics.NumChunks, 2);
    EXPECT_EQ(statistics.NumAttachedChunks, 0);
    EXPECT_THROW(adapter.AttachBuffer(buffer.data(), 31), RuntimeException);
}

TEST(ChunkAdapter, TooManyChunksAreRefused) {
    GevCamera camera(kTwoPorts);
    std::string many;
    for (int i = 0; i < 65536; ++i)
        many += "aa0000100100000001";
    EXPECT_EQ(camera.Attach(many), "2/65536/1");
    EXPECT_EQ(camera.Attach("aa0000100100000001" + many),
              kNoRow + std::string("there are more than 65536 chunks."));
}

TEST(ChunkAdapter, EveryPortWithTheIdIsAttached) {
    GevCamera camera(kTwoPorts + ChunkPort("Again", "00001001") + ChunkPort("Never", "112233445566778899aa") +
                     ChunkReg("Low", "Again", "4", kFour) + ChunkReg("None", "Never", "0", kFour));
    EXPECT_EQ(camera.Attach(kGevTwo), "4/2/2");
    EXPECT_EQ(camera.Read("Low"), "55667788");
    EXPECT_EQ(camera.Read("Value"), "1122334455667788");
    EXPECT_EQ(camera.Read("None"), "NA");
}

TEST(ChunkAdapter, TheNextBufferOfTheSameLayoutIsReadFresh) {
    GevCamera camera(kTwoPorts + Node("Integer", "Feature", "<pValue>Value</pValue>"));
    camera.Attach(kGevTwo);
    EXPECT_EQ(camera.Read("Feature"), "1122334455667788");
    int* const changes = camera.Watch("Feature");
    EXPECT_EQ(camera.Attach("0102030405060708000000010000000811223344556677990000100100000008"), "2/2/2");
    EXPECT_EQ(*changes, 1);
    EXPECT_EQ(camera.Read("Feature"), "1122334455667799");
}

TEST(ChunkAdapter, AnotherLayoutIsMatchedAnew) {
    GevCamera camera(kTwoPorts);
    camera.Attach(kGevTwo);
    EXPECT_EQ(camera.Attach("0102030405060708000000010000000a" // another ID and length
                            "11223344556677880000100100000008"),
              kNoRow + std::string("a chunk of 10 bytes can't end at 8."));
    EXPECT_EQ(camera.Attach("99887766554433220000100100000008"), "2/1/1");
    EXPECT_EQ(camera.Read("Value"), "9988776655443322");
    EXPECT_EQ(camera.Read("First"), "NA");
}

TEST(ChunkAdapter, ModesComeFromTheAttachedBufferToo) {
    GevCamera camera(kTwoPorts +
                     Node("Integer", "Feature", "<pValue>Value</pValue><pIsAvailable>First</pIsAvailable>"));
    camera.Attach(kGevTwo);
    EXPECT_EQ(camera.Mode("Feature"), RO);
    camera.Attach("0000000005060708000000010000000811223344556677880000100100000008");
    EXPECT_EQ(camera.Mode("Feature"), NA);
    camera.Attach(kGevTwo);
    EXPECT_EQ(camera.Mode("Feature"), RO);
}

TEST(ChunkAdapter, DetachingMakesChunksUnavailable) {
    GevCamera camera(kTwoPorts);
    camera.Attach(kGevTwo);
    EXPECT_EQ(camera.Read("Value"), "1122334455667788");
    int* const changes = camera.Watch("Value");
    camera.adapter.DetachBuffer();
    EXPECT_EQ(camera.Read("Value"), "NA");
    EXPECT_EQ(*changes, 1);
    camera.adapter.DetachBuffer();
    EXPECT_EQ(*changes, 1);
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("Value")->GetValue(); }),
              "Node 'Value' is not readable: no attached buffer has the chunk of 'Number' (access mode NA).");
}

TEST(ChunkAdapter, LeavingTheMapDetachesTheBuffer) {
    GevCamera camera(kTwoPorts);
    camera.Attach(kGevTwo);
    camera.adapter.DetachNodeMap();
    EXPECT_EQ(camera.Read("Value"), "NA");
    {
        CChunkAdapterGEV other(camera.map._Ptr);
        other.AttachBuffer(camera.buffer.data(), 32);
        EXPECT_EQ(camera.Read("Value"), "1122334455667788");
    }
    EXPECT_EQ(camera.Read("Value"), "NA");
}

TEST(ChunkAdapter, UpdatingMovesTheLayoutToAnotherBuffer) {
    GevCamera camera(kTwoPorts);
    ByteRow other = FromHex("0102030405060708000000010000000800000000000000070000100100000008");
    EXPECT_THROW(camera.adapter.UpdateBuffer(other.data()), LogicalErrorException);
    camera.Attach(kGevTwo);
    EXPECT_EQ(camera.Read("Value"), "1122334455667788");
    camera.adapter.UpdateBuffer(other.data());
    EXPECT_EQ(camera.Read("Value"), "7");
    camera.adapter.DetachBuffer();
    camera.adapter.UpdateBuffer(other.data());
    EXPECT_EQ(camera.Read("Value"), "7");
    EXPECT_THROW(camera.adapter.UpdateBuffer(nullptr), InvalidArgumentException);
}

TEST(ChunkPorts, RegistersReadOnlyInsideTheirChunk) {
    GevCamera camera(kTwoPorts + ChunkReg("Last", "Number", "4", kFour) +
                     ChunkReg("Over", "Number", "5", kFour) +
                     ChunkReg("Far", "Number", "0x7ffffffffffffff8", kFour));
    camera.Attach(kGevTwo);
    EXPECT_EQ(camera.Read("Last"), "55667788");
    EXPECT_EQ(camera.Read("Over"), "NA");
    EXPECT_EQ(camera.Read("Far"), "NA");
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("Over")->GetValue(); }),
              "Node 'Over' is not readable: the data of its port is too short (access mode NA).");
    uint8_t bytes[4] = {};
    const CPortPtr port(camera.Node("Number"));
    EXPECT_EQ(Failure<AccessException>([&] { port->Read(bytes, 5, 4); }),
              "The data of port 'Number' ends at 8, before 4 bytes at 5.");
    EXPECT_EQ(bytes[0], 0);
}

TEST(ChunkPorts, NegativeAddressesReachTheBytesInFrontOfTheChunk) {
    GevCamera camera(kTwoPorts + ChunkReg("PictureLength", "Number", "-4", kFour) +
                     ChunkReg("Across", "Number", "-4", kEight) + ChunkReg("Start", "Number", "-16", kFour) +
                     ChunkReg("Before", "Number", "-17", kFour) +
                     ChunkReg("Lowest", "Number", "0x8000000000000000", kFour) +
                     ChunkReg("None", "Picture", "-4", kFour));
    camera.Attach(kGevTwo);
    EXPECT_EQ(camera.Read("PictureLength"), "8");
    EXPECT_EQ(camera.Read("Across"), "811223344");
    EXPECT_EQ(camera.Read("Start"), "1020304");
    EXPECT_EQ(camera.Read("Before"), "NA");
    EXPECT_EQ(camera.Read("Lowest"), "NA");
    EXPECT_EQ(camera.Read("None"), "NA");
}

TEST(ChunkPorts, TwoRegistersTellWhereTheChunkIs) {
    const std::string host = "<Endianess>LittleEndian</Endianess>";
    GevCamera camera(kTwoPorts + ChunkReg("Base", "Number", "0x7fffffffffffffff", kEight, host) +
                     ChunkReg("Size", "Number", "0x7ffffffffffffff0", kEight, host) +
                     ChunkReg("Short", "Number", "0x7ffffffffffffff0", kFour, host));
    EXPECT_EQ(camera.Read("Size"), "NA");
    camera.Attach(kGevTwo);
    EXPECT_EQ(camera.Read("Size"), "8");
    EXPECT_EQ(camera.Int("Base")->GetValue(),
              static_cast<int64_t>(reinterpret_cast<intptr_t>(camera.buffer.data() + 16)));
    EXPECT_EQ(camera.Read("Short"), "NA");
}

TEST(ChunkPorts, ChunksCannotBeWritten) {
    GevCamera camera(kTwoPorts);
    camera.Attach(kGevTwo);
    EXPECT_EQ(camera.Mode("Value"), RO);
    EXPECT_EQ(Failure<AccessException>([&] { camera.Int("Value")->SetValue(1); }),
              "Node 'Value' is not writable: events and chunks can't be written (access mode RO).");
    EXPECT_THROW(camera.Int("Value")->SetValue(1, false), AccessException);
    EXPECT_EQ(ToHex(camera.buffer), kGevTwo);
}

TEST(ChunkPorts, LengthsAndLocalSelectorsWorkBehindChunks) {
    GevCamera camera(ChunkPort("Data", "1") + ChunkReg("Size", "Data", "0", kFour) +
                     ChunkReg("Text", "Data", "4", "<pLength>Size</pLength>", "", "StringReg") +
                     Node("Integer", "Selector", "<Value>0</Value><Min>0</Min><Max>1</Max>") +
                     ChunkReg("Selected", "Data", "0", kFour,
                              "<pIndex Offset=\"4\">Selector</pIndex><Endianess>BigEndian</Endianess>"));
    camera.Attach("00000003616263ff0000000100000008");
    EXPECT_EQ(camera.String("Text")->GetValue(), "abc");
    EXPECT_EQ(camera.Read("Selected"), "3");
    camera.Int("Selector")->SetValue(1);
    EXPECT_EQ(camera.Read("Selected"), "616263ff");
    camera.Attach("00000002616263ff0000000100000008");
    EXPECT_EQ(camera.String("Text")->GetValue(), "ab");
    EXPECT_EQ(camera.Read("Selector"), "1");
    camera.Attach("00000005616263ff0000000100000008");
    EXPECT_EQ(camera.Mode("Text"), NA);
}

TEST(ChunkPorts, ThoseWithCacheChunkDataKeepTheirBytes) {
    const std::string nodes = ChunkPort("Number", "1001", "<CacheChunkData>Yes</CacheChunkData>") +
                              ChunkReg("Value", "Number", "0", kEight) +
                              ChunkReg("Before", "Number", "-4", kFour);
    GevCamera camera(nodes, 8);
    camera.Attach(kGevTwo);
    camera.adapter.DetachBuffer();
    camera.buffer.assign(32, 0);
    EXPECT_EQ(camera.Read("Value"), "1122334455667788");
    EXPECT_EQ(camera.Read("Before"), "NA");
    camera.Attach("0102030405060708000000010000000811223344556677990000100100000008");
    EXPECT_EQ(camera.Read("Before"), "8");
    camera.adapter.DetachBuffer();
    EXPECT_EQ(camera.Read("Value"), "1122334455667799");
    camera.adapter.ClearCaches();
    EXPECT_EQ(camera.Read("Value"), "NA");
    GevCamera limited(nodes, 7);
    limited.Attach(kGevTwo);
    EXPECT_EQ(limited.Read("Value"), "1122334455667788");
    limited.adapter.DetachBuffer();
    EXPECT_EQ(limited.Read("Value"), "NA");
}

TEST(ChunkPorts, ACopyDoesNotStandInForAChunkThatANewBufferLacks) {
    GevCamera camera(ChunkPort("Number", "1001", "<CacheChunkData>Yes</CacheChunkData>") +
                     ChunkReg("Value", "Number", "0", kEight));
    camera.Attach(kGevTwo);
    EXPECT_EQ(camera.Attach("01020304050607080000000100000008"), "1/1/0");
    EXPECT_EQ(camera.Read("Value"), "NA");
    camera.Attach(kGevTwo);
    camera.Attach("00");
    EXPECT_EQ(camera.Read("Value"), "NA");
}

TEST(ChunkPorts, AnIdFromANodeMayChange) {
    GevCamera camera(Node("Port", "Some", "<pChunkID>Id</pChunkID>") +
                     Node("String", "Id", "<Value>0001</Value>") + ChunkReg("Value", "Some", "0", kEight));
    EXPECT_EQ(camera.Attach(kGevTwo), "1/2/1");
    EXPECT_EQ(camera.Read("Value"), "102030405060708");
    int* const changes = camera.Watch("Value");
    camera.String("Id")->SetValue("1001");
    EXPECT_EQ(camera.Read("Value"), "1122334455667788");
    EXPECT_EQ(*changes, 1);
    camera.String("Id")->SetValue("none");
    EXPECT_EQ(camera.Read("Value"), "NA");
    EXPECT_EQ(camera.Attach(kGevTwo), "1/2/0");
}

TEST(ChunkPorts, AnIdFromARegisterIsAskedEachTime) {
    GevCamera camera(Node("Port", "Some", "<pChunkID>Id</pChunkID>") +
                     Register("StringReg", "Id", 0, 4, "<Cachable>NoCache</Cachable>") +
                     ChunkReg("Value", "Some", "0", kEight));
    camera.map._Connect(&camera.port);
    camera.port.Put(0, {'1', 0});
    camera.Attach(kGevTwo);
    EXPECT_EQ(camera.Read("Value"), "102030405060708");
    camera.port.Put(0, {'1', '0', '0', '1'});
    EXPECT_EQ(camera.Read("Value"), "1122334455667788");
}

TEST(ChunkPorts, AnIdBehindItsOwnChunkEndsNowhere) {
    GevCamera camera(Node("Port", "Some", "<pChunkID>Id</pChunkID>") +
                     ChunkReg("Id", "Some", "0", kFour, "<Cachable>NoCache</Cachable>", "StringReg"));
    EXPECT_EQ(camera.Attach(kGevTwo), "1/2/0");
    EXPECT_EQ(camera.Mode("Id"), NA);
}

TEST(ChunkAdapterGeneric, TakesTheLayoutAsAList) {
    Camera camera(kTwoPorts, false);
    CChunkAdapterGeneric adapter(camera.map._Ptr);
    ByteRow buffer = FromHex("11223344556677880102030405060708");
    SingleChunkData_t chunks[] = {{0x1001, 0, 8}, {1, 8, 8}, {77, 4, 0}};
    AttachStatistics_t statistics;
    adapter.AttachBuffer(buffer.data(), chunks, 3, &statistics);
    EXPECT_EQ(statistics.NumChunkPorts, 2);
    EXPECT_EQ(statistics.NumChunks, 3);
    EXPECT_EQ(statistics.NumAttachedChunks, 2);
    EXPECT_EQ(camera.Int("Value")->GetValue(), 0x1122334455667788);
    EXPECT_EQ(camera.Int("First")->GetValue(), 0x01020304);
    EXPECT_FALSE(adapter.CheckBufferLayout(buffer.data(), 16));
    EXPECT_THROW(adapter.AttachBuffer(buffer.data(), 16), InvalidArgumentException);
}

TEST(ChunkAdapterGeneric, ImpossibleListsAreRefused) {
    Camera camera(kTwoPorts, false);
    CChunkAdapterGeneric adapter(camera.map._Ptr);
    ByteRow buffer = FromHex("11223344556677880102030405060708");
    const auto refusal = [&](SingleChunkData_t bad) {
        SingleChunkData_t good[] = {{0x1001, 0, 8}};
        adapter.AttachBuffer(buffer.data(), good, 1);
        SingleChunkData_t chunks[] = {{1, 8, 8}, bad};
        const std::string text =
            Failure<RuntimeException>([&] { adapter.AttachBuffer(buffer.data(), chunks, 2); });
        EXPECT_EQ(camera.Mode("Value"), NA);
        return text;
    };
    EXPECT_EQ(refusal({0x1001, -1, 8}), "The list of chunks is impossible at entry 1: 8 bytes at -1.");
    EXPECT_EQ(refusal({0x1001, 8, SIZE_MAX}),
              "The list of chunks is impossible at entry 1: 18446744073709551615 bytes at 8.");
    EXPECT_EQ(refusal({0x1001, PTRDIFF_MAX, 1}),
              "The list of chunks is impossible at entry 1: 1 bytes at 9223372036854775807.");
    EXPECT_THROW(adapter.AttachBuffer(buffer.data(), nullptr, 1), InvalidArgumentException);
    EXPECT_THROW(adapter.AttachBuffer(buffer.data(), nullptr, -1), InvalidArgumentException);
    SingleChunkData_t chunk = {1, 0, 1};
    EXPECT_THROW(adapter.AttachBuffer(nullptr, &chunk, 1), InvalidArgumentException);
    adapter.AttachBuffer(buffer.data(), nullptr, 0);
    EXPECT_EQ(camera.Mode("Value"), NA);
}

TEST(ChunkAdapter, EveryStreamBufferHasAMapOfItsOwn) {
    CNodeMapFactory factory(Describe(kTwoPorts).c_str());
    constexpr int kBuffers = 40;
    std::vector<CNodeMapRef> maps(kBuffers);
    std::vector<std::unique_ptr<CChunkAdapterGEV>> adapters;
    std::vector<ByteRow> buffers(kBuffers, FromHex(kGevTwo));
    for (int i = 0; i < kBuffers; ++i) {
        maps[i] = factory.CreateNodeMap();
        buffers[i][23] = static_cast<uint8_t>(i);
        adapters.push_back(std::make_unique<CChunkAdapterGEV>(maps[i]._Ptr));
        adapters[i]->AttachBuffer(buffers[i].data(), 32);
    }
    for (int i = 0; i < kBuffers; ++i)
        EXPECT_EQ(CIntegerPtr(maps[i]._GetNode("Value"))->GetValue(), 0x1122334455667700 + i);
    adapters.clear();
}

TEST(ChunkAdapter, OtherThreadsMayReadWhileBuffersComeAndGo) {
    GevCamera camera(kTwoPorts);
    camera.Attach(kGevTwo);
    ByteRow other = FromHex("0102030405060708000000010000000800000000000000070000100100000008");
    std::atomic<bool> done{false};
    std::atomic<int> wrong{0};
    std::thread reader([&] {
        const CIntegerPtr value = camera.Int("Value");
        while (!done) {
            const AutoLock lock(camera.map._Ptr->GetLock());
            if (!IsReadable(value))
                continue;
            const int64_t read = value->GetValue();
            wrong += read != 7 && read != 0x1122334455667788;
        }
    });
    for (int i = 0; i < 500; ++i) {
        camera.adapter.AttachBuffer(i % 2 ? other.data() : camera.buffer.data(), 32);
        if (i % 3 == 0)
            camera.adapter.DetachBuffer();
    }
    done = true;
    reader.join();
    EXPECT_EQ(wrong, 0);
}

TEST(ChunkAdapter, MutatedBuffersAreTakenOrRefused) {
    const std::string nodes = kTwoPorts + ChunkReg("Before", "Number", "-4", kFour) +
                              ChunkReg("Text", "Number", "0", "<pLength>First</pLength>", "", "StringReg");
    GevCamera gev(nodes);
    U3vCamera u3v(nodes);
    std::mt19937 random(20240608);
    size_t taken = 0;
    size_t refused = 0;
    for (const Row& row : kRows)
        for (int i = 0; i < 10000; ++i) {
            const std::string bytes = ToHex(Mutated(FromHex(row.bytes), random));
            const std::string outcome = row.isGev ? gev.Attach(bytes) : u3v.Attach(bytes);
            ++(outcome.find(' ') == outcome.npos ? taken : refused);
            Camera& camera = row.isGev ? static_cast<Camera&>(gev) : u3v;
            for (const char* const name : {"First", "Value", "Before", "Text"})
                if (IsReadable(camera.Node(name)))
                    camera.Value(name)->ToString();
        }
    EXPECT_GT(taken, 1000u);
    EXPECT_GT(refused, 1000u);
}

TEST(ChunkPorts, CopiesTellWhereTheyAreToo) {
    GevCamera camera(
        ChunkPort("Number", "1001", "<CacheChunkData>Yes</CacheChunkData>") +
        ChunkReg("Base", "Number", "0x7FFFFFFFFFFFFFFF", kEight, "<Endianess>LittleEndian</Endianess>") +
        ChunkReg("Length", "Number", "0x7FFFFFFFFFFFFFF0", kEight, "<Endianess>LittleEndian</Endianess>") +
        ChunkReg("Value", "Number", "0", kEight));
    camera.Attach(kGevTwo);
    EXPECT_EQ(reinterpret_cast<const uint8_t*>(camera.Int("Base")->GetValue()), camera.buffer.data() + 16);
    camera.adapter.DetachBuffer();
    camera.buffer.assign(32, 0);
    EXPECT_EQ(camera.Read("Length"), "8");
    EXPECT_EQ(*reinterpret_cast<const uint8_t*>(camera.Int("Base")->GetValue()), 0x11);
}

TEST(ChunkPorts, NoBytesCanBeReadFromAnywhereInside) {
    GevCamera camera(kTwoPorts);
    camera.Attach(kGevTwo);
    uint8_t untouched = 77;
    const CPortPtr port = camera.Node("Number");
    port->Read(&untouched, 8, 0);
    EXPECT_EQ(untouched, 77);
    EXPECT_EQ(Failure<AccessException>([&] { port->Read(&untouched, 8, 1); }),
              "The data of port 'Number' ends at 8, before 1 bytes at 8.");
    EXPECT_EQ(Failure<AccessException>([&] { port->Write(&untouched, 0, 1); }),
              "The data of port 'Number' can't be written.");
}

TEST(ChunkPorts, AnIdFromAMissingNodeBelongsToNoChunk) {
    GevCamera camera(Node("Port", "Some", "<pChunkID>Gone</pChunkID>") +
                     ChunkReg("Value", "Some", "0", kEight));
    EXPECT_EQ(camera.Attach(kGevTwo), "1/2/0");
    EXPECT_EQ(camera.Read("Value"), "NA");
}

TEST(ChunkAdapter, WithoutAMapTheRestDoesNothing) {
    Camera camera(kTwoPorts, false);
    CChunkAdapterGEV adapter;
    adapter.DetachBuffer();
    adapter.ClearCaches();
    ByteRow buffer = FromHex(kGevTwo);
    adapter.UpdateBuffer(buffer.data());
    EXPECT_THROW(adapter.UpdateBuffer(nullptr), InvalidArgumentException);
    adapter.AttachNodeMap(camera.map._Ptr);
    EXPECT_THROW(adapter.UpdateBuffer(buffer.data()), LogicalErrorException);
    adapter.AttachBuffer(buffer.data(), static_cast<int64_t>(buffer.size()));
    adapter.AttachNodeMap(camera.map._Ptr); // the same: what is attached stays
    EXPECT_EQ(camera.Int("Value")->GetValue(), 0x1122334455667788);
}

TEST(ChunkAdapterGeneric, TooManyChunksAreRefused) {
    CChunkAdapterGeneric adapter;
    uint8_t buffer[8] = {};
    std::vector<SingleChunkData_t> chunks(100000, SingleChunkData_t{1, 0, 1});
    EXPECT_THROW(adapter.AttachBuffer(buffer, chunks.data(), static_cast<int64_t>(chunks.size())),
                 RuntimeException);
}
