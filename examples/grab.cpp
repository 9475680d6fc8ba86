// Grabs one image from the first camera and prints its size. GENICAM_GENTL64_PATH names the producer's
// folder.
#include <ZqApi/ZqApi.h>

#include <cstdio>

int main() try {
    ZqApi::ZqApiInitialize(ZqApi::ZqApiBuildVersion);
    auto* system = ZqApi::CreateIZqSystem(ZqApi::ZqSystemVendor_Default, ZqApi::ZqInterfaceType_All);
    auto* device = system->CreateFirstIZqDevice(ZqApi::DEVICE_ACCESS_CONTROL);
    auto* stream = device->CreateIZqDataStream(0, nullptr);
    stream->StartAcquisition(GENTL_INFINITE, ZqApi::ACQ_START_FLAGS_DEFAULT);
    device->AcquisitionStart();
    auto* buffer = stream->RetrieveBuffer(5000, ZqApi::ZqTimeoutHandling_ThrowException);
    auto* image = buffer->GetIZqImage();
    std::printf("%zu x %zu pixels\n", image->GetImageWidth(), image->GetImageHeight());
    buffer->Release();
    device->AcquisitionStop();
    stream->StopAcquisition(ZqApi::ACQ_STOP_FLAGS_DEFAULT);
    stream->Release();
    device->Release();
    system->Release();
    ZqApi::ZqApiTerminate();
} catch (const GenICam::GenericException& error) {
    std::fprintf(stderr, "%s\n", error.GetDescription());
    return 1;
}
