// The XML writer: a small forward-only emitter. CIndenter drives an abstract CWriter, CTag names
// an element, CNode is a scope guard for one element and NXMLUtil holds the escaping functions.
// Nothing is built and nothing is checked: the text goes out in the order of the calls, each
// literal piece as a Write call of its own.
#pragma once

#include "platform/VXExport.h"

#include "platform/VXString.h"

namespace vx VX_API {

class CFile;

// The output of a CIndenter. Write is the one operation the indenter uses.
class CWriter {
public:
    virtual ~CWriter() = default;
    virtual void Write(const CVXString &text) = 0;
};

// A writer that appends every piece to a string of the caller.
class CStringWriter : public CWriter {
public:
    explicit CStringWriter(CVXString &target) : m_target(target) {}
    void Write(const CVXString &text) override { m_target += text; }

private:
    CVXString &m_target;
};

// A writer that writes every piece to an open file as 8-bit text: UTF-8 or the process code
// page. The file is not owned. Each piece is one CFile::Write, so hand it a buffered file
// (CStdioFile without typeText) when the output is large.
class CFileWriter : public CWriter {
public:
    enum Encoding { utf8 = 0, codePage = 1 };

    CFileWriter(CFile &file, Encoding encoding) : m_file(file), m_encoding(encoding) {}
    void Write(const CVXString &text) override;

private:
    CFile &m_file;
    Encoding m_encoding;
};

// An element name with its namespace prefix. The texts are not copied: they must outlive the
// tag. A null or empty prefix means none.
class CTag {
public:
    CTag(const char16_t *prefix, const char16_t *name) : m_szName(name), m_szPrefix(prefix) {}

    const char16_t *m_szName;
    const char16_t *m_szPrefix;
};

class CIndenter {
public:
    // The last item written, as kept in the state.
    enum State {
        stateNone = 0,
        stateOpenTag = 2,
        stateValue = 3,
        stateClosed = 4 // after the declaration, a close tag or a whole element
    };

    explicit CIndenter(CWriter *pWriter) : m_pWriter(pWriter) {}
    CIndenter(const CIndenter &) = delete;
    CIndenter &operator=(const CIndenter &) = delete;
    ~CIndenter() { m_pWriter = nullptr; }

    // <?xml version="..." encoding="..."?>
    void WriteVersionEncoding(const CVXString &version, const CVXString &encoding);
    // <prefix:name attributes> or, with bSelfClose, <prefix:name attributes/>. The attribute
    // text goes out as given: the caller escapes the values.
    void WriteOpenTag(const CTag &tag, const CVXString &attributes, bool bSelfClose);
    void WriteCloseTag(const CTag &tag);
    // A whole element with an escaped value, on one line.
    void WriteTag(const CTag &tag, const CVXString &attributes, const CVXString &value);
    void WriteValue(const CVXString &value);
    // <!-- text --> with the text escaped; the state is left alone.
    void WriteComment(const CVXString &text);

    int nGetLevel() const noexcept { return m_nLevel; }
    int nGetState() const noexcept { return m_nState; }

    // The caller's settings. Kept on purpose: the level only counts and no leading blanks are
    // ever written, so that the output stays byte for byte what existing files hold.
    int m_nIndentStep = 1;
    bool m_bNewLine = false;

private:
    void Put(const CVXString &text) { m_pWriter->Write(text); }
    void PutLineEnd();
    void PutOpenTag(const CTag &tag, const CVXString &attributes, bool bSelfClose);
    void PutCloseTag(const CTag &tag);

    CWriter *m_pWriter;
    int m_nLevel = 0;
    int m_nState = stateNone;
};

// A scope guard for one element: the constructor opens it, the destructor closes it unless
// nothing is due (a self-closed element or one written whole with its value).
class CNode {
public:
    CNode(CIndenter &indenter, const CTag &tag, const CVXString &attributes, bool bSelfClose);
    CNode(CIndenter &indenter, const CTag &tag, const CVXString &attributes,
          const CVXString &value);
    // Literal values: without these a text literal would convert to bool and self-close.
    CNode(CIndenter &indenter, const CTag &tag, const CVXString &attributes, const char16_t *value)
        : CNode(indenter, tag, attributes, CVXString(value)) {}
    CNode(CIndenter &indenter, const CTag &tag, const CVXString &attributes, const char *value)
        : CNode(indenter, tag, attributes, CVXString(value)) {}
    CNode(const CNode &) = delete;
    CNode &operator=(const CNode &) = delete;
    // A failing writer raises from here, except while the scope is left by another exception:
    // then the failure of the close tag is dropped, as the output is broken anyway.
    ~CNode() noexcept(false);

private:
    CIndenter &m_indenter;
    CTag m_tag;
    bool m_bClosed;
};

namespace NXMLUtil {

// The five XML escapes, ampersand first so that nothing is escaped twice.
void XMLEncodeReplace(CVXString &text);
CVXString XMLEncodeCopy(const CVXString &text);
// The same five the other way round, in the same order (ampersand first).
void XMLDecodeReplace(CVXString &text);
CVXString XMLDecodeCopy(const CVXString &text);
// Only the blank: " " and "%20".
void URLEncodeReplace(CVXString &text);
CVXString URLEncodeCopy(const CVXString &text);
void URLDecodeReplace(CVXString &text);
CVXString URLDecodeCopy(const CVXString &text);
// "true" or "false", one static string each.
const CVXString &BoolText(bool b);
// True only for exactly "true" (case-sensitive).
bool BoolFromBool(const CVXString &text);

} // namespace NXMLUtil

} // namespace VX_API
