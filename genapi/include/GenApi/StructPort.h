#pragma once

#include <GenApi/IPort.h>

#include <cstring>

namespace GENAPI_NAMESPACE {

/// A struct as a register space that starts at `BaseAddress`. OutOfRangeException for an access outside. One
/// thread at a time; a node map it is connected to provides that.
template <class CDataStruct>
class CTestPortStruct : public CDataStruct, virtual public IPort {
public:
    explicit CTestPortStruct(int64_t BaseAddress = 0) : CDataStruct(), m_baseAddress(BaseAddress) {}
    ~CTestPortStruct() override {}

    EAccessMode GetAccessMode() const override { return RW; }
    void Read(void* pBuffer, int64_t Address, int64_t Length) override {
        std::memcpy(pBuffer, Place(Address, Length), static_cast<size_t>(Length));
    }
    void Write(const void* pBuffer, int64_t Address, int64_t Length) override {
        std::memcpy(Place(Address, Length), pBuffer, static_cast<size_t>(Length));
    }

private:
    uint8_t* Place(int64_t address, int64_t length) {
        const uint64_t offset = static_cast<uint64_t>(address) - static_cast<uint64_t>(m_baseAddress);
        if (length < 0 || offset > sizeof(CDataStruct) ||
            static_cast<uint64_t>(length) > sizeof(CDataStruct) - offset)
            throw OUT_OF_RANGE_EXCEPTION("%lld bytes at 0x%llx lie outside the struct",
                                         static_cast<long long>(length),
                                         static_cast<unsigned long long>(address));
        return reinterpret_cast<uint8_t*>(static_cast<CDataStruct*>(this)) + offset;
    }

    int64_t m_baseAddress;
};

} // namespace GENAPI_NAMESPACE
