// The general trace of the geometry: diagnostic lines that are no log messages and no assertion
// reports (for example "NonSimple polygon" from Draairichting). Nothing is written unless a sink
// is installed, as a debug trace stays silent in a release build.
#pragma once

#include "platform/VXExport.h"

namespace vx VX_API {

using GeometryTraceSink = void (*)(const char *text);

// Installs the sink for the general trace; null silences it again.
void SetGeometryTraceSink(GeometryTraceSink sink);

// Hands one line to the installed sink, if any.
void GeometryTrace(const char *text);

} // namespace VX_API
