#pragma once

#include "tools/zq/Picture.h"

namespace ZqTool {

/// The colour picture of a mosaic: at each pixel the two colours that the sensor does not have there are the
/// means of its nearest neighbours (bilinear). A picture without a mosaic stays as it is.
Picture Demosaic(Picture mosaic);

} // namespace ZqTool
