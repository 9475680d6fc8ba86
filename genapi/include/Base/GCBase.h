#pragma once

/// Includes the whole base of the node-map interface.

#include <Base/GCException.h>
#include <Base/GCString.h>
#include <Base/GCStringVector.h>
#include <Base/GCTypes.h>
