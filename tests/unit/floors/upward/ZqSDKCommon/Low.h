#pragma once

#include "ZqApi_TL/High.h"
