#include "persist/XmlWriter.h"

#include "platform/CodePage.h"
#include "platform/File.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

using namespace vx;

namespace {

std::string Utf8(const CVXString &text) {
    return WideToUtf8(text, static_cast<size_t>(text.GetLength()));
}

// Records every Write call as one piece, so that the split into calls is visible.
class CRecordingWriter : public CWriter {
public:
    void Write(const CVXString &text) override { m_pieces.push_back(Utf8(text)); }
    std::string Joined() const {
        std::string all;
        for (const std::string &piece : m_pieces)
            all += piece;
        return all;
    }
    std::vector<std::string> m_pieces;
};

// A writer whose output device fails after a number of pieces.
class CFailingWriter : public CWriter {
public:
    explicit CFailingWriter(int nGood) : m_nGood(nGood) {}
    void Write(const CVXString &) override {
        if (m_nGood-- <= 0) throw std::runtime_error("device full");
    }
    int m_nGood;
};

using Pieces = std::vector<std::string>;

} // namespace

TEST(XmlWriter, DeclarationAndTagsAreWrittenPieceByPiece) {
    CRecordingWriter out;
    CIndenter ind(&out);
    ind.WriteVersionEncoding(u"1.0", u"UTF-8");
    EXPECT_EQ(out.m_pieces, (Pieces{"<?xml version=\"", "1.0", "\" encoding=\"", "UTF-8", "\"?>"}));
    EXPECT_EQ(ind.nGetState(), 4);

    out.m_pieces.clear();
    ind.WriteOpenTag(CTag(u"a", u"b"), u"c=\"1\"", false);
    EXPECT_EQ(out.m_pieces, (Pieces{"<", "a", ":", "b", " ", "c=\"1\"", ">"}));
    EXPECT_EQ(ind.nGetState(), 2);

    out.m_pieces.clear();
    ind.WriteOpenTag(CTag(u"a", u"b"), u"c=\"1\"", true);
    EXPECT_EQ(out.Joined(), "<a:b c=\"1\"/>");

    out.m_pieces.clear();
    ind.WriteCloseTag(CTag(u"a", u"b"));
    EXPECT_EQ(out.m_pieces, (Pieces{"</", "a", ":", "b", ">"}));
    EXPECT_EQ(ind.nGetState(), 4);

    // No prefix (null or empty) and no attributes: no colon and no blank.
    out.m_pieces.clear();
    ind.WriteOpenTag(CTag(nullptr, u"x"), u"", false);
    ind.WriteCloseTag(CTag(u"", u"x"));
    EXPECT_EQ(out.m_pieces, (Pieces{"<", "x", ">", "</", "x", ">"}));
}

TEST(XmlWriter, WholeElementsValuesAndComments) {
    CRecordingWriter out;
    CIndenter ind(&out);
    ind.WriteTag(CTag(nullptr, u"x"), CVXString(), u"1<2");
    EXPECT_EQ(out.m_pieces, (Pieces{"<", "x", ">", "1&lt;2", "</", "x", ">"}));
    EXPECT_EQ(ind.nGetState(), 4);

    out.m_pieces.clear();
    ind.WriteValue(u"a&b");
    EXPECT_EQ(out.m_pieces, (Pieces{"a&amp;b"}));
    EXPECT_EQ(ind.nGetState(), 3);

    // A comment leaves the state of the last item alone.
    out.m_pieces.clear();
    ind.WriteComment(u"x > y");
    EXPECT_EQ(out.m_pieces, (Pieces{"<!-- ", "x &gt; y", " -->"}));
    EXPECT_EQ(ind.nGetState(), 3);

    // Attributes are the caller's text and go out unescaped.
    out.m_pieces.clear();
    ind.WriteTag(CTag(u"p", u"v"), u"k=\"<\"", u"\"q\"");
    EXPECT_EQ(out.Joined(), "<p:v k=\"<\">&quot;q&quot;</p:v>");
}

TEST(XmlWriter, LineFeedFollowsEachItemWhenAsked) {
    CVXString text;
    CStringWriter out(text);
    CIndenter ind(&out);
    ind.m_bNewLine = true;
    ind.WriteVersionEncoding(u"1.0", u"UTF-8");
    ind.WriteOpenTag(CTag(nullptr, u"r"), u"", false);
    ind.WriteTag(CTag(nullptr, u"a"), u"n=\"1\"", u"v");
    ind.WriteOpenTag(CTag(nullptr, u"e"), u"", true);
    ind.WriteValue(u"t");
    ind.WriteComment(u"c");
    ind.WriteCloseTag(CTag(nullptr, u"r"));
    // One line feed per item, none inside a whole element, and no indentation at any depth.
    EXPECT_EQ(Utf8(text), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<r>\n"
                          "<a n=\"1\">v</a>\n"
                          "<e/>\n"
                          "t\n"
                          "<!-- c -->\n"
                          "</r>\n");
}

TEST(XmlWriter, LevelOnlyCountsUpwards) {
    CRecordingWriter out;
    CIndenter ind(&out);
    ind.m_nIndentStep = 3;
    EXPECT_EQ(ind.nGetLevel(), 0);
    EXPECT_EQ(ind.nGetState(), 0);
    ind.WriteOpenTag(CTag(nullptr, u"a"), u"", false); // +3
    ind.WriteOpenTag(CTag(nullptr, u"b"), u"", true);  // self-closed: unchanged
    ind.WriteTag(CTag(nullptr, u"c"), u"", u"1");      // always +3
    ind.WriteCloseTag(CTag(nullptr, u"a"));            // never lowers
    ind.WriteValue(u"v");
    EXPECT_EQ(ind.nGetLevel(), 6);
    for (const std::string &piece : out.m_pieces)
        EXPECT_EQ(piece.find(' '), std::string::npos) << piece;
}

TEST(XmlWriter, NodesCloseTheirElements) {
    CVXString text;
    CStringWriter out(text);
    CIndenter ind(&out);
    {
        CNode root(ind, CTag(u"v", u"root"), u"id=\"7\"", false);
        { CNode empty(ind, CTag(nullptr, u"empty"), u"", true); }
        { CNode item(ind, CTag(nullptr, u"item"), u"", u"a<b"); }
        { CNode named(ind, CTag(nullptr, u"named"), u"", CVXString(u"x")); }
        { CNode inner(ind, CTag(nullptr, u"inner"), CVXString(), false); }
    }
    EXPECT_EQ(Utf8(text), "<v:root id=\"7\"><empty/><item>a&lt;b</item><named>x</named>"
                          "<inner></inner></v:root>");
}

TEST(XmlWriter, FailingWriterRaisesAndNodesSurviveUnwinding) {
    CFailingWriter bad(2);
    CIndenter ind(&bad);
    EXPECT_THROW(ind.WriteOpenTag(CTag(nullptr, u"a"), u"", false), std::runtime_error);

    // The open tag fits; the close tag fails in the destructor and raises from there.
    CFailingWriter closeFails(3);
    CIndenter ind2(&closeFails);
    EXPECT_THROW({ CNode node(ind2, CTag(nullptr, u"a"), u"", false); }, std::runtime_error);

    // Leaving the scope by another exception: the close tag's failure is dropped.
    CFailingWriter unwinding(3);
    CIndenter ind3(&unwinding);
    EXPECT_THROW(
        {
            CNode node(ind3, CTag(nullptr, u"a"), u"", false);
            throw std::logic_error("caller failed");
        },
        std::logic_error);
}

TEST(XmlWriter, EscapesInTheirOrder) {
    EXPECT_EQ(Utf8(NXMLUtil::XMLEncodeCopy(u"a&b")), "a&amp;b");
    EXPECT_EQ(Utf8(NXMLUtil::XMLDecodeCopy(u"a&amp;b")), "a&b");
    EXPECT_EQ(Utf8(NXMLUtil::XMLEncodeCopy(u"<'\"&\">")), "&lt;&apos;&quot;&amp;&quot;&gt;");
    EXPECT_EQ(Utf8(NXMLUtil::XMLDecodeCopy(u"&lt;&apos;&quot;&amp;&quot;&gt;")), "<'\"&\">");
    // Decoding takes the ampersand first, so an escaped "&lt;" decodes all the way to "<".
    EXPECT_EQ(Utf8(NXMLUtil::XMLDecodeCopy(u"&amp;lt;")), "<");
    EXPECT_EQ(Utf8(NXMLUtil::XMLEncodeCopy(u"&lt;")), "&amp;lt;");
    EXPECT_TRUE(NXMLUtil::XMLEncodeCopy(CVXString()).IsEmpty());

    CVXString text(u"x<y");
    NXMLUtil::XMLEncodeReplace(text);
    EXPECT_EQ(Utf8(text), "x&lt;y");
    NXMLUtil::XMLDecodeReplace(text);
    EXPECT_EQ(Utf8(text), "x<y");

    // The copies leave their argument alone.
    const CVXString original(u"a b&");
    EXPECT_EQ(Utf8(NXMLUtil::URLEncodeCopy(original)), "a%20b&");
    EXPECT_EQ(Utf8(NXMLUtil::XMLEncodeCopy(original)), "a b&amp;");
    EXPECT_EQ(Utf8(original), "a b&");

    CVXString url(u"my file  name");
    NXMLUtil::URLEncodeReplace(url);
    EXPECT_EQ(Utf8(url), "my%20file%20%20name");
    NXMLUtil::URLDecodeReplace(url);
    EXPECT_EQ(Utf8(url), "my file  name");
    EXPECT_EQ(Utf8(NXMLUtil::URLDecodeCopy(u"%2%20%41")), "%2 %41");
}

TEST(XmlWriter, BoolTexts) {
    EXPECT_EQ(Utf8(NXMLUtil::BoolText(true)), "true");
    EXPECT_EQ(Utf8(NXMLUtil::BoolText(false)), "false");
    EXPECT_EQ(&NXMLUtil::BoolText(true), &NXMLUtil::BoolText(true));
    EXPECT_TRUE(NXMLUtil::BoolFromBool(u"true"));
    EXPECT_FALSE(NXMLUtil::BoolFromBool(u"True"));
    EXPECT_FALSE(NXMLUtil::BoolFromBool(u"1"));
    EXPECT_FALSE(NXMLUtil::BoolFromBool(u"true "));
    EXPECT_FALSE(NXMLUtil::BoolFromBool(CVXString()));
}

TEST(XmlWriter, FileWriterEncodesUtf8OrTheCodePage) {
    vxtest::TempDir dir;
    const std::string utf8Path = dir.file("u.xml");
    const std::string cpPath = dir.file("c.xml");
    const CVXString value(u"caf\u00e9 \u20ac");
    {
        CFile file(CVXString(utf8Path.c_str()), CFile::modeCreate | CFile::modeWrite);
        CFileWriter out(file, CFileWriter::utf8);
        CIndenter ind(&out);
        ind.WriteTag(CTag(nullptr, u"n"), u"", value);
    }
    {
        CFile file(CVXString(cpPath.c_str()), CFile::modeCreate | CFile::modeWrite);
        CFileWriter out(file, CFileWriter::codePage);
        CIndenter ind(&out);
        ind.WriteTag(CTag(nullptr, u"n"), u"", value);
    }
    // U+00E9 is C3 A9 in UTF-8 and E9 in Windows-1252; U+20AC is E2 82 AC and 80.
    EXPECT_EQ(vxtest::ReadBytes(utf8Path),
              (std::vector<uint8_t>{'<', 'n', '>', 'c', 'a', 'f', 0xC3, 0xA9, ' ', 0xE2, 0x82, 0xAC,
                                    '<', '/', 'n', '>'}));
    EXPECT_EQ(vxtest::ReadBytes(cpPath), (std::vector<uint8_t>{'<', 'n', '>', 'c', 'a', 'f', 0xE9,
                                                               ' ', 0x80, '<', '/', 'n', '>'}));
}
