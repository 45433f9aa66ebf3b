#include "persist/ArchiveFiles.h"

#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/RuntimeCreator.h"
#include "platform/CodePage.h"
#include "platform/Errors.h"
#include "platform/File.h"

#include <cctype>
#include <exception>
#include <string>

namespace vx {

namespace {

const char16_t kRootName[] = u"Root";

std::string Utf8(const CVXString &text) {
    const char16_t *p = text;
    return p ? WideToUtf8(p, static_cast<size_t>(text.GetLength())) : std::string();
}

bool IsBlank(unsigned char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Skips a byte-order mark; for UTF-16 the characters are read from their low (or high) byte.
size_t SkipMark(const unsigned char *data, size_t size, size_t &step) {
    step = 1;
    if (size >= 3 && data[0] == 0xEF && data[1] == 0xBB && data[2] == 0xBF) return 3;
    if (size >= 2 && data[0] == 0xFF && data[1] == 0xFE) {
        step = 2;
        return 2;
    }
    if (size >= 2 && data[0] == 0xFE && data[1] == 0xFF) {
        step = 2;
        return 3;
    }
    return 0;
}

std::string ClassLine(const ISerObject &root) {
    const CRuntimeCreator *creator = root.RuntimeCreator();
    if (!creator) return "root: (a class without a creator)\n";
    return "root: " + Utf8(creator->ClassName()) + " (schema " +
           std::to_string(creator->Schema() & ~VERSIONABLE_SCHEMA) + ")\n";
}

std::unique_ptr<ISerObject> LoadBinary(const CVXString &path) {
    CFile file(path, CFile::modeRead | CFile::typeBinary);
    CArchiveB ar(&file, CArchiveB::load);
    std::unique_ptr<ISerObject> root(ar.ReadObject(nullptr));
    if (!root) throw CArchiveFileError("the binary archive holds no root object", path);
    return root;
}

std::unique_ptr<ISerObject> LoadXml(const CVXString &path) {
    CArchiveX ar(path, true);
    if (!ar.IsValid() || !ar.GetCurrent())
        throw CArchiveFileError("not a well-formed XML archive", path);
    CArchiveX probe(ar);
    if (!probe.SeekElement(kRootName))
        throw CArchiveFileError("the XML archive has no element \"Root\"", path);
    ISerObject *object = nullptr;
    ar.Load(kRootName, object);
    if (!object) {
        const CVXString name(probe.GetCurrent()->GetAttribute(u"MFC_RUNTIME_TYPE"));
        throw CArchiveFileError("unknown class \"" + Utf8(name) + "\" of the root object", path);
    }
    return std::unique_ptr<ISerObject>(object);
}

// Runs `work`, turning every failure into a CArchiveFileError that names the file.
template <class F>
auto Guarded(const CVXString &path, const char *what, F work) -> decltype(work()) {
    try {
        return work();
    } catch (const CArchiveFileError &) {
        throw;
    } catch (const CArchiveBException &e) {
        throw CArchiveFileError(std::string(what) + ": bad binary archive (" + e.what() + ")",
                                path);
    } catch (const CVXComError &e) {
        throw CArchiveFileError(std::string(what) + ": " + Utf8(e.ErrorMessage()), path);
    } catch (const std::exception &e) {
        throw CArchiveFileError(std::string(what) + ": " + e.what(), path);
    }
}

} // namespace

CArchiveFileError::CArchiveFileError(const std::string &problem, const CVXString &path)
    : std::runtime_error(problem + ": " + Utf8(path)) {}

ArchiveFormat DetectArchiveFormat(const unsigned char *data, size_t size) {
    size_t step = 1;
    size_t i = SkipMark(data, size, step);
    while (i < size && IsBlank(data[i]))
        i += step;
    return i < size && data[i] == '<' ? ArchiveFormat::xml : ArchiveFormat::binary;
}

ArchiveFormat DetectArchiveFormat(const CVXString &path) {
    return Guarded(path, "cannot read the file", [&] {
        CFile file(path, CFile::modeRead | CFile::typeBinary);
        unsigned char head[256];
        const unsigned int n = file.Read(head, sizeof head);
        if (n == 0) throw CArchiveFileError("the file is empty", path);
        return DetectArchiveFormat(head, n);
    });
}

ArchiveFormat ArchiveFormatForPath(const CVXString &path) {
    const std::string name = Utf8(path);
    if (name.size() < 4) return ArchiveFormat::binary;
    std::string ext = name.substr(name.size() - 4);
    for (char &c : ext)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return ext == ".xml" ? ArchiveFormat::xml : ArchiveFormat::binary;
}

std::unique_ptr<ISerObject> LoadArchiveRoot(const CVXString &path) {
    const ArchiveFormat format = DetectArchiveFormat(path);
    return Guarded(path, "cannot load the archive",
                   [&] { return format == ArchiveFormat::xml ? LoadXml(path) : LoadBinary(path); });
}

void SaveArchiveRoot(const CVXString &path, const ISerObject &root, ArchiveFormat format) {
    Guarded(path, "cannot write the archive", [&] {
        // Opening first reports a file that cannot be written: the XML archive writes its
        // document on destruction, where a failure cannot be reported.
        CFile file(path, CFile::modeCreate | CFile::modeWrite | CFile::typeBinary);
        if (format == ArchiveFormat::xml) {
            file.Close();
            CArchiveX ar(path, false);
            ar.Save(kRootName, &root);
            return;
        }
        CArchiveB ar(&file, CArchiveB::store);
        ar.WriteObject(&root);
        ar.Close();
        file.Close();
    });
}

CVXString ArchiveRootXML(const ISerObject &root) {
    CArchiveX ar(false);
    ar.Save(kRootName, &root);
    return ar.XML();
}

std::string DumpArchive(const CVXString &path) {
    const ArchiveFormat format = DetectArchiveFormat(path);
    std::string out = "archive: " + Utf8(path) + "\n";
    if (format == ArchiveFormat::binary) {
        const std::unique_ptr<ISerObject> root = LoadArchiveRoot(path);
        out += "format: binary\n" + ClassLine(*root);
        return out + Guarded(path, "cannot list the archive",
                             [&] { return Utf8(ArchiveRootXML(*root)); });
    }
    // The XML is listed as it stands, so a root of a class this program does not know is shown
    // too (by its element's class name) rather than refused.
    return out + Guarded(path, "cannot list the archive", [&] {
               CArchiveX ar(path, true);
               if (!ar.IsValid() || !ar.GetCurrent())
                   throw CArchiveFileError("not a well-formed XML archive", path);
               if (!ar.SeekElement(kRootName))
                   throw CArchiveFileError("the XML archive has no element \"Root\"", path);
               const CVXComWrap<IDomElement> &element = ar.GetCurrent();
               const CVXString name(element->GetAttribute(u"MFC_RUNTIME_TYPE"));
               const CVXString schema(element->GetAttribute(u"MFC_RUNTIME_TYPE_SCHEMA"));
               return "format: XML\nroot: " + Utf8(name) + " (schema " + Utf8(schema) + ")\n" +
                      Utf8(ar.XML());
           });
}

} // namespace vx
