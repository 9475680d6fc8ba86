// What a module tells is asked for by its handle; without one the process stops and says so.
#include "ZqApi_TL/ZqDataStreamInfo.h"
#include "ZqApi_TL/ZqDeviceInfo.h"
#include "ZqApi_TL/ZqIFDeviceInfo.h"
#include "ZqApi_TL/ZqInterfaceInfo.h"
#include "ZqApi_TL/ZqPortInfo.h"
#include "ZqApi_TL/ZqPortURLInfo.h"
#include "ZqApi_TL/ZqStreamBufferInfo.h"
#include "ZqApi_TL/ZqSystemInfo.h"

#include <gtest/gtest.h>

namespace ZqApi {
namespace {

class InfoWithoutAHandle : public testing::Test {
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

/// What the assertion says, with the unit that reports.
std::string Assertion(const char* unit, const char* expression) {
    return "ZqApi_TL/" + std::string(unit) + ":[0-9]+: assertion failed: " + expression + " != NULL";
}

TEST_F(InfoWithoutAHandle, OfASystem) {
    CZqSystemInfo info;
    EXPECT_DEATH(info.GetVendor(), Assertion("ZqSystemInfo", "m_hTL"));
    EXPECT_DEATH(info.GetGenTLVersionMajor(), Assertion("ZqSystemInfo", "m_hTL"));
}

TEST_F(InfoWithoutAHandle, OfAnInterface) {
    const CZqInterfaceInfo info(nullptr, nullptr);
    EXPECT_DEATH(info.GetID(), Assertion("ZqInterfaceInfo", "m_hIF"));
}

TEST_F(InfoWithoutAHandle, OfAListedDevice) {
    const CZqIFDeviceInfo info(nullptr, nullptr, "DEV1");
    EXPECT_DEATH(info.GetVendor(), Assertion("ZqIFDeviceInfo", "m_hIF"));
    EXPECT_DEATH(info.GetAccessStatus(), Assertion("ZqIFDeviceInfo", "m_hIF"));
}

TEST_F(InfoWithoutAHandle, OfADevice) {
    const CZqDeviceInfo info(nullptr, nullptr);
    EXPECT_DEATH(info.GetVendor(), Assertion("ZqDeviceInfo", "m_hDevice"));
    EXPECT_DEATH(info.GetAccessStatus(), Assertion("ZqDeviceInfo", "m_hDevice"));
}

TEST_F(InfoWithoutAHandle, OfAStream) {
    const CZqDataStreamInfo info(nullptr, nullptr, nullptr, nullptr);
    EXPECT_DEATH(info.GetID(), Assertion("ZqDataStreamInfo", "m_hDataStream"));
    EXPECT_DEATH(info.GetBufAnnounceMin(), Assertion("ZqDataStreamInfo", "m_hDataStream"));
}

TEST_F(InfoWithoutAHandle, OfABuffer) {
    const CZqStreamBufferInfo info(nullptr, nullptr);
    EXPECT_DEATH(info.GetTLType(), Assertion("ZqStreamBufferInfo", "m_hStreamBuffer"));
    EXPECT_DEATH(info.GetWidth(), Assertion("ZqStreamBufferInfo", "m_hStreamBuffer"));
}

TEST_F(InfoWithoutAHandle, OfAPort) {
    const CZqPortInfo info(nullptr, nullptr);
    EXPECT_DEATH(info.GetID(), Assertion("ZqPortInfo", "m_hPort"));
    EXPECT_DEATH(info.IsLittleEndian(), Assertion("ZqPortInfo", "m_hPort"));
}

TEST_F(InfoWithoutAHandle, OfADescription) {
    const CZqPortURLInfo info(nullptr, nullptr);
    EXPECT_DEATH(info.GetURL(), Assertion("ZqPortURLInfo", "m_hPort"));
    EXPECT_DEATH(info.GetSchemaVerMajor(), Assertion("ZqPortURLInfo", "m_hPort"));
    size_t size = 0;
    EXPECT_DEATH(info.GetSha1HashBuffer(nullptr, &size), Assertion("ZqPortURLInfo", "m_hPort"));
}

} // namespace
} // namespace ZqApi
