// Lines in files: reading a file of any of the three kinds the tool takes (WKT text, an XML
// archive, a binary archive), told apart by their content; saving lines as an archive; writing
// a text file so that it replaces its target only when it is complete.
//
// The section codes of points are in neither serial form of a point, so an archive alone would
// bring every line back as straight stretches. An archive that these tools write therefore
// holds, as its root, an array in which every line (an array of points) is followed by a word
// array of its section codes. Reading accepts that form and also lines as hosts store them:
// a root that is an array of points, or arrays and lists of such arrays at any depth. A line
// without a code array after it is read as straight stretches.
#pragma once

#include "Lines.h"

#include "persist/SerCollections.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace vxinterchange {

enum class InputKind { wkt, xmlArchive, binaryArchive };

// By the first byte after an optional UTF-8 byte-order mark and white space: '<' is an XML
// archive, a letter is WKT, anything else (a binary archive starts with its class tag) binary.
InputKind SniffInput(const unsigned char *data, size_t size);

// A file larger than this is refused before it is read.
inline constexpr size_t kMaxInputBytes = size_t{256} << 20;

// Every line of the file. Failures raise std::runtime_error with a message that names the file
// and, for WKT, the position of the error: "FILE: at character N: expected ...".
Lines ReadLinesFile(const std::string &path);

// The lines of an archive's root object, in the form described above.
Lines LinesOfArchiveRoot(const vx::ISerObject &root);

// The code arrays that AddLinesWithCodes makes; they must live as long as the array.
using CodeArrays = std::vector<std::unique_ptr<vx::CVXWordArray>>;

// Appends every line to the array, each followed by the word array of its section codes, in the
// form described above.
void AddLinesWithCodes(vx::CSerObArray &root, const Lines &lines, CodeArrays &codes);

// Saves the lines as an archive whose format follows the name (".xml" is XML, anything else
// binary), through the library's atomic save; vx::CArchiveFileError on failure.
void SaveLinesArchive(const std::string &path, const Lines &lines);

// Writes the text through the library's replace-beside-and-rename writer (WriteFileReplacing):
// on any failure the target is left as it was, and std::runtime_error names the target and the
// system's reason.
void WriteTextFile(const std::string &path, const std::string &text);

} // namespace vxinterchange
