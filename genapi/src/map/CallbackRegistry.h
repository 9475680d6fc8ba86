#pragma once

#include <GenApi/INode.h>

namespace GENAPI_NAMESPACE::inside {

/// Knows which node a handle belongs to, for callers that have nothing but the handle. Any thread.
CallbackHandleType NewCallbackHandle(INode* node);
void ForgetCallbackHandle(CallbackHandleType handle);
/// Null when there is no such handle.
INode* NodeOfCallback(CallbackHandleType handle);

} // namespace GENAPI_NAMESPACE::inside
