#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include <unistd.h>

#include "tests/unit/ZqApi_TL/ModuleTree.h"

#include "ZqApi_TL/ZqPort.h"
#include "ZqGenTLCommon/ZqGenTLLib.h"

namespace ZqTest {
namespace {

/// A port of its own on the transport layer's module, with the access mode of the test.
class Ports : public ModuleTree {
protected:
    explicit Ports(const std::string& variant = "full") : ModuleTree(variant) {
        EXPECT_EQ(CallProducer(m_Lib->TLOpen, &m_hTL), GC_ERR_SUCCESS);
    }

    void TearDown() override {
        m_XMLFile.reset();
        m_Port.reset();
        CallProducer(m_Lib->TLClose, m_hTL);
        m_Lib.reset();
        ModuleTree::TearDown();
    }

    CZqPort& Port(GenApi::EAccessMode mode = GenApi::RW) {
        m_Port = std::make_unique<CZqPort>(m_Lib.get(), m_hTL, mode, gcstring("Test"));
        producer.ClearLog();
        return *m_Port;
    }

    /// A description file reader on the same module.
    CZqXMLFile& XMLFile() {
        if (!m_XMLFile)
            m_XMLFile = std::make_unique<CZqXMLFile>(m_Lib.get(), m_hTL, GenApi::RW, gcstring("Test"));
        return *m_XMLFile;
    }

    /// Lets the module offer these bytes; the URL that it tells then.
    gcstring Served(const std::string& fileName, const std::string& bytes) {
        producer.SetDescription("TL1", fileName, bytes);
        return Port().GetIZqPortURLInfo()->GetURL();
    }

    CZqGenTLLib* Lib() { return m_Lib.get(); }
    PORT_HANDLE PortHandle() { return m_hTL; }

private:
    std::shared_ptr<CZqGenTLLib> m_Lib = std::make_shared<CZqGenTLLib>("libzqgentl.cti");
    TL_HANDLE m_hTL = nullptr;
    std::unique_ptr<CZqPort> m_Port;
    std::unique_ptr<CZqXMLFile> m_XMLFile;
};

std::string TempFile() {
    return testing::TempDir() + "zqapi_port_" + std::to_string(::getpid()) + ".xml";
}

std::string Contents(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

TEST_F(Ports, ConstructionCallsNothing) {
    Port();
    EXPECT_EQ(producer.Log(), Calls{});
}

TEST_F(Ports, UnwritablePortRefusesBeforeTheProducerIsCalled) {
    const uint32_t value = 5;
    for (const GenApi::EAccessMode mode : {GenApi::RO, GenApi::NA, GenApi::NI}) {
        CZqPort& port = Port(mode);
        const Thrown thrown = Catch<GenICam::RuntimeException>([&] { port.Write(&value, 0, 4); });
        EXPECT_EQ(thrown.text, "Port is not writable.");
        EXPECT_EQ(thrown.source, "ZqApi_TL/ZqPort");
        EXPECT_EQ(port.GetAccessMode(), mode);
    }
    EXPECT_EQ(producer.Count("GCWritePort"), 0u);
}

TEST_F(Ports, WriteOnlyAndReadWritePortsWrite) {
    const uint32_t value = 0xA5;
    Port(GenApi::WO).Write(&value, 0x40, 4);
    Port(GenApi::RW).Write(&value, 0x44, 4);
    EXPECT_EQ(producer.GetRegister<uint32_t>("TL1", 0x40), 0xA5u);
    EXPECT_EQ(producer.GetRegister<uint32_t>("TL1", 0x44), 0xA5u);
}

TEST_F(Ports, ReadGoesToThePortsRegisters) {
    producer.SetRegister<uint32_t>("TL1", 0x30, 0x12345678);
    uint32_t value = 0;
    Port().Read(&value, 0x30, 4);
    EXPECT_EQ(value, 0x12345678u);
}

TEST_F(Ports, FailingReadIsReportedWithItsAddress) {
    producer.Answer("GCReadPort").With(GC_ERR_IO).Saying("cable");
    uint32_t value = 0;
    const Thrown thrown = CatchProducerError([&] { Port().Read(&value, 16, 4); });
    EXPECT_EQ(thrown.text, "-1010 = GCReadPort(PTR, 16, PTR, PTR) cable");
    EXPECT_EQ(thrown.function, "GCReadPort");
    EXPECT_EQ(thrown.error, -1010);
    EXPECT_EQ(thrown.source, "ZqApi_TL/ZqPort");
}

TEST_F(Ports, ShortReadHasErrorZeroAndBothLengths) {
    producer.Answer("GCReadPort").Size(2).Saying(GC_ERR_ERROR, "not this");
    uint32_t value = 0;
    const Thrown thrown = CatchProducerError([&] { Port().Read(&value, 16, 4); });
    EXPECT_EQ(thrown.error, 0);
    EXPECT_EQ(thrown.text, "0 = GCReadPort(PTR, 16, 0x PTR, 0x PTR) Length:4 != 2");
}

TEST_F(Ports, PositiveResultFailsAReadButNotAWrite) {
    producer.Answer("GCReadPort").With(5).AlsoRuns();
    producer.Answer("GCWritePort").With(5).AlsoRuns();
    uint32_t value = 0;
    CZqPort& port = Port();
    EXPECT_EQ(CatchProducerError([&] { port.Read(&value, 0, 4); }).error, 5);
    EXPECT_NO_THROW(port.Write(&value, 0, 4));
}

TEST_F(Ports, FailingWriteIsReported) {
    producer.Answer("GCWritePort").With(GC_ERR_INVALID_ADDRESS);
    const uint32_t value = 0;
    const Thrown thrown = CatchProducerError([&] { Port().Write(&value, 4096, 4); });
    EXPECT_EQ(thrown.text, "-1015 = GCWritePort(PTR, 4096, PTR, PTR)");
    EXPECT_EQ(thrown.error, -1015);
}

TEST_F(Ports, ShortWriteCarriesTheResultOfTheCall) {
    producer.Answer("GCWritePort").With(7).AlsoRuns().Size(3);
    const uint32_t value = 0;
    const Thrown thrown = CatchProducerError([&] { Port().Write(&value, 8, 4); });
    EXPECT_EQ(thrown.text, "7 = GCWritePort(PTR, 8, PTR, PTR) Length:4 != 3");
    EXPECT_EQ(thrown.error, 7);
}

TEST_F(Ports, UrlIndexIsCheckedAgainstTheCount) {
    producer.SetUrl("TL1", "local:second.xml;0;10", 1);
    CZqPort& port = Port();
    EXPECT_EQ(port.GetPortURLCount(), 2u);
    EXPECT_EQ(Catch<GenICam::OutOfRangeException>([&] { port.SetPortURLIndex(2); }).text,
              "nURLIndex = 2 must be smaller than Max = 2");
    EXPECT_EQ(port.GetPortURLIndex(), 0u);
    port.SetPortURLIndex(1);
    EXPECT_EQ(port.GetPortURLIndex(), 1u);
    EXPECT_STREQ(port.GetIZqPortURLInfo()->GetURL().c_str(), "local:second.xml;0;10");
}

TEST_F(Ports, FailingUrlCountIsReported) {
    producer.Answer("GCGetNumPortURLs").With(GC_ERR_IO);
    EXPECT_EQ(CatchProducerError([&] { Port().GetPortURLCount(); }).text,
              "-1010 = GCGetNumPortURLs(PTR, PTR)");
}

TEST_F(Ports, UrlInformationIsAskedForTheSelectedIndex) {
    producer.SetUrl("TL1", "local:cam.zip;10000;3A2F");
    const IZqPortURLInfo& info = *Port().GetIZqPortURLInfo();
    EXPECT_EQ(info.GetFileRegisterAddress(), 0x10000u);
    EXPECT_EQ(info.GetFileSize(), 0x3A2Fu);
    EXPECT_STREQ(info.GetFileName().c_str(), "cam.zip");
    EXPECT_EQ(info.GetSchemaVerMajor(), 1);
    EXPECT_EQ(info.GetScheme(), 0);
    EXPECT_EQ(producer.Log("GCGetPortURLInfo").front(), "GCGetPortURLInfo(TL1, 0, 7, 8)");
}

TEST_F(Ports, FailingUrlInformationIsReported) {
    producer.Answer("GCGetPortURLInfo").With(GC_ERR_NOT_AVAILABLE);
    const IZqPortURLInfo& info = *Port().GetIZqPortURLInfo();
    EXPECT_EQ(CatchProducerError([&] { info.GetFileSize(); }).text,
              "-1014 = GCGetPortURLInfo(PTR, 0, 8, PTR, PTR, PTR)");
    EXPECT_EQ(CatchProducerError([&] { info.GetFileName(); }).text,
              "-1014 = GCGetPortURLInfo(PTR, 0, 10, PTR, PTR, PTR)");
    size_t size = 0;
    EXPECT_EQ(CatchProducerError([&] { info.GetSha1HashBuffer(nullptr, &size); }).text,
              "-1014 = GCGetPortURLInfo(PTR, 0, 6, PTR, PTR, PTR)");
}

TEST_F(Ports, HashGoesStraightThrough) {
    producer.Answer("GCGetPortURLInfo").Command(URL_INFO_FILE_SHA1_HASH).Bytes(std::string(20, '\x17'));
    char hash[20] = {};
    size_t size = sizeof(hash);
    Port().GetIZqPortURLInfo()->GetSha1HashBuffer(hash, &size);
    EXPECT_EQ(size, 20u);
    EXPECT_EQ(std::string(hash, 20), std::string(20, '\x17'));
}

TEST_F(Ports, InformationHasEveryGetter) {
    const IZqPortInfo& info = *Port().GetIZqPortInfo();
    EXPECT_STREQ(info.GetModule().c_str(), "TLSystem");
    EXPECT_STREQ(info.GetPortName().c_str(), "TLPort");
    EXPECT_TRUE(info.IsLittleEndian());
    EXPECT_FALSE(info.IsBigEndian());
    EXPECT_TRUE(info.IsAccessRead());
    EXPECT_TRUE(info.IsAccessWrite());
    EXPECT_FALSE(info.IsAccessNA());
    EXPECT_FALSE(info.IsAccessNI());
    EXPECT_STREQ(info.GetVersion().c_str(), "1.0");
}

TEST_F(Ports, FlagOtherThanZeroAndOneIsTrue) {
    producer.Answer("GCGetPortInfo").Command(PORT_INFO_BIG_ENDIAN).Value<uint8_t>(255);
    EXPECT_TRUE(Port().GetIZqPortInfo()->IsBigEndian());
}

TEST_F(Ports, FailingPortInformationIsReported) {
    producer.Answer("GCGetPortInfo").With(GC_ERR_NOT_IMPLEMENTED);
    const IZqPortInfo& info = *Port().GetIZqPortInfo();
    EXPECT_EQ(CatchProducerError([&] { info.GetPortName(); }).text,
              "-1003 = GCGetPortInfo(PTR, 12, PTR, PTR, PTR)");
    EXPECT_EQ(CatchProducerError([&] { info.IsAccessNI(); }).text,
              "-1003 = GCGetPortInfo(PTR, 10, PTR, PTR, PTR)");
}

TEST_F(Ports, NodeMapIsBuiltOnceAndNamedAfterTheDevice) {
    CZqPort& port = Port();
    INodeMap* const pNodeMap = port.GetINodeMap();
    ASSERT_NE(pNodeMap, nullptr);
    EXPECT_EQ(port.GetINodeMap(), pNodeMap);
    EXPECT_STREQ(pNodeMap->GetDeviceName().c_str(), "Test");
    EXPECT_EQ(producer.Log("GCReadPort").size(), 1u);
    EXPECT_STREQ(port.GetXMLFileName().c_str(), "system.xml");
}

TEST_F(Ports, NodeMapStaysWithTheUrlItWasBuiltFrom) {
    producer.SetUrl("TL1", "http:nowhere", 1);
    CZqPort& port = Port();
    INodeMap* const pNodeMap = port.GetINodeMap();
    port.SetPortURLIndex(1);
    EXPECT_EQ(port.GetINodeMap(), pNodeMap);
}

TEST_F(Ports, FailedNodeMapIsTriedAgain) {
    producer.Answer("GCReadPort").OnCall(1).With(GC_ERR_IO);
    CZqPort& port = Port();
    const Thrown thrown = CatchProducerError([&] { port.GetINodeMap(); });
    EXPECT_EQ(thrown.text, "-1010 = GCReadPort(PTR, 65536, PTR, PTR)");
    EXPECT_EQ(thrown.source, "ZqSDKCommon/ZqXMLFile");
    EXPECT_NE(port.GetINodeMap(), nullptr);
}

TEST_F(Ports, RemoteUrlsAreRefusedByTheirKind) {
    CZqPort& port = Port();
    producer.SetUrl("TL1", "HTTP://somewhere/cam.xml");
    const Thrown thrown = Catch<GenICam::InvalidArgumentException>([&] { port.GetINodeMap(); });
    EXPECT_EQ(thrown.text, "URL location 1 is not supported.");
    EXPECT_EQ(thrown.source, "ZqSDKCommon/ZqXMLFile");
    producer.SetUrl("TL1", "file:///cam.xml");
    EXPECT_EQ(Catch<GenICam::InvalidArgumentException>([&] { port.GetINodeMap(); }).text,
              "URL location 2 is not supported.");
}

TEST_F(Ports, SaveWritesThePlainFileWithoutTrailingNuls) {
    const std::string text =
        "<?xml version=\"1.0\"?><RegisterDescription ModelName=\"M\" VendorName=\"V\" "
        "StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
        "SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\">"
        "<Category Name=\"Root\"/><Port Name=\"TLPort\"/></RegisterDescription>";
    producer.SetDescription("TL1", "padded.xml", text + std::string(64, '\0'));
    CZqPort& port = Port();
    port.SaveXMLFile(TempFile().c_str());
    EXPECT_EQ(Contents(TempFile()), text);
    std::remove(TempFile().c_str());
    EXPECT_EQ(Catch<GenICam::RuntimeException>([&] { port.SaveXMLFile("/nowhere/x.xml"); }).text,
              "File /nowhere/x.xml could not be opened.");
    EXPECT_EQ(Catch<GenICam::RuntimeException>([&] { port.SaveXMLFile("/dev/full"); }).text,
              "File /dev/full is unwritable.");
}

TEST_F(Ports, TwoFirstUsersBuildOneNodeMap) {
    CZqPort& port = Port();
    INodeMap* first = nullptr;
    std::thread other([&] { first = port.GetINodeMap(); });
    INodeMap* const second = port.GetINodeMap();
    other.join();
    EXPECT_EQ(first, second);
    EXPECT_EQ(producer.Log("GCReadPort").size(), 1u);
}

constexpr const char* TWO_FEATURES =
    "<RegisterDescription ModelName=\"M\" VendorName=\"V\" StandardNameSpace=\"None\" "
    "SchemaMajorVersion=\"1\" "
    "SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" "
    "SubMinorVersion=\"0\"><Category "
    "Name=\"Root\"><pFeature>Branch</pFeature><pFeature>Other</pFeature></Category>"
    "<Category Name=\"Branch\"><pFeature>Leaf</pFeature></Category><Integer "
    "Name=\"Other\"><Value>1</Value></Integer>"
    "<Integer Name=\"Leaf\"><pValue>LeafReg</pValue></Integer><IntReg "
    "Name=\"LeafReg\"><Address>0x40</Address>"
    "<Length>4</Length><AccessMode>RW</AccessMode><pPort>TLPort</pPort><Endianess>LittleEndian</Endianess></"
    "IntReg>"
    "<Port Name=\"TLPort\"/></RegisterDescription>";

TEST_F(Ports, SubTreeIsANodeMapOfItsOwnOnTheSameRegisters) {
    producer.SetDescription("TL1", "two.xml", TWO_FEATURES);
    CZqPort& port = Port();
    GenApi::CNodeMapRef subTree;
    port.CreateSubTreeNodeMap("Branch", subTree, false);
    EXPECT_EQ(subTree._GetNode("Other"), nullptr);
    GenApi::CIntegerPtr leaf = subTree._GetNode("Leaf");
    leaf->SetValue(77);
    EXPECT_EQ(producer.GetRegister<uint32_t>("TL1", 0x40), 77u);
    EXPECT_STREQ(subTree._GetDeviceName().c_str(), "Test");
    EXPECT_EQ(producer.Log("GCReadPort").size(), 1u);
}

TEST_F(Ports, FileNameEndsAtItsLastBackslash) {
    producer.SetDescription("TL1", "dir\\sub\\cam.xml", TWO_FEATURES);
    EXPECT_STREQ(Port().GetXMLFileName().c_str(), "cam.xml");
    producer.SetDescription("TL1", "///cam.xml", TWO_FEATURES);
    EXPECT_STREQ(Port().GetXMLFileName().c_str(), "///cam.xml");
}

TEST_F(Ports, SaveKeepsEveryByteOfAFileNamedZip) {
    const std::string bytes = TWO_FEATURES + std::string(3, '\0');
    producer.SetDescription("TL1", "camera.zip", bytes);
    Port().SaveXMLFile(TempFile().c_str());
    EXPECT_EQ(Contents(TempFile()), bytes);
    std::remove(TempFile().c_str());
}

/// A folder of its own for preprocessed descriptions, while the object lives.
class CacheFolder {
public:
    CacheFolder() {
        std::filesystem::create_directory(m_Name);
        ::setenv("GENICAM_CACHE_V3_0", m_Name.c_str(), 1);
    }
    ~CacheFolder() {
        ::unsetenv("GENICAM_CACHE_V3_0");
        std::filesystem::remove_all(m_Name);
    }
    size_t Files() const {
        return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(m_Name), {}));
    }

private:
    const std::string m_Name = testing::TempDir() + "zqapi_cache_" + std::to_string(::getpid());
};

TEST_F(Ports, DescriptionsAreCachedButThoseOfAPortNamedDevice) {
    const CacheFolder cache;
    producer.SetDescription("TL1", "two.xml", TWO_FEATURES);
    producer.Answer("GCGetPortInfo").Command(PORT_INFO_PORTNAME).Text("Device");
    EXPECT_NE(Port().GetINodeMap(), nullptr);
    EXPECT_EQ(cache.Files(), 0u);
    producer.Answer("GCGetPortInfo").Command(PORT_INFO_PORTNAME).Text("TLPort");
    EXPECT_NE(Port().GetINodeMap()->GetNode("Leaf"), nullptr);
    EXPECT_EQ(cache.Files(), 1u);
    EXPECT_NE(Port().GetINodeMap()->GetNode("Leaf"), nullptr);
    EXPECT_EQ(cache.Files(), 1u);
}

TEST_F(Ports, PlainFileOfNothingButNulsIsSavedEmpty) {
    XMLFile().LoadXMLFile(Served("nothing.xml", std::string(16, '\0')));
    XMLFile().SaveToFile(TempFile().c_str());
    EXPECT_EQ(Contents(TempFile()), "");
    std::remove(TempFile().c_str());
}

TEST_F(Ports, NameTooShortForAnEndingFailsBehindTheLoad) {
    const gcstring url = Served("ab", TWO_FEATURES);
    EXPECT_THROW(XMLFile().LoadXMLFile(url), GenICam::OutOfRangeException);
    EXPECT_STREQ(XMLFile().GetXMLFileName().c_str(), "ab");
    EXPECT_EQ(XMLFile().GetNodeMap(), nullptr);
}

TEST_F(Ports, NothingIsLoadedBeforeTheFirstLoadNorAfterAFailedOne) {
    const auto check = [this] {
        EXPECT_EQ(Catch<GenICam::RuntimeException>([this] { XMLFile().GetXMLFileName(); }).text,
                  "XML File is not loaded.");
        EXPECT_EQ(Catch<GenICam::RuntimeException>([this] { XMLFile().SaveToFile("x"); }).text,
                  "XML File is not loaded.");
    };
    check();
    const gcstring url = Served("cam.xml", TWO_FEATURES);
    XMLFile().LoadXMLFile(url);
    producer.Answer("GCReadPort").With(GC_ERR_IO);
    EXPECT_EQ(CatchProducerError([&] { XMLFile().LoadXMLFile(url); }).text,
              "-1010 = GCReadPort(PTR, 65536, PTR, PTR)");
    check();
}

TEST_F(Ports, UrlOfOldProducersComesFromTheirOwnFunction) {
    const gcstring url = Served("old.xml", TWO_FEATURES);
    producer.ClearLog();
    EXPECT_STREQ(CZqXMLFile::GetURL(Lib(), PortHandle()).c_str(), url.c_str());
    EXPECT_EQ(producer.Log("GCGetPortURLInfo"), Calls{});
}

TEST_F(Ports, FailingDataQueriesAreReportedLikeTheSizeQuery) {
    producer.Answer("GCGetPortInfo").DataQuery().With(GC_ERR_IO);
    producer.Answer("GCGetPortURLInfo").DataQuery().With(GC_ERR_IO);
    CZqPort& port = Port();
    EXPECT_EQ(CatchProducerError([&] { port.GetIZqPortInfo()->GetVendor(); }).text,
              "-1010 = GCGetPortInfo(PTR, 1, PTR, PTR, PTR)");
    const Thrown thrown = CatchProducerError([&] { port.GetIZqPortURLInfo()->GetURL(); });
    EXPECT_EQ(thrown.text, "-1010 = GCGetPortURLInfo(PTR, 0, 0, PTR, PTR, PTR)");
    EXPECT_EQ(thrown.function, "GCGetPortURLInfo");
}

TEST_F(Ports, AbsurdSizeOfATextIsAnAllocationFailure) {
    producer.Answer("GCGetPortInfo").SizeQuery().Size(SIZE_MAX);
    EXPECT_EQ(Catch<GenICam::BadAllocException>([&] { Port().GetIZqPortInfo()->GetID(); }).text,
              "std::bad_alloc");
}

class PortsWithoutUrlCount : public Ports {
protected:
    PortsWithoutUrlCount() : Ports("without_GCGetNumPortURLs") {}
};

TEST_F(PortsWithoutUrlCount, OldUrlFunctionTellsWhetherThereIsOne) {
    EXPECT_EQ(Port().GetPortURLCount(), 1u);
    producer.Answer("GCGetPortURL").With(GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(Port().GetPortURLCount(), 0u);
}

class PortsWithoutUrls : public Ports {
protected:
    PortsWithoutUrls() : Ports("without_urls") {}
};

TEST_F(PortsWithoutUrls, HaveNone) {
    EXPECT_EQ(Port().GetPortURLCount(), 0u);
}

TEST_F(PortsWithoutUrls, AskTheNewFunctionWhereThereIsNeither) {
    EXPECT_EQ(CatchProducerError([this] { Port().GetIZqPortURLInfo()->GetURL(); }).text,
              "-1003 = GCGetPortURLInfo(PTR, 0, 0, PTR, PTR, PTR)");
}

class PortsWithoutUrlInfo : public Ports {
protected:
    PortsWithoutUrlInfo() : Ports("without_GCGetPortURLInfo") {}
};

TEST_F(PortsWithoutUrlInfo, FirstUrlComesFromTheOldFunction) {
    producer.SetUrl("TL1", "local:old.xml;0;10");
    CZqPort& port = Port();
    EXPECT_STREQ(port.GetIZqPortURLInfo()->GetURL().c_str(), "local:old.xml;0;10");
    EXPECT_EQ(CatchProducerError([&] { port.GetIZqPortURLInfo()->GetFileName(); }).error, -1003);
    EXPECT_EQ(CatchProducerError([&] { port.GetIZqPortURLInfo()->GetFileSize(); }).text,
              "-1003 = GCGetPortURLInfo(PTR, 0, 8, PTR, PTR, PTR)");
}

TEST_F(PortsWithoutUrlInfo, OldFunctionsFailuresHaveTheirTwoLayouts) {
    producer.Answer("GCGetPortURL").SizeQuery().OnCall(1).With(GC_ERR_IO);
    producer.Answer("GCGetPortURL").DataQuery().With(GC_ERR_IO);
    CZqPort& port = Port();
    const auto text = [&] { return CatchProducerError([&] { port.GetIZqPortURLInfo()->GetURL(); }).text; };
    EXPECT_EQ(text(), "-1010 = GCGetPortURL(PTR, PTR, PTR)");
    EXPECT_EQ(text(), "-1010 = GCGetPortURL(PTR, 0, 0, PTR, PTR, PTR)");
}

TEST_F(PortsWithoutUrlInfo, OldFunctionIsForTheFirstUrlOnly) {
    producer.SetUrl("TL1", "local:second.xml;0;10", 1);
    CZqPort& port = Port();
    port.SetPortURLIndex(1);
    EXPECT_EQ(CatchProducerError([&] { port.GetIZqPortURLInfo()->GetURL(); }).text,
              "-1003 = GCGetPortURLInfo(PTR, 1, 0, PTR, PTR, PTR)");
}

class PortsWithoutRead : public Ports {
protected:
    PortsWithoutRead() : Ports("without_GCReadPort") {}
};

TEST_F(PortsWithoutRead, AreReportedLikeAFailedRead) {
    uint32_t value = 0;
    EXPECT_EQ(CatchProducerError([&] { Port().Read(&value, 0, 4); }).text,
              "-1003 = GCReadPort(PTR, 0, PTR, PTR)");
}

class PortsWithoutWrite : public Ports {
protected:
    PortsWithoutWrite() : Ports("without_GCWritePort") {}
};

TEST_F(PortsWithoutWrite, AreReportedLikeAFailedWrite) {
    const uint32_t value = 0;
    EXPECT_EQ(CatchProducerError([&] { Port().Write(&value, 0, 4); }).text,
              "-1003 = GCWritePort(PTR, 0, PTR, PTR)");
}

} // namespace
} // namespace ZqTest
