#pragma once

#include "ZqApi_TL/First.h"
