#include "ZqApi_TL/ZqInterface.h"
#include "tests/unit/ZqApi_TL/LoadedProducer.h"

namespace ZqTest {
namespace {

/// A system of that vendor as its interfaces see it.
class VendorOnly final : public IZqSystemInside {
public:
    explicit VendorOnly(EZqSystemVendor_t vendor) : m_Vendor(vendor) {}

    void* RegisterCallback(IZqCallback*) override { return nullptr; }
    void DeregisterCallback(void*) override {}
    EZqSystemVendor_t GetZqSystemVendor() override { return m_Vendor; }
    IZqPort* GetIZqPort() override { return nullptr; }
    const IZqSystemInfo* GetIZqSystemInfo() override { return nullptr; }
    bool UpdateInterfaceList() override { return false; }
    uint32_t GetInterfaceCount() override { return 0; }
    IZqInterface* GetIZqInterface(size_t) override { return nullptr; }
    IZqDeviceReleasable* CreateFirstIZqDevice(DEVICE_ACCESS_FLAGS) override { return nullptr; }
    TL_HANDLE GetSystemHandle() override { return nullptr; }
    void AddRef() override {}
    void Release() override {}
    void StartEventAcquisitionThread() override {}
    void StopEventAcquisitionThread() override {}

private:
    const EZqSystemVendor_t m_Vendor;
};

class InterfaceOfVendor : public LoadedProducer {
protected:
    uint64_t TimeoutFor(EZqSystemVendor_t vendor) {
        bool8_t changed = false;
        EXPECT_EQ(CallProducer(genTL->TLUpdateInterfaceList, hTL, &changed, uint64_t{250}), GC_ERR_SUCCESS);
        IF_HANDLE hIF = nullptr;
        EXPECT_EQ(CallProducer(genTL->TLOpenInterface, hTL, "IF1", &hIF), GC_ERR_SUCCESS);
        VendorOnly system(vendor);
        CZqInterface interface(genTL.get(), &system, "IF1", hIF);
        return interface.GetUpdateDeviceListTimeout();
    }
};

TEST_F(InterfaceOfVendor, U3VWaitsLongerForTheDefaultVendorOnly) {
    EXPECT_EQ(TimeoutFor(ZqSystemVendor_Default), 500u);
    EXPECT_EQ(TimeoutFor(ZqSystemVendor_Euresys), 250u);
}

TEST_F(InterfaceOfVendor, HandleThatCouldNotBeClosedIsClosedOnceOnly) {
    expectNothingOpen = false;
    producer.Answer("IFClose").With(GC_ERR_IO);
    TimeoutFor(ZqSystemVendor_Default);
    EXPECT_EQ(producer.Log("IFClose"), (Calls{"IFClose(IF1) = -1010"}));
}

} // namespace
} // namespace ZqTest
