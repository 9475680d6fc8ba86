#include "tests/unit/zq/Tool.h"

#include <nlohmann/json.hpp>

using namespace GenTL;
using ZqTest::ScriptedProducer;

namespace {

TEST(ZqList, ShowsInterfacesAndCameras) {
    const ScriptedProducer producer;
    producer.Answer("IFGetDeviceInfo").Command(DEVICE_INFO_USER_DEFINED_NAME).Text("left");
    Tool tool;
    EXPECT_EQ(tool.Run({"list"}), 0);
    EXPECT_EQ(tool.out.str(),
              "libzqgentl.cti 1.0\n"
              "  U3V  IF1  IF1\n"
              "    DEV1                      Scripted Scripted, serial DEV1, name left, read-write\n");
    EXPECT_EQ(tool.err.str(), "");
    EXPECT_TRUE(producer.NothingOpen());
}

TEST(ZqList, JsonHasTheSameAndNullForWhatIsNotSaid) {
    const ScriptedProducer producer;
    producer.AddInterface("IF2", "GEV");
    producer.AddDevice("IF2", "DEV2", DEVICE_ACCESS_STATUS_BUSY);
    producer.Answer("IFGetDeviceInfo")
        .Id("DEV2")
        .Command(DEVICE_INFO_SERIAL_NUMBER)
        .With(GC_ERR_NOT_IMPLEMENTED);
    Tool tool;
    EXPECT_EQ(tool.Run({"list", "--json"}), 0);
    const auto json = nlohmann::json::parse(tool.out.str());
    ASSERT_EQ(json["producers"].size(), 1U);
    const auto& found = json["producers"][0];
    EXPECT_EQ(found["file"], "libzqgentl.cti");
    EXPECT_EQ(found["vendor"], "Default");
    ASSERT_EQ(found["interfaces"].size(), 2U);
    EXPECT_EQ(found["interfaces"][0]["type"], "U3V");
    EXPECT_EQ(found["interfaces"][0]["devices"][0]["serial"], "DEV1");
    const auto& second = found["interfaces"][1]["devices"][0];
    EXPECT_EQ(second["id"], "DEV2");
    EXPECT_EQ(second["access"], "busy");
    EXPECT_TRUE(second["serial"].is_null());
}

TEST(ZqList, FindsTheProducersOfOtherVendors) {
    const ScriptedProducer producer("euresys");
    producer.ClearInterfaces();
    producer.AddInterface("CXP0", "CXP");
    producer.AddDevice("CXP0", "BOARD:CAM");
    Tool tool;
    EXPECT_EQ(tool.Run({"list"}), 0);
    EXPECT_EQ(tool.out.str().rfind("coaxlink.cti 1.0\n  CXP  CXP0", 0), 0U);
}

TEST(ZqList, NoProducerEndsWith3) {
    const TemporaryFolder empty;
    setenv("GENICAM_GENTL64_PATH", empty.Path().c_str(), 1);
    Tool tool;
    EXPECT_EQ(tool.Run({"list"}), 3);
    EXPECT_EQ(tool.err.str(),
              "zq: looking for a producer failed\n"
              "  why: no known producer in GENICAM_GENTL64_PATH=" +
                  empty.Path().string() +
                  "\n"
                  "  try: set GENICAM_GENTL64_PATH to the folder of a producer (a .cti file)\n");
}

TEST(ZqList, NoCameraEndsWith3) {
    const ScriptedProducer producer;
    producer.RemoveDevice("IF1", "DEV1");
    Tool tool;
    EXPECT_EQ(tool.Run({"list"}), 3);
    EXPECT_EQ(tool.out.str(), "libzqgentl.cti 1.0\n  U3V  IF1  IF1\n");
    EXPECT_EQ(tool.err.str(), "zq: listing cameras failed\n"
                              "  why: the producers report no camera\n"
                              "  try: check the camera's cable and power\n");
}

TEST(ZqList, ProducerThatRefusesEndsWith1AndIsQuoted) {
    const ScriptedProducer producer;
    producer.Answer("TLOpen").With(GC_ERR_RESOURCE_IN_USE).Saying("driver (1.2) is held");
    Tool tool;
    EXPECT_EQ(tool.Run({"list"}), 1);
    EXPECT_EQ(tool.err.str(), "zq: opening the producer libzqgentl.cti failed\n"
                              "  why: -1004 GC_ERR_RESOURCE_IN_USE from TLOpen: driver (1.2) is held\n"
                              "  try: close the other program that uses the camera\n");
    EXPECT_TRUE(producer.NothingOpen());
}

} // namespace
