// The DOM over pugixml, registered as "VXDOM" and "VXDom".
//
// Elements that are created but not yet attached live under a hidden holder node of the same
// document, so that appending them is a move inside one document and every reference to them
// stays valid. Output is UTF-8 with an XML declaration, indented with tabs; only the root
// element is written.
#include "persist/Dom.h"

#include "platform/Bstr.h"
#include "platform/CodePage.h"
#include "platform/Errors.h"

#include <pugixml.hpp>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>
#include <string>

namespace vx {

namespace {

const char kHolderName[] = "__vx_unattached";

std::string ToUtf8(const CVXString &s) {
    const char16_t *text = s;
    const auto n = static_cast<size_t>(s.GetLength());
    // A document is mostly ASCII: such a text is narrowed unit by unit.
    if (text && std::all_of(text, text + n, [](char16_t c) { return c < 0x80; })) {
        std::string narrow(n, '\0');
        std::transform(text, text + n, narrow.begin(),
                       [](char16_t c) { return static_cast<char>(c); });
        return narrow;
    }
    return WideToUtf8(text, n);
}

CVXString FromUtf8(const char *s) {
    const std::u16string w = Utf8ToWide(s, std::char_traits<char>::length(s));
    return CVXString(w.c_str());
}

// A whole document as a CVXString. Documents are mostly ASCII: such a text is widened straight
// into the string's own buffer, without the intermediate wide copy of the general conversion.
CVXString DocumentText(const std::string &utf8) {
    if (!std::all_of(utf8.begin(), utf8.end(), [](char c) { return (c & 0x80) == 0; }))
        return FromUtf8(utf8.c_str());
    BSTR text = SysAllocStringLen(nullptr, static_cast<uint32_t>(utf8.size()));
    CVXString owner(text, false);
    std::transform(utf8.begin(), utf8.end(), text, [](char c) { return static_cast<char16_t>(c); });
    return owner;
}

// Collects what pugixml prints.
class CStringWriter : public pugi::xml_writer {
public:
    explicit CStringWriter(std::string &out) : m_out(out) {}
    void write(const void *data, size_t size) override {
        m_out.append(static_cast<const char *>(data), size);
    }

private:
    std::string &m_out;
};

// Reference counting shared by the three classes.
template <class Base>
class RefCounted : public Base {
public:
    long AddRef() override { return ++m_ref; }
    long Release() override {
        const long n = --m_ref;
        if (n == 0) delete this;
        return n;
    }

private:
    std::atomic<long> m_ref{1};
};

class CPugiDocument;

class CPugiElement : public RefCounted<IDomElement> {
public:
    CPugiElement(CPugiDocument *doc, pugi::xml_node node);
    ~CPugiElement() override;
    IDomNodeList *Children() override;
    IDomElement *NextSibling() override;
    CVXString Name() override { return FromUtf8(m_node.name()); }
    IDomElement *AppendChild(IDomElement *child) override;
    void SetAttribute(const CVXString &name, const VXVariant &value) override;
    VXVariant GetAttribute(const CVXString &name) override;
    void SetAttributeUtf8(const char *name, const char *value) override;
    const char *AttributeUtf8(const char *name) override;
    pugi::xml_node Node() const { return m_node; }

private:
    CPugiDocument *m_doc;
    pugi::xml_node m_node;
};

// The child elements of a node, walked from the last place asked for, so that a walk from the
// first to the last costs one step each.
class CPugiNodeList : public RefCounted<IDomNodeList> {
public:
    CPugiNodeList(CPugiDocument *doc, pugi::xml_node parent);
    ~CPugiNodeList() override;
    long Count() override;
    IDomElement *Item(long index) override;

private:
    CPugiDocument *m_doc;
    pugi::xml_node m_parent;
    long m_lastIndex = -1;
    pugi::xml_node m_last;
};

class CPugiDocument : public RefCounted<IDomDocument> {
public:
    bool LoadXML(const CVXString &text) override {
        const std::string utf8 = ToUtf8(text);
        return Parsed(
            m_doc.load_buffer(utf8.data(), utf8.size(), pugi::parse_default, pugi::encoding_utf8));
    }
    bool Load(const CVXString &path) override {
        return Parsed(m_doc.load_file(static_cast<const char *>(path)));
    }
    // Every write, the flush and the close are checked: a full disk is a failure with the
    // system's reason in the error text, never a silently truncated file.
    bool Save(const CVXString &path) override {
        std::FILE *f = std::fopen(static_cast<const char *>(path), "wb");
        if (!f) return WriteFailed(path, errno);
        const std::string text = Text();
        int err = 0;
        if (std::fwrite(text.data(), 1, text.size(), f) != text.size()) err = errno;
        if (std::fflush(f) != 0 && err == 0) err = errno;
        if (std::fclose(f) != 0 && err == 0) err = errno;
        return err == 0 || WriteFailed(path, err);
    }
    IDomElement *Root() override {
        const pugi::xml_node root = RootNode();
        return root ? new CPugiElement(this, root) : nullptr;
    }
    CVXString XML() override { return DocumentText(Text()); }
    IDomElement *CreateElement(const CVXString &name) override {
        pugi::xml_node node = Holder().append_child(ToUtf8(name).c_str());
        return new CPugiElement(this, node);
    }
    void SetRoot(IDomElement *element) override {
        if (pugi::xml_node old = RootNode()) m_doc.remove_child(old);
        m_doc.prepend_move(static_cast<CPugiElement *>(element)->Node());
    }
    void Reset() override {
        m_doc.reset();
        m_error.Empty();
    }
    void SetOption(int) override {} // the option of "VXDom" has no meaning here
    CVXString LastError() override { return m_error; }

private:
    bool Parsed(const pugi::xml_parse_result &r) {
        if (r) {
            m_error.Empty();
            return true;
        }
        m_error.Format(u"%hs at offset %I64d", r.description(), static_cast<int64_t>(r.offset));
        return false;
    }
    bool WriteFailed(const CVXString &path, int err) {
        m_error = CVXString(u"cannot write the file ") + path + u": " +
                  CVXString(std::strerror(err != 0 ? err : EIO));
        return false;
    }
    pugi::xml_node RootNode() const {
        for (pugi::xml_node n = m_doc.first_child(); n; n = n.next_sibling())
            if (n.type() == pugi::node_element && std::string_view(n.name()) != kHolderName)
                return n;
        return pugi::xml_node();
    }
    pugi::xml_node Holder() {
        pugi::xml_node h = m_doc.child(kHolderName);
        return h ? h : m_doc.append_child(kHolderName);
    }
    std::string Text() const {
        std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
        CStringWriter out(text);
        if (pugi::xml_node root = RootNode())
            root.print(out, "\t", pugi::format_indent, pugi::encoding_utf8);
        return text;
    }

    pugi::xml_document m_doc;
    CVXString m_error;
};

CPugiElement::CPugiElement(CPugiDocument *doc, pugi::xml_node node) : m_doc(doc), m_node(node) {
    m_doc->AddRef();
}
CPugiElement::~CPugiElement() {
    m_doc->Release();
}

IDomNodeList *CPugiElement::Children() {
    return new CPugiNodeList(m_doc, m_node);
}

IDomElement *CPugiElement::NextSibling() {
    pugi::xml_node n = m_node.next_sibling();
    while (n && n.type() != pugi::node_element)
        n = n.next_sibling();
    return n ? new CPugiElement(m_doc, n) : nullptr;
}

IDomElement *CPugiElement::AppendChild(IDomElement *child) {
    pugi::xml_node moved = m_node.append_move(static_cast<CPugiElement *>(child)->Node());
    return new CPugiElement(m_doc, moved);
}

void CPugiElement::SetAttribute(const CVXString &name, const VXVariant &value) {
    SetAttributeUtf8(ToUtf8(name).c_str(), ToUtf8(value.ToString()).c_str());
}

VXVariant CPugiElement::GetAttribute(const CVXString &name) {
    const char *text = AttributeUtf8(ToUtf8(name).c_str());
    return text ? VXVariant(FromUtf8(text)) : VXVariant();
}

// A name set twice keeps one attribute with the last value, so the element is searched first.
void CPugiElement::SetAttributeUtf8(const char *name, const char *value) {
    pugi::xml_attribute a = m_node.attribute(name);
    if (!a) a = m_node.append_attribute(name);
    a.set_value(value);
}

const char *CPugiElement::AttributeUtf8(const char *name) {
    const pugi::xml_attribute a = m_node.attribute(name);
    return a ? a.value() : nullptr;
}

CPugiNodeList::CPugiNodeList(CPugiDocument *doc, pugi::xml_node parent)
    : m_doc(doc), m_parent(parent) {
    m_doc->AddRef();
}
CPugiNodeList::~CPugiNodeList() {
    m_doc->Release();
}

long CPugiNodeList::Count() {
    long n = 0;
    for (pugi::xml_node c = m_parent.first_child(); c; c = c.next_sibling())
        n += c.type() == pugi::node_element;
    return n;
}

IDomElement *CPugiNodeList::Item(long index) {
    if (index < 0) return nullptr;
    if (m_lastIndex < 0 || index < m_lastIndex) {
        m_last = m_parent.first_child();
        while (m_last && m_last.type() != pugi::node_element)
            m_last = m_last.next_sibling();
        m_lastIndex = 0;
    }
    while (m_last && m_lastIndex < index) {
        m_last = m_last.next_sibling();
        while (m_last && m_last.type() != pugi::node_element)
            m_last = m_last.next_sibling();
        ++m_lastIndex;
    }
    return m_last ? new CPugiElement(m_doc, m_last) : nullptr;
}

IDomDocument *NewPugiDocument() {
    return new CPugiDocument;
}

std::mutex g_mutex;
std::map<std::u16string, DomFactory> &Factories() {
    static std::map<std::u16string, DomFactory> factories{{u"VXDOM", &NewPugiDocument},
                                                          {u"VXDom", &NewPugiDocument}};
    return factories;
}

} // namespace

void IDomElement::SetAttributeUtf8(const char *name, const char *value) {
    SetAttribute(FromUtf8(name), VXVariant(FromUtf8(value)));
}

const char *IDomElement::AttributeUtf8(const char *name) {
    // One text per thread, as the answer is valid only until the next call.
    thread_local std::string text;
    const VXVariant value = GetAttribute(FromUtf8(name));
    if (value.IsEmpty()) return nullptr;
    const CVXString s = value.ToString();
    text = ToUtf8(s);
    return text.c_str();
}

void ThrowNullInterface() {
    throw CVXComError(E_POINTER, __FILE__, __LINE__, CVXString(u"Interface pointer is NULL"),
                      CVXString(u"VXCOM"));
}

void RegisterDomImplementation(const CVXString &name, DomFactory factory) {
    std::lock_guard<std::mutex> lock(g_mutex);
    const std::u16string key(static_cast<const char16_t *>(name));
    if (factory)
        Factories()[key] = factory;
    else
        Factories().erase(key);
}

CVXComWrap<IDomDocument> CreateDomDocument(const CVXString &name) {
    DomFactory factory = nullptr;
    {
        std::lock_guard<std::mutex> lock(g_mutex);
        const auto it = Factories().find(static_cast<const char16_t *>(name));
        if (it != Factories().end()) factory = it->second;
    }
    if (!factory)
        throw CVXComError(E_FAIL, __FILE__, __LINE__,
                          CVXString(u"no DOM implementation named ") + name, CVXString(u"VXCOM"));
    return CVXComWrap<IDomDocument>(factory());
}

} // namespace vx
