// VXCommon: the umbrella header. Includes every public header of the library.
#pragma once

// platform: the portable stand-ins of the original platform
#include "platform/Assert.h"
#include "platform/Bstr.h"
#include "platform/CodePage.h"
#include "platform/Errors.h"
#include "platform/File.h"
#include "platform/FileReplacement.h"
#include "platform/Geometry2D.h"
#include "platform/Guid.h"
#include "platform/Lists.h"
#include "platform/Object.h"
#include "platform/Resources.h"
#include "platform/UserPrompt.h"
#include "platform/VXTypes.h"

// foundation: strings, numbers and text, files and paths, dates
#include "foundation/NumberText.h"
#include "foundation/VXFile.h"
#include "foundation/VXODateTime.h"
#include "foundation/VXVariant.h"
#include "persist/VXStringArray.h"
#include "persist/VXStringList.h"
#include "platform/FormatArgs.h"
#include "platform/VXString.h"

// persist: serialisable objects, collections, archives
#include "persist/ArchiveB.h"
#include "persist/ArchiveFiles.h"
#include "persist/ArchiveX.h"
#include "persist/Dom.h"
#include "persist/LoadedObjects.h"
#include "persist/PointerIndex.h"
#include "persist/RTCTree.h"
#include "persist/RuntimeCreator.h"
#include "persist/SerCollections.h"
#include "persist/SerObject.h"
#include "persist/XmlWriter.h"

// geometry: coordinates, point sequences, intersections, extents
#include "geometry/ClipList.h"
#include "geometry/Deel.h"
#include "geometry/Extents.h"
#include "geometry/LineArc.h"
#include "geometry/PuntInPoly.h"
#include "geometry/Tolerances.h"
#include "geometry/VXCoord.h"
#include "geometry/VXCoordArr.h"

// geodesy: ellipsoids, projections, national grids
#include "geodesy/Angles.h"
#include "geodesy/Ellipsoid.h"
#include "geodesy/Geoid.h"
#include "geodesy/NationalGrid.h"
#include "geodesy/OutputSystem.h"
#include "geodesy/OutputSystemArray.h"
#include "geodesy/ProjLambert.h"
#include "geodesy/ProjNone.h"
#include "geodesy/ProjRSO.h"
#include "geodesy/ProjStereo.h"
#include "geodesy/ProjSwiss.h"
#include "geodesy/ProjTM.h"

// transform: matrices, Helmert tables
#include "transform/Trans.h"
#include "transform/TransHelmert.h"

// storage: trees, caches, file-backed arrays
#include "storage/BoolArray.h"
#include "storage/Cache.h"
#include "storage/CachedFile.h"
#include "storage/FileAt.h"
#include "storage/PtrSplayTree2.h"
#include "storage/PtrTree.h"
#include "storage/ULongArrayFile.h"
#include "storage/VXStringMap.h"

// instrument: instrument records
#include "instrument/Instrument.h"
#include "instrument/TachyWrn.h"

// text: text files, message lists
#include "text/AsciiFile.h"
#include "text/AsciiMeldingen.h"
#include "text/Progress.h"
#include "text/TextFile.h"

// device: serial link
#include "device/CommTypes.h"
#include "device/Communicatie.h"

// host: logging
#include "host/Logger.h"
