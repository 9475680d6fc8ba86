#include "ZqSDKCommon/IZqPixelComponentValueInside.h"

#include "ZqSDKCommon/Error.h"

namespace ZqApi {
namespace {

constexpr const char* UNIT = "ZqApi_TL/ZqPixelComponent";

class CZqPixelComponent final : public IZqPixelComponentValueInside {
public:
    size_t GetCount() override { return 0; }
    uint64_t GetValue(size_t) override { Refuse(); }
    EZqPixelComponent_t GetPixelComponent(size_t) override { Refuse(); }
    void SetPixelComponent(IZqImage*, size_t, size_t) override { Refuse(); }

private:
    [[noreturn]] static void Refuse() {
        throw ReportError<GenICam::RuntimeException>(UNIT, __LINE__,
                                                     "Reading pixel components is not implemented yet.");
    }
};

} // namespace

std::unique_ptr<IZqPixelComponentValueInside> CreatePixelComponentReader() {
    return std::make_unique<CZqPixelComponent>();
}

} // namespace ZqApi
