#include "LineFiles.h"

#include "Wkt.h"

#include "persist/ArchiveFiles.h"
#include "persist/SerCollections.h"
#include "platform/File.h"
#include "platform/FileReplacement.h"
#include "platform/VXString.h"

#include <cctype>
#include <cstring>
#include <stdexcept>

namespace vxinterchange {

namespace {

using vx::CFile;
using vx::CVXCoord;
using vx::CVXCoordArr;
using vx::CVXString;

constexpr unsigned int kReadFlags = CFile::modeRead | CFile::shareDenyWrite | CFile::typeBinary;
// CFile reads at most this many bytes in one call.
constexpr size_t kMaxChunk = size_t{1} << 30;

std::string Reason(const vx::CFileException &e) {
    return e.m_lOsError != 0 ? std::strerror(e.m_lOsError) : e.what();
}

std::string ReadAll(const std::string &path) {
    try {
        CFile file(CVXString(path.c_str()), kReadFlags);
        const uint64_t length = file.GetLength();
        if (length > kMaxInputBytes)
            throw std::runtime_error(path + ": the file is larger than 256 MiB");
        std::string data(static_cast<size_t>(length), '\0');
        size_t got = 0;
        while (got < data.size()) {
            const size_t want = std::min(data.size() - got, kMaxChunk);
            const unsigned int n = file.Read(data.data() + got, static_cast<unsigned int>(want));
            if (n == 0) break;
            got += n;
        }
        data.resize(got);
        return data;
    } catch (const vx::CFileException &e) {
        throw std::runtime_error(path + ": cannot read the file: " + Reason(e));
    }
}

bool IsPointRun(const vx::CSerObArray &array) {
    if (array.GetSize() == 0) return false;
    for (int32_t i = 0; i < array.GetSize(); ++i)
        if (!dynamic_cast<const CVXCoord *>(array.GetAt(i))) return false;
    return true;
}

// A line of straight stretches through the points of the array.
LinePtr StraightLine(const vx::CSerObArray &array) {
    auto line = std::make_unique<CVXCoordArr>();
    for (int32_t i = 0; i < array.GetSize(); ++i) {
        const int k = line->Add(static_cast<const CVXCoord *>(array.GetAt(i)));
        line->GetAt(k)->SetSectie(static_cast<char>(i == 0 ? vx::nSectieStart : vx::nSectieRecht));
    }
    line->SetUnChanged();
    return line;
}

// Gathers the lines of an object graph in the order of its containers.
class CLineCollector {
public:
    Lines Take() { return std::move(m_lines); }

    void Object(const vx::CSerObject *object) {
        if (const auto *array = dynamic_cast<const vx::CSerObArray *>(object)) {
            if (IsPointRun(*array)) {
                m_lines.push_back(StraightLine(*array));
                return;
            }
            Elements(array->GetSize(), [&](int32_t i) { return array->GetAt(i); });
        } else if (const auto *list = dynamic_cast<const vx::CSerObList *>(object)) {
            vx::POSITION pos = list->GetHeadPosition();
            std::vector<const vx::CSerObject *> elements;
            while (pos)
                elements.push_back(list->GetNext(pos));
            Elements(static_cast<int32_t>(elements.size()),
                     [&](int32_t i) { return elements[static_cast<size_t>(i)]; });
        }
    }

private:
    // The elements in order; a word array right after a line gives that line's codes.
    template <class At>
    void Elements(int32_t count, At at) {
        bool afterLine = false; // the element before was a line, the last one gathered
        for (int32_t i = 0; i < count; ++i) {
            const vx::CSerObject *element = at(i);
            const auto *codes = dynamic_cast<const vx::CVXWordArray *>(element);
            if (codes && afterLine) {
                ApplyCodes(*m_lines.back(), *codes);
                afterLine = false;
                continue;
            }
            Object(element);
            const auto *array = dynamic_cast<const vx::CSerObArray *>(element);
            afterLine = array && IsPointRun(*array);
        }
    }

    void ApplyCodes(CVXCoordArr &line, const vx::CVXWordArray &codes) const {
        const std::string which = "line " + std::to_string(m_lines.size());
        if (codes.GetSize() != line.GetSize())
            throw std::runtime_error("the section codes stored with " + which +
                                     " do not match its points");
        for (int32_t i = 0; i < line.GetSize(); ++i) {
            const uint16_t code = codes.GetAt(i);
            if (code > vx::nSectieDwang)
                throw std::runtime_error("the section codes stored with " + which +
                                         " hold an unknown code " + std::to_string(code));
            line.GetAt(i)->SetSectie(static_cast<char>(code));
        }
        constexpr int kValid = -1;
        const int broken = line.nSectieOnlyTest2();
        if (broken != kValid)
            throw std::runtime_error("the section codes stored with " + which +
                                     " are not a valid line at point " + std::to_string(broken));
        line.SetUnChanged();
    }

    Lines m_lines;
};

} // namespace

InputKind SniffInput(const unsigned char *data, size_t size) {
    constexpr unsigned char kMark[] = {0xEF, 0xBB, 0xBF};
    size_t i =
        size >= sizeof kMark && std::memcmp(data, kMark, sizeof kMark) == 0 ? sizeof kMark : 0;
    while (i < size && (data[i] == ' ' || data[i] == '\t' || data[i] == '\r' || data[i] == '\n'))
        ++i;
    if (i < size && data[i] == '<') return InputKind::xmlArchive;
    if (i < size && std::isalpha(data[i])) return InputKind::wkt;
    return InputKind::binaryArchive;
}

Lines ReadLinesFile(const std::string &path) {
    const std::string data = ReadAll(path);
    if (data.empty()) throw std::runtime_error(path + ": the file is empty");
    const auto *bytes = reinterpret_cast<const unsigned char *>(data.data());
    if (SniffInput(bytes, data.size()) == InputKind::wkt) {
        try {
            return ReadWkt(data);
        } catch (const CWktError &e) {
            throw std::runtime_error(path + ": " + e.what());
        }
    }
    const vx::CLoadedArchive loaded = vx::LoadArchiveRoot(CVXString(path.c_str()));
    return LinesOfArchiveRoot(loaded.Root());
}

Lines LinesOfArchiveRoot(const vx::ISerObject &root) {
    CLineCollector collector;
    collector.Object(dynamic_cast<const vx::CSerObject *>(&root));
    return collector.Take();
}

void AddLinesWithCodes(vx::CSerObArray &root, const Lines &lines, CodeArrays &codes) {
    for (const LinePtr &line : lines) {
        auto words = std::make_unique<vx::CVXWordArray>();
        for (int i = 0; i < line->GetSize(); ++i)
            words->Add(static_cast<uint16_t>(line->Pt(i).m_nSectie));
        root.Add(line.get());
        root.Add(words.get());
        codes.push_back(std::move(words));
    }
}

void SaveLinesArchive(const std::string &path, const Lines &lines) {
    vx::CSerObArray root;
    CodeArrays codes;
    AddLinesWithCodes(root, lines, codes);
    const CVXString target(path.c_str());
    vx::SaveArchiveRoot(target, root, vx::ArchiveFormatForPath(target));
}

void WriteTextFile(const std::string &path, const std::string &text) {
    try {
        vx::WriteFileReplacing(CVXString(path.c_str()), text.data(), text.size());
    } catch (const vx::CFileException &e) {
        throw std::runtime_error(path + ": cannot write the file: " + Reason(e));
    }
}

} // namespace vxinterchange
