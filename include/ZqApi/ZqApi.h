#pragma once

/// The whole public interface.

#include <ZqApi/Callback.h>
#include <ZqApi/DataStream.h>
#include <ZqApi/Device.h>
#include <ZqApi/Error.h>
#include <ZqApi/EventCtrl.h>
#include <ZqApi/FeatureBag.h>
#include <ZqApi/Image.h>
#include <ZqApi/Interface.h>
#include <ZqApi/Library.h>
#include <ZqApi/PixelComponent.h>
#include <ZqApi/PixelFormat.h>
#include <ZqApi/Port.h>
#include <ZqApi/PtrArray.h>
#include <ZqApi/Releasable.h>
#include <ZqApi/StreamBuffer.h>
#include <ZqApi/System.h>
#include <ZqApi/Text.h>
#include <ZqApi/Types.h>
#include <ZqApi/Wait.h>
