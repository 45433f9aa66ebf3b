// The library's text type lives with the platform stand-ins, at the bottom of the layers,
// because files, errors and resources below foundation/ need it too. This header keeps the
// name under which users have always reached it.
#pragma once

#include "platform/VXString.h"
