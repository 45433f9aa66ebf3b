#include "persist/ArchiveFiles.h"

#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/RuntimeCreator.h"
#include "platform/CodePage.h"
#include "platform/Errors.h"
#include "platform/File.h"
#include "platform/FileReplacement.h"

#include <pugixml.hpp>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>
#include <string>

namespace vx {

namespace {

const char16_t kRootName[] = u"Root";
const char kRootElement[] = "Root";

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

// The file is read under a shared lock: readers do not exclude each other, a writer excludes
// them.
constexpr unsigned int kReadFlags = CFile::modeRead | CFile::shareDenyWrite | CFile::typeBinary;

ISerObject *LoadBinary(const CVXString &path) {
    CFile file(path, kReadFlags);
    CArchiveB ar(&file, CArchiveB::load, CArchiveB::kLargeBufferSize);
    ISerObject *root = ar.ReadObject(nullptr);
    if (!root) throw CArchiveFileError("the binary archive holds no root object", path);
    return root;
}

ISerObject *LoadXml(const CVXString &path) {
    const CFile lock(path, kReadFlags);
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
    return object;
}

// The system's reason for a failed file operation, without the file's name (the message names
// the file the caller asked for, once).
std::string FileReason(const CFileException &e) {
    return e.m_lOsError != 0 ? std::strerror(e.m_lOsError) : e.what();
}

// Runs `work`, turning every failure into a CArchiveFileError that names the file.
template <class F>
auto Guarded(const CVXString &path, const char *what, F work) -> decltype(work()) {
    try {
        return work();
    } catch (const CArchiveFileError &) {
        throw;
    } catch (const CFileException &e) {
        throw CArchiveFileError(std::string(what) + ": " + FileReason(e), path);
    } catch (const CArchiveBException &e) {
        if (!e.Reason().empty())
            throw CArchiveFileError(std::string(what) + ": " + e.Reason(), path);
        throw CArchiveFileError(std::string(what) + ": bad binary archive (" + e.what() + ")",
                                path);
    } catch (const CVXComError &e) {
        throw CArchiveFileError(std::string(what) + ": " + Utf8(e.ErrorMessage()), path);
    } catch (const std::exception &e) {
        throw CArchiveFileError(std::string(what) + ": " + e.what(), path);
    }
}

// Holds an existing target under an exclusive lock while it is replaced: a writer excludes the
// readers and the other writers of the file. A target that does not exist, or that cannot be
// opened for another reason than a lock, is not held (the rename decides).
class CTargetLock {
public:
    explicit CTargetLock(const CVXString &target) {
        CFileException error;
        if (m_file.Open(target, CFile::modeRead | CFile::shareExclusive | CFile::typeBinary,
                        &error))
            return;
        if (error.m_cause == CFileException::sharingViolation)
            throw CFileException(error.m_cause, error.m_lOsError);
    }

private:
    CFile m_file;
};

void WriteDocument(CFile &file, const ISerObject &root, ArchiveFormat format) {
    if (format == ArchiveFormat::xml) {
        // The document of a file archive (root "VXXMLArchive") built in memory: no name, so the
        // archive writes nothing itself; the text goes through the checked file.
        CArchiveX ar(CVXString(), false);
        ar.Save(kRootName, &root);
        const std::string text = Utf8(ar.XML());
        file.Write(text.data(), static_cast<unsigned int>(text.size()));
        return;
    }
    CArchiveB ar(&file, CArchiveB::store, CArchiveB::kLargeBufferSize);
    ar.WriteObject(&root);
    ar.Close();
}

// The element tree below `top` as indented XML, one element per line.
class CListing {
public:
    std::string Of(const pugi::xml_node &top) {
        pugi::xml_node node = top;
        int depth = 0;
        for (;;) {
            Open(node, depth);
            if (HasContent(node)) {
                node = node.first_child();
                ++depth;
                continue;
            }
            // Up until a node has a next sibling, closing what is left.
            while (node != top && !node.next_sibling()) {
                node = node.parent();
                --depth;
                Close(node, depth);
            }
            if (node == top) return m_out;
            node = node.next_sibling();
        }
    }

private:
    static bool HasContent(const pugi::xml_node &n) {
        return n.type() == pugi::node_element && n.first_child();
    }
    void Indent(int depth) {
        m_out.append(static_cast<size_t>(std::min(depth, kMaxListingIndent)), '\t');
    }
    static void Escaped(std::string &out, const char *text) {
        for (; *text; ++text) {
            switch (*text) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                out += *text;
            }
        }
    }
    void Open(const pugi::xml_node &n, int depth) {
        Indent(depth);
        if (n.type() != pugi::node_element) {
            Escaped(m_out, n.value());
            m_out += '\n';
            return;
        }
        m_out += '<';
        m_out += n.name();
        for (const pugi::xml_attribute &a : n.attributes()) {
            m_out += ' ';
            m_out += a.name();
            m_out += "=\"";
            Escaped(m_out, a.value());
            m_out += '"';
        }
        m_out += HasContent(n) ? ">\n" : " />\n";
    }
    void Close(const pugi::xml_node &n, int depth) {
        Indent(depth);
        m_out += "</";
        m_out += n.name();
        m_out += ">\n";
    }

    std::string m_out;
};

// The listing of a whole document: the declaration and the tree of its element.
std::string ListDocument(const pugi::xml_document &doc) {
    const pugi::xml_node element = doc.document_element();
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + CListing().Of(element);
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
        CFile file(path, kReadFlags);
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

CLoadedArchive LoadArchiveRoot(const CVXString &path) {
    const ArchiveFormat format = DetectArchiveFormat(path);
    auto objects = std::make_unique<CLoadedObjects>();
    ISerObject *root = nullptr;
    {
        // A failure leaves the owner to free what the load had made.
        const CLoadedObjects::CCollector collect(*objects);
        root = Guarded(path, "cannot load the archive", [&] {
            return format == ArchiveFormat::xml ? LoadXml(path) : LoadBinary(path);
        });
    }
    return CLoadedArchive(std::move(objects), root);
}

void SaveArchiveRoot(const CVXString &path, const ISerObject &root, ArchiveFormat format) {
    Guarded(path, "cannot write the archive", [&] {
        const CTargetLock lock(path);
        CFileReplacement replacement(path);
        CFile file(replacement.TempPath(), CFile::modeCreate | CFile::modeWrite |
                                               CFile::shareExclusive | CFile::typeBinary);
        WriteDocument(file, root, format);
        file.Flush(); // to the disk before the rename, or a crash could leave an empty target
        file.Close();
        replacement.Commit();
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
        const CLoadedArchive loaded = LoadArchiveRoot(path);
        out += "format: binary\n" + ClassLine(loaded.Root());
        return out + Guarded(path, "cannot list the archive", [&] {
                   const std::string text = Utf8(ArchiveRootXML(loaded.Root()));
                   pugi::xml_document doc;
                   doc.load_buffer(text.data(), text.size(), pugi::parse_default,
                                   pugi::encoding_utf8);
                   return ListDocument(doc);
               });
    }
    // The XML is listed as it stands, so a root of a class this program does not know is shown
    // too (by its element's class name) rather than refused.
    return out + Guarded(path, "cannot list the archive", [&] {
               const CFile lock(path, kReadFlags);
               pugi::xml_document doc;
               const pugi::xml_node top = doc.load_file(static_cast<const char *>(path))
                                              ? doc.document_element()
                                              : pugi::xml_node();
               if (!top) throw CArchiveFileError("not a well-formed XML archive", path);
               const pugi::xml_node element = top.child(kRootElement);
               if (!element)
                   throw CArchiveFileError("the XML archive has no element \"Root\"", path);
               return std::string("format: XML\nroot: ") +
                      element.attribute("MFC_RUNTIME_TYPE").value() + " (schema " +
                      element.attribute("MFC_RUNTIME_TYPE_SCHEMA").value() + ")\n" +
                      ListDocument(doc);
           });
}

} // namespace vx
