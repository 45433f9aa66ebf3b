// CArchiveX: the XML archive. Objects become elements, their scalar fields attributes named by
// the field, contained objects child elements. Where the binary archive depends on order, this
// one finds each value by name: a missing name leaves the field to the conversion of an empty
// value (strings empty, floats NaN, integers 0), so old files load in new programs.
//
// An object saved by pointer carries "MFC_RUNTIME_TYPE" (its class name) and
// "MFC_RUNTIME_TYPE_SCHEMA" (its schema) in front of its own attributes. The root element is
// "VXXMLArchive" for an archive on a file and "VXA" for one in memory.
#pragma once

#include "platform/VXExport.h"

#include "foundation/VXVariant.h"
#include "persist/Dom.h"
#include "platform/VXString.h"
#include "platform/VXTypes.h"

#include <cstdint>
#include <string_view>
#include <type_traits>

namespace vx VX_API {

class ISerObject;
class CSerObject;
class CVXODateTime;

// A colour of three 5-bit channels in 15 bits (blue in the low bits, red in the high bits).
struct CRGB15Base {
    uint16_t m_nRGB = 0;
};

// The scalar types a field name given as a literal reaches without a CVXString being made.
template <class T>
inline constexpr bool kIsScalarField =
    std::is_same_v<T, bool> || std::is_same_v<T, unsigned char> || std::is_same_v<T, int16_t> ||
    std::is_same_v<T, uint16_t> || std::is_same_v<T, int32_t> || std::is_same_v<T, uint32_t> ||
    std::is_same_v<T, char16_t> || std::is_same_v<T, int64_t> || std::is_same_v<T, float> ||
    std::is_same_v<T, double>;

class CArchiveX {
public:
    // In memory: root "VXA" when storing; when loading the text comes through XML(text).
    explicit CArchiveX(bool loading);
    // On a file: storing creates root "VXXMLArchive"; loading reads the file.
    CArchiveX(const CVXString &path, bool loading);
    // Update mode: loads the file if it exists (else a new "VXXMLArchive" document) and writes
    // the document back to it at destruction.
    explicit CArchiveX(const CVXString &path);
    // Copies share the document and the current element.
    CArchiveX(const CArchiveX &other) = default;
    CArchiveX &operator=(const CArchiveX &other) = default;
    // Writes the document to the file when storing (or in update mode) and a file is named.
    // A document that cannot be written raises CVXComError, except while the archive goes out
    // of scope by another exception (a second one would end the process): then it is dropped.
    ~CArchiveX() noexcept(false);

    // The deepest nesting of objects a loaded document may have, the binary archive's limit.
    static constexpr int kMaxDepth = 2000;

    bool IsLoading() const { return m_bLoading; }
    bool IsStoring() const { return !m_bLoading; }
    void SetDirection(bool loading) { m_bLoading = loading; }
    // The schema of the last object read.
    int32_t Schema() const { return m_nSchema; }
    // True when the document's error text is empty.
    bool IsValid() const;
    CVXString XML() const;
    // Parses the text and makes the root current.
    void XML(const CVXString &text);
    // True if the attribute exists on the current element.
    bool AttributeExists(const CVXString &name) const;

    void Save(const CVXString &name, bool value);
    void Save(const CVXString &name, unsigned char value);
    void Save(const CVXString &name, int16_t value);
    void Save(const CVXString &name, uint16_t value);
    void Save(const CVXString &name, int32_t value);
    void Save(const CVXString &name, uint32_t value);
    void Save(const CVXString &name, char16_t value);
    void Save(const CVXString &name, int64_t value);
    void Save(const CVXString &name, float value);
    void Save(const CVXString &name, double value);
    void Save(const CVXString &name, const CVXString &value);
    void Save(const CVXString &name, const GUID &value);
    void Save(const CVXString &name, const CRGB15Base &value);
    void Save(const CVXString &name, const CVXODateTime &value);
    void Save(const CVXString &name, const VXVariant &value);
    void Save(const CVXString &name, const ISerObject *object);
    void Save(const CVXString &name, ISerObject &object);
    void Save(const CVXString &name, CSerObject &object, uint32_t n);

    void Load(const CVXString &name, bool &value);
    void Load(const CVXString &name, unsigned char &value);
    void Load(const CVXString &name, int16_t &value);
    void Load(const CVXString &name, uint16_t &value);
    void Load(const CVXString &name, int32_t &value);
    void Load(const CVXString &name, uint32_t &value);
    void Load(const CVXString &name, char16_t &value);
    void Load(const CVXString &name, int64_t &value);
    void Load(const CVXString &name, float &value);
    void Load(const CVXString &name, double &value);
    void Load(const CVXString &name, CVXString &value);
    void Load(const CVXString &name, GUID &value);
    void Load(const CVXString &name, CRGB15Base &value);
    void Load(const CVXString &name, CVXODateTime &value);
    void Load(const CVXString &name, VXVariant &value);
    // A new object of the class the element names; unchanged when the element is missing, null
    // for an unknown class.
    void Load(const CVXString &name, ISerObject *&object);
    void Load(const CVXString &name, ISerObject &object);
    void Load(const CVXString &name, CSerObject &object, uint32_t n);
    // The form for a run of like-named siblings: the cursor moves from sibling to sibling.
    void Load(const CVXString &name, ISerObject *&object, CVXComWrap<IDomElement> &cursor);

    // Save when storing, Load when loading: a class's SerializeX lists its fields once.
    template <class T>
    void Serialize(const CVXString &name, T &value) {
        if (m_bLoading)
            Load(name, value);
        else
            Save(name, value);
    }
    // The same for a name given as a literal, the usual case: a scalar goes without a
    // CVXString being made for its name, once for every field of every object.
    template <class T>
    void Serialize(const char16_t *name, T &value) {
        if constexpr (kIsScalarField<T>) {
            if (m_bLoading)
                LoadField(name, value);
            else
                SaveField(name, value);
        } else {
            Serialize(CVXString(name), value);
        }
    }

    static CVXString ToName(const CVXString &name, int n);
    // The object's SerializeX with its element current: a new child when saving; when loading
    // the child found by name, and no call at all when it is missing.
    void SerializeIt(const CVXString &name, ISerObject *object);
    // Makes the first child called `name` current; false (current unchanged) when none.
    bool SeekElement(const CVXString &name);
    // Makes the object the current element describes.
    ISerObject *ReadCurrent();

    const CVXComWrap<IDomElement> &GetCurrent() const { return m_current; }
    void SetCurrent(const CVXComWrap<IDomElement> &element) { m_current = element; }
    // A new child of the current element, appended; it does not become current.
    CVXComWrap<IDomElement> AppendChild(const CVXString &name);

private:
    class CurrentGuard;
    class DepthGuard;
    void Open(const CVXString &domName, bool loading);
    void MakeRoot(const char16_t *name);
    void SetAttr(const CVXString &name, const VXVariant &value);
    VXVariant GetAttr(const CVXString &name) const;
    // The attribute's UTF-8 text: set, or read (null when missing or without a current element).
    void SetText(std::u16string_view name, const char *utf8);
    const char *GetText(std::u16string_view name) const;
    template <class T>
    void SaveInteger(std::u16string_view name, T value);
    template <class T>
    void LoadInteger(std::u16string_view name, T &value, int64_t lo, int64_t hi);
    template <class T>
    void LoadFloating(std::u16string_view name, T &value, T failed);
    void SaveField(std::u16string_view name, bool value);
    void SaveField(std::u16string_view name, unsigned char value);
    void SaveField(std::u16string_view name, int16_t value);
    void SaveField(std::u16string_view name, uint16_t value);
    void SaveField(std::u16string_view name, int32_t value);
    void SaveField(std::u16string_view name, uint32_t value);
    void SaveField(std::u16string_view name, char16_t value);
    void SaveField(std::u16string_view name, int64_t value);
    void SaveField(std::u16string_view name, float value);
    void SaveField(std::u16string_view name, double value);
    void LoadField(std::u16string_view name, bool &value);
    void LoadField(std::u16string_view name, unsigned char &value);
    void LoadField(std::u16string_view name, int16_t &value);
    void LoadField(std::u16string_view name, uint16_t &value);
    void LoadField(std::u16string_view name, int32_t &value);
    void LoadField(std::u16string_view name, uint32_t &value);
    void LoadField(std::u16string_view name, char16_t &value);
    void LoadField(std::u16string_view name, int64_t &value);
    void LoadField(std::u16string_view name, float &value);
    void LoadField(std::u16string_view name, double &value);
    void SaveDate(const CVXString &name, double oleDate);
    bool LoadDate(const CVXString &name, double &oleDate);

    CVXComWrap<IDomDocument> m_document;
    CVXComWrap<IDomElement> m_current;
    int32_t m_nSchema = 0;
    CVXString m_strFileName;
    bool m_bLoading = false;
    bool m_bUpdate = false;
    int m_nDepth = 0;
};

// Steps one element down for the life of the object: saving creates the child `name`; loading
// finds it (and when it is missing, reads that follow look in the parent).
class CArchiveXMLChild {
public:
    CArchiveXMLChild(CArchiveX &archive, const CVXString &name);
    ~CArchiveXMLChild();
    CArchiveXMLChild(const CArchiveXMLChild &) = delete;
    CArchiveXMLChild &operator=(const CArchiveXMLChild &) = delete;

private:
    CVXComWrap<IDomElement> m_saved;
    CArchiveX &m_archive;
};

// The type names of the variant table ("adDouble" ...); 0 for a name not in it.
int VariantTypeFromName(const CVXString &name);
const char16_t *VariantTypeName(int type);

} // namespace VX_API
