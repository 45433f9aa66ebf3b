// The synthetic project of `vx demo`: made by the tool itself, so that the sample data of the
// source tree can be regenerated and checked.
#pragma once

#include <string>

namespace vxtool {

// Writes the project to `path` (".xml": the XML archive, anything else the binary one): an array
// of the projection (RDNAPTRANS 2008), the plan boundary and five parcels, all synthetic.
void WriteDemoProject(const std::string &path);

} // namespace vxtool
