// Whole archive files: the convention by which a document holds one object graph, and the tools
// that load, save and print such documents in either archive format.
//
// A binary document holds one root object written with CArchiveB::WriteObject. An XML document
// holds its root object as the child "Root" of the document element, saved by pointer (so it
// names its class). The format of a file is told by its first byte: after an optional byte-order
// mark and white space an XML document starts with '<'; anything else is read as binary.
#pragma once

#include "platform/VXExport.h"

#include "persist/LoadedObjects.h"
#include "persist/SerObject.h"
#include "platform/VXString.h"

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

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

// A loaded document: its root object and the owner of every object the load created. The
// graph lives as long as this object (or its owner, when moved out) does; a host that keeps
// parts of it longer takes them out of the owner with CLoadedObjects::Release.
class CLoadedArchive {
public:
    CLoadedArchive(std::unique_ptr<CLoadedObjects> objects, ISerObject *root)
        : m_pObjects(std::move(objects)), m_pRoot(root) {}

    ISerObject &Root() const { return *m_pRoot; }
    CLoadedObjects &Objects() const { return *m_pObjects; }

private:
    std::unique_ptr<CLoadedObjects> m_pObjects;
    ISerObject *m_pRoot;
};

// The root object of the file and everything it refers to; CArchiveFileError on a file that is
// missing, malformed, or names a class this program does not know. A failed load frees every
// object it had created. The file is read under a shared lock: readers do not exclude each
// other, but a writer of the same file (through SaveArchiveRoot) excludes them.
CLoadedArchive LoadArchiveRoot(const CVXString &path);
// Writes the object as the root of a new document in the format given. The document goes to a
// new file beside the target, every write and the close are checked, the file is synchronised
// to the disk and only then renamed over the target: on any failure (a full disk, a kill) the
// target is left as it was, and CArchiveFileError names the target and the cause. A target that
// exists keeps its permission bits; it is locked exclusively while it is replaced.
void SaveArchiveRoot(const CVXString &path, const ISerObject &root, ArchiveFormat format);
// The XML text of an in-memory archive holding the object as its root.
CVXString ArchiveRootXML(const ISerObject &root);
// A readable listing of the file: its format, the root's class and schema, and the element tree
// with every field (for a binary file, the tree its root object gives in the XML archive). The
// tree is indented one tab a level up to kMaxListingIndent levels and no further, so that the
// listing grows with the document, not with the square of its depth.
constexpr int kMaxListingIndent = 32;
std::string DumpArchive(const CVXString &path);

} // namespace VX_API
