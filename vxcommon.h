// VXCommon: the umbrella header. Includes every public header of the library.
#pragma once

// platform: the portable stand-ins of the original platform
#include "platform/Assert.h"
#include "platform/Bstr.h"
#include "platform/CodePage.h"
#include "platform/Errors.h"
#include "platform/File.h"
#include "platform/Geometry2D.h"
#include "platform/Guid.h"
#include "platform/Lists.h"
#include "platform/Object.h"
#include "platform/Resources.h"
#include "platform/UserPrompt.h"
#include "platform/VXTypes.h"

// foundation: strings, numbers and text, files and paths, dates
#include "foundation/FormatArgs.h"
#include "foundation/VXString.h"
#include "foundation/VXStringArray.h"
#include "foundation/VXStringList.h"

// persist: serialisable objects, collections, archives
#include "persist/SerCollections.h"
#include "persist/SerObject.h"

// geometry: coordinates, point sequences, intersections, extents

// geodesy: ellipsoids, projections, national grids

// transform: matrices, Helmert tables

// storage: trees, caches, file-backed arrays

// instrument: instrument records

// text: text files, message lists

// device: serial link

// host: logging
