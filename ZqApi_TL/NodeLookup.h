#pragma once

#include <ZqApi/Types.h>

#include "ZqSDKCommon/Error.h"

namespace ZqApi {

/// The node of that name. Throws GenICam::RuntimeException "Node %s not found.".
inline GenApi::INode* FindNode(const char* unit, int line, INodeMap* pNodeMap, const gcstring& name) {
    GenApi::INode* const pNode = pNodeMap->GetNode(name);
    if (pNode == nullptr)
        throw ReportError<GenICam::RuntimeException>(unit, line, "Node %s not found.", name.c_str());
    return pNode;
}

} // namespace ZqApi
