#include "persist/XmlWriter.h"

#include "platform/CodePage.h"
#include "platform/File.h"

#include <exception>
#include <string>

namespace vx {

namespace {

struct CEscape {
    const char16_t *szPlain;
    const char16_t *szEscaped;
};

// The order matters: the ampersand goes first on the way in, so that the ampersands of the
// other escapes are not escaped again.
constexpr CEscape kXmlEscapes[] = {
    {u"&", u"&amp;"}, {u"'", u"&apos;"}, {u"\"", u"&quot;"}, {u"<", u"&lt;"}, {u">", u"&gt;"}};

bool bHasText(const char16_t *text) {
    return text && *text;
}

} // namespace

// --- writers ---

void CFileWriter::Write(const CVXString &text) {
    const char16_t *wide = text;
    const size_t len = static_cast<size_t>(text.GetLength());
    const std::string bytes =
        m_encoding == utf8 ? WideToUtf8(wide, len) : WideToCodePage(wide, len);
    if (!bytes.empty()) m_file.Write(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

// --- CIndenter ---

void CIndenter::PutLineEnd() {
    if (m_bNewLine) Put(u"\n");
}

void CIndenter::PutOpenTag(const CTag &tag, const CVXString &attributes, bool bSelfClose) {
    Put(u"<");
    if (bHasText(tag.m_szPrefix)) {
        Put(tag.m_szPrefix);
        Put(u":");
    }
    Put(tag.m_szName);
    if (!attributes.IsEmpty()) {
        Put(u" ");
        Put(attributes);
    }
    Put(bSelfClose ? u"/>" : u">");
}

void CIndenter::PutCloseTag(const CTag &tag) {
    Put(u"</");
    if (bHasText(tag.m_szPrefix)) {
        Put(tag.m_szPrefix);
        Put(u":");
    }
    Put(tag.m_szName);
    Put(u">");
}

void CIndenter::WriteVersionEncoding(const CVXString &version, const CVXString &encoding) {
    Put(u"<?xml version=\"");
    Put(version);
    Put(u"\" encoding=\"");
    Put(encoding);
    Put(u"\"?>");
    PutLineEnd();
    m_nState = stateClosed;
}

void CIndenter::WriteOpenTag(const CTag &tag, const CVXString &attributes, bool bSelfClose) {
    PutOpenTag(tag, attributes, bSelfClose);
    PutLineEnd();
    if (!bSelfClose) m_nLevel += m_nIndentStep;
    m_nState = stateOpenTag;
}

void CIndenter::WriteCloseTag(const CTag &tag) {
    PutCloseTag(tag);
    PutLineEnd();
    m_nState = stateClosed;
}

void CIndenter::WriteTag(const CTag &tag, const CVXString &attributes, const CVXString &value) {
    PutOpenTag(tag, attributes, false);
    Put(NXMLUtil::XMLEncodeCopy(value));
    PutCloseTag(tag);
    PutLineEnd();
    // Kept on purpose: a whole element raises the level and nothing lowers it; the level is
    // never written, so only the counter shows it.
    m_nLevel += m_nIndentStep;
    m_nState = stateClosed;
}

void CIndenter::WriteValue(const CVXString &value) {
    Put(NXMLUtil::XMLEncodeCopy(value));
    PutLineEnd();
    m_nState = stateValue;
}

void CIndenter::WriteComment(const CVXString &text) {
    Put(u"<!-- ");
    Put(NXMLUtil::XMLEncodeCopy(text));
    Put(u" -->");
    PutLineEnd();
}

// --- CNode ---

CNode::CNode(CIndenter &indenter, const CTag &tag, const CVXString &attributes, bool bSelfClose)
    : m_indenter(indenter), m_tag(tag), m_bClosed(bSelfClose) {
    m_indenter.WriteOpenTag(m_tag, attributes, bSelfClose);
}

CNode::CNode(CIndenter &indenter, const CTag &tag, const CVXString &attributes,
             const CVXString &value)
    : m_indenter(indenter), m_tag(tag), m_bClosed(true) {
    m_indenter.WriteTag(m_tag, attributes, value);
}

CNode::~CNode() noexcept(false) {
    if (m_bClosed) return;
    if (std::uncaught_exceptions() == 0) {
        m_indenter.WriteCloseTag(m_tag);
        return;
    }
    // A second exception during unwinding would end the process.
    try {
        m_indenter.WriteCloseTag(m_tag);
    } catch (...) {
    }
}

// --- NXMLUtil ---

namespace NXMLUtil {

void XMLEncodeReplace(CVXString &text) {
    for (const CEscape &e : kXmlEscapes)
        text.Replace(e.szPlain, e.szEscaped);
}

CVXString XMLEncodeCopy(const CVXString &text) {
    CVXString copy(text);
    XMLEncodeReplace(copy);
    return copy;
}

// Kept on purpose: decoding takes "&amp;" first, so "&amp;lt;" comes out as "<" and not as
// "&lt;"; texts written by older versions are read back the way they always were.
void XMLDecodeReplace(CVXString &text) {
    for (const CEscape &e : kXmlEscapes)
        text.Replace(e.szEscaped, e.szPlain);
}

CVXString XMLDecodeCopy(const CVXString &text) {
    CVXString copy(text);
    XMLDecodeReplace(copy);
    return copy;
}

void URLEncodeReplace(CVXString &text) {
    text.Replace(u" ", u"%20");
}

CVXString URLEncodeCopy(const CVXString &text) {
    CVXString copy(text);
    URLEncodeReplace(copy);
    return copy;
}

void URLDecodeReplace(CVXString &text) {
    text.Replace(u"%20", u" ");
}

CVXString URLDecodeCopy(const CVXString &text) {
    CVXString copy(text);
    URLDecodeReplace(copy);
    return copy;
}

const CVXString &BoolText(bool b) {
    static const CVXString szTrue(u"true");
    static const CVXString szFalse(u"false");
    return b ? szTrue : szFalse;
}

bool BoolFromBool(const CVXString &text) {
    return text.Compare(u"true") == 0;
}

} // namespace NXMLUtil

} // namespace vx
