#pragma once

#include "ZqApi_TL/Second.h"
