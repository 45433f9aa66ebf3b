// Whole archive files: the convention by which a document holds one object graph, and the tools
// that load, save and print such documents in either archive format.
//
// A binary document holds one root object written with CArchiveB::WriteObject. An XML document
// holds its root object as the child "Root" of the document element, saved by pointer (so it
// names its class). The format of a file is told by its first byte: after an optional byte-order
// mark and white space an XML document starts with '<'; anything else is read as binary.
#pragma once

#include "platform/VXExport.h"

#include "persist/SerObject.h"
#include "platform/VXString.h"

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>

namespace vx VX_API {

enum class ArchiveFormat { binary, xml };

// A file that cannot be read or written as an archive. The text names the problem and the file.
class CArchiveFileError : public std::runtime_error {
public:
    CArchiveFileError(const std::string &problem, const CVXString &path);
};

// The format of a document from its first bytes. An empty document is binary.
ArchiveFormat DetectArchiveFormat(const unsigned char *data, size_t size);
// The format of the file from its first bytes; CArchiveFileError if it cannot be read or is empty.
ArchiveFormat DetectArchiveFormat(const CVXString &path);
// The format a new file gets from its name: ".xml" (any case) is XML, anything else binary.
ArchiveFormat ArchiveFormatForPath(const CVXString &path);

// The root object of the file and everything it refers to; CArchiveFileError on a file that is
// missing, malformed, or names a class this program does not know.
std::unique_ptr<ISerObject> LoadArchiveRoot(const CVXString &path);
// Writes the object as the root of a new document in the format given.
void SaveArchiveRoot(const CVXString &path, const ISerObject &root, ArchiveFormat format);
// The XML text of an in-memory archive holding the object as its root.
CVXString ArchiveRootXML(const ISerObject &root);
// A readable listing of the file: its format, the root's class and schema, and the element tree
// with every field (for a binary file, the tree its root object gives in the XML archive).
std::string DumpArchive(const CVXString &path);

} // namespace VX_API
