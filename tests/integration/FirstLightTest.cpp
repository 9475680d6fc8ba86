#include <set>
#include <vector>

#include "tests/integration/Cameras.h"

namespace ZqTest {
namespace {

using FirstLight = Cameras;

TEST_F(FirstLight, ThreeInterfacesHaveACameraEach) {
    ASSERT_EQ(system->GetInterfaceCount(), 3u);
    std::vector<std::string> found;
    for (size_t i = 0; i < 3; ++i) {
        IZqInterface* const interface = system->GetIZqInterface(i);
        ASSERT_EQ(interface->GetDeviceCount(), 1u);
        found.push_back(std::string(interface->GetIZqInterfaceInfo()->GetTLType().c_str()) + " " +
                        interface->GetIZqDeviceInfo(0)->GetSerialNumber().c_str());
    }
    EXPECT_EQ(found, (std::vector<std::string>{"U3V SIM-U3V-0001", "GEV SIM-GEV-0001", "CXP SIM-CXP-0001"}));
}

TEST_F(FirstLight, EachCameraDeliversDifferentPicturesOfItsOwnDescription) {
    for (size_t camera = 0; camera < 3; ++camera) {
        SCOPED_TRACE(camera);
        Device device = Open(camera);
        SetSize(device, 320, 200);
        RunFreely(device);
        Stream stream = OpenStream(device);
        Start(device, stream);
        std::set<std::string> pictures;
        for (uint64_t frame = 0; frame < 10; ++frame) {
            const Buffer buffer(stream->RetrieveBuffer(5000, ZqTimeoutHandling_ThrowException));
            ASSERT_NE(buffer, nullptr);
            EXPECT_FALSE(buffer->GetIZqStreamBufferInfo()->IsIncomplete());
            EXPECT_EQ(buffer->GetIZqStreamBufferInfo()->GetFrameID(), frame);
            IZqImage* const image = buffer->GetIZqImage();
            EXPECT_EQ(image->GetImageWidth(), 320u);
            EXPECT_EQ(image->GetImageHeight(), 200u);
            EXPECT_EQ(image->GetImageLinePitch(), 320u);
            EXPECT_EQ(image->GetImagePlanePitch(), 64000u);
            EXPECT_EQ(image->GetImagePixelFormat(), ZqPixelFormat_Mono8);
            pictures.emplace(static_cast<const char*>(image->GetImageBuffer()), 64000);
        }
        EXPECT_EQ(pictures.size(), 10u);
        Stop(device, stream);
    }
}

TEST_F(FirstLight, EveryModuleHasAFeatureTree) {
    Device device = Open(1);
    Stream stream = OpenStream(device);
    IZqPort* const ports[] = {system->GetIZqPort(), system->GetIZqInterface(1)->GetIZqPort(),
                              device->GetLocalIZqPort(), device->GetRemoteIZqPort(), stream->GetIZqPort()};
    const char* const features[] = {"TLID", "InterfaceID", "DeviceID", "DeviceModelName", "StreamID"};
    for (size_t i = 0; i < 5; ++i) {
        GenApi::CStringPtr feature = ports[i]->GetINodeMap()->GetNode(features[i]);
        ASSERT_TRUE(feature.IsValid()) << features[i];
        EXPECT_NE(feature->GetValue(), "") << features[i];
    }
}

TEST_F(FirstLight, EveryFeatureOfEveryTreeCanBeRead) {
    Device device = Open(1);
    Stream stream = OpenStream(device);
    IZqPort* const ports[] = {system->GetIZqPort(), system->GetIZqInterface(1)->GetIZqPort(),
                              device->GetLocalIZqPort(), device->GetRemoteIZqPort(), stream->GetIZqPort()};
    size_t read = 0;
    for (IZqPort* const port : ports) {
        GenApi::NodeList_t nodes;
        port->GetINodeMap()->GetNodes(nodes);
        for (GenApi::INode* const node : nodes) {
            GenApi::CValuePtr value = node;
            if (!value.IsValid() || !GenApi::IsReadable(node))
                continue;
            EXPECT_NO_THROW(value->ToString()) << node->GetName().c_str();
            ++read;
        }
    }
    EXPECT_GT(read, 100u);
}

TEST_F(FirstLight, SettingsObeyTheCamera) {
    Device device = Open(0);
    GenApi::CIntegerPtr width = Integer(device, "Width");
    EXPECT_THROW(width->SetValue(width->GetMax() + width->GetInc()), GenICam::OutOfRangeException);
    width->SetValue(width->GetMin());
    EXPECT_EQ(width->GetValue(), width->GetMin());
    EXPECT_EQ(Integer(device, "OffsetX")->GetMax(),
              Integer(device, "WidthMax")->GetValue() - width->GetValue());
    Integer(device, "TLParamsLocked")->SetValue(1);
    EXPECT_FALSE(GenApi::IsWritable(width));
    EXPECT_THROW(width->SetValue(width->GetMin()), GenICam::AccessException);
    Integer(device, "TLParamsLocked")->SetValue(0);
    EXPECT_TRUE(GenApi::IsWritable(width));
}

TEST_F(FirstLight, FiniteAcquisitionDeliversItsFramesAndEndsByItself) {
    Device device = Open(2);
    RunFreely(device);
    Stream stream = OpenStream(device);
    Start(device, stream, 20);
    for (int frame = 0; frame < 20; ++frame)
        ASSERT_NE(Buffer(stream->RetrieveBuffer(5000, ZqTimeoutHandling_ThrowException)), nullptr);
    EXPECT_EQ(stream->RetrieveBuffer(100, ZqTimeoutHandling_ReturnNull), nullptr);
    EXPECT_EQ(stream->GetIZqDataStreamInfo()->GetNumDelivered(), 20u);
    EXPECT_FALSE(stream->IsGrabbing());
    Stop(device, stream);
}

TEST_F(FirstLight, RatesAreMeasured) {
    Device device = Open(0);
    SetSize(device, 64, 64);
    GenApi::CFloatPtr rate = device->GetRemoteIZqPort()->GetINodeMap()->GetNode("AcquisitionFrameRate");
    rate->SetValue(100.0);
    Stream stream = OpenStream(device);
    Start(device, stream);
    for (int frame = 0; frame < 50; ++frame)
        Buffer(stream->RetrieveBuffer(5000, ZqTimeoutHandling_ThrowException));
    EXPECT_NEAR(stream->GetCurrentFPS(), 100.0, 30.0);
    EXPECT_NEAR(stream->GetCurrentBPS(), 409600.0, 122880.0);
    Stop(device, stream);
}

TEST_F(FirstLight, ReadOnlyDeviceShowsItsFeaturesAndRefusesWrites) {
    Device device = Open(1, DEVICE_ACCESS_READONLY);
    GenApi::CIntegerPtr width = Integer(device, "Width");
    EXPECT_EQ(width->GetValue(), 640);
    EXPECT_FALSE(GenApi::IsWritable(width));
    EXPECT_THROW(width->SetValue(64), GenICam::RuntimeException);
}

} // namespace
} // namespace ZqTest
