#include "foundation/NumberText.h"
#include "foundation/VXODateTime.h"
#include "platform/Resources.h"
#include "platform/UserPrompt.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

using namespace vx;

namespace {
std::u16string U(const CVXString &s) {
    return std::u16string(static_cast<const char16_t *>(s), s.GetLength());
}

class RecordingPrompt : public IUserPrompt {
public:
    int AskRetryCancel(const CVXString &) override { return IDCANCEL; }
    void ShowMessage(const CVXString &text, int icon) override {
        shown = U(text);
        lastIcon = icon;
    }
    bool BreakRequested() override { return false; }
    std::u16string shown;
    int lastIcon = 0;
};
} // namespace

TEST(String2Number, AcceptsBlanksAroundTheNumberAndNothingElse) {
    double d = 0;
    EXPECT_TRUE(bString2Number(&d, u"1e3"));
    EXPECT_EQ(d, 1000.0);
    EXPECT_TRUE(bString2Number(&d, u"  -2.5\t "));
    EXPECT_EQ(d, -2.5);
    EXPECT_FALSE(bString2Number(&d, u"12a"));
    EXPECT_FALSE(bString2Number(&d, u"1,5")); // the full stop is the decimal separator

    int32_t l = 0;
    EXPECT_FALSE(bString2Number(&l, u"1e3"));
    EXPECT_TRUE(bString2Number(&l, u" +12 "));
    EXPECT_EQ(l, 12);

    int16_t sh = 0;
    EXPECT_TRUE(bString2Number(&sh, u"70000")); // passes, cut by the conversion

    unsigned char uc = 0;
    EXPECT_FALSE(bString2Number(&uc, u"256"));
    EXPECT_TRUE(bString2Number(&uc, u"255"));
    EXPECT_EQ(uc, 255);

    int64_t big = 0;
    EXPECT_TRUE(bString2Number(&big, u"-9000000000"));
    EXPECT_EQ(big, -9000000000LL);
    float f = 0;
    EXPECT_TRUE(bString2Number(&f, u"0.1"));
    EXPECT_EQ(f, 0.1f);
}

TEST(String2Number, EnteredNumbersTellTheUser) {
    RecordingPrompt prompt;
    SetUserPrompt(&prompt);
    SetResourceLanguage(LANG_DUTCH);
    double d = 0;
    EXPECT_FALSE(bEnteredString2Number(&d, CVXString(u"abc")));
    EXPECT_EQ(prompt.shown, u"Incorrect getal");
    EXPECT_EQ(prompt.lastIcon, IUserPrompt::IconWarning);
    prompt.shown.clear();
    EXPECT_TRUE(bEnteredString2Number(&d, CVXString(u"4")));
    EXPECT_TRUE(prompt.shown.empty());
    SetResourceLanguage(LANG_ENGLISH_US);
    SetUserPrompt(nullptr);
}

TEST(Number2String, FormatsByType) {
    EXPECT_EQ(U(szNumber2String(int64_t{-5})), u"-5");
    EXPECT_EQ(U(szNumber2String(int64_t{42}, 5)), u"   42");
    EXPECT_EQ(U(szNumber2String(1.005, 8, 2)), u"    1.00"); // 1.005 is below 1.005 in binary
    CVXString s;
    NanDouble2String(u"%.1f", s, std::nan(""));
    EXPECT_EQ(U(s), u"Unknown");
    NanDouble2String(u"%.1f", s, 0.25);
    EXPECT_EQ(U(s), u"0.2"); // round half to even in binary: 0.25 prints as 0.2
    EXPECT_EQ(U(DumpDouble(1.0)), u"       1.0000000000000");
    EXPECT_EQ(Spaces(100).GetLength(), 89);
}

TEST(Number2String, DateAsIsoTextInLocalTime) {
    // The tests run in Europe/Amsterdam: 14:07:09 local on 5 March (winter time, UTC+1) is
    // stored as 13:07:09 UTC and printed back in local time.
    CVXODateTime::ReloadTimeZoneBias();
    CVXODateTime d;
    ASSERT_EQ(d.SetDateTime(2024, 3, 5, 14, 7, 9), 0);
    EXPECT_EQ(U(szDate2String(d)), u"2024-03-05T14:07:09");
    CVXODateTime none;
    none.SetStatus(COleDateTime::null);
    EXPECT_EQ(U(szDate2String(none)), u"Unknown");
}

TEST(StringHelpers, SpacesCopiesAndComparisons) {
    char text[] = "  a b \t";
    RemoveSpaces(text);
    EXPECT_STREQ(text, "a b");

    CVXString a(u" a"), b(u"b ");
    EXPECT_TRUE(bCompareRemSpaces(a, b)); // "a" <= "b": true although they differ
    EXPECT_FALSE(bCompareRemSpaces(b, a));

    char dest[8];
    const unsigned char pascal[] = {5, 'h', 'e', 'l', 'l', 'o'};
    EXPECT_EQ(str0ncpy(dest, pascal, 3), 3);
    EXPECT_STREQ(dest, "hel");
    EXPECT_EQ(str0ncpy(dest, pascal, 7), 5);
    EXPECT_STREQ(dest, "hello");

    char16_t name[16];
    EXPECT_EQ(MyGetFileName(CVXString(u"c:\\dir\\file.txt"), nullptr, 0), 9);
    EXPECT_EQ(MyGetFileName(CVXString(u"c:\\dir\\file.txt"), name, 16), 0);
    EXPECT_EQ(std::u16string(name), u"file.txt");
}

TEST(StringHelpers, AbbreviateName) {
    CVXString p(u"c:\\a\\b\\c\\d\\file.txt"); // 19 units, file name 8
    AbbreviateName(p, 17, true);
    EXPECT_EQ(U(p), u"c:\\a\\...\\file.txt");
    CVXString r(u"c:\\a\\b\\c\\d\\file.txt");
    AbbreviateName(r, 15, true); // "c:\a\...\file.txt" does not fit: the name alone
    EXPECT_EQ(U(r), u"file.txt");
    CVXString t(u"c:\\a\\b\\c\\d\\file.txt");
    AbbreviateName(t, 5, true);
    EXPECT_EQ(U(t), u"file.txt");
    CVXString d(u"c:\\aa\\bb\\cc\\dd\\f.t"); // keeps as many trailing directories as fit
    AbbreviateName(d, 16, true);
    EXPECT_EQ(U(d), u"c:\\aa\\...\\dd\\f.t");
    CVXString unc(u"\\\\srv\\share\\dir1\\dir2\\f.txt");
    AbbreviateName(unc, 22, true);
    EXPECT_EQ(U(unc), u"\\\\srv\\share\\...\\f.txt");
}

TEST(StringHelpers, GuidTextForms) {
    GUID g;
    EXPECT_TRUE(String2GUID(g, CVXString(u"01234567-89ab-cdef-0123-456789ABCDEF")));
    EXPECT_EQ(g.Data1, 0x01234567u);
    EXPECT_EQ(g.Data2, 0x89ABu);
    CVXString text;
    GUID2String(text, g);
    EXPECT_EQ(U(text), u"{01234567-89AB-CDEF-0123-456789ABCDEF}");
    EXPECT_TRUE(IsValidGUID(text));
    EXPECT_FALSE(IsValidGUID(CVXString(u"01234567-89ab-cdef-0123-456789ABCDEF")));
}

TEST(EstimateMaxLen, EightBitRules) {
    EXPECT_EQ(nEstimateMaxLen("ab%d", 1), 34);
    EXPECT_EQ(nEstimateMaxLen("%f", 1.0), 32); // no trial print in the 8-bit scan
    EXPECT_EQ(nEstimateMaxLen("%s", "abc"), 3);
    EXPECT_EQ(nEstimateMaxLen("%40s", "abc"), 40);
}

TEST(ParseString, WordMode) {
    CParseString p(u",,a");
    CVXString out;
    EXPECT_EQ(p.GetFirst(out, u','), 1);
    EXPECT_EQ(U(out), u"a");
    EXPECT_EQ(p.GetNext(out), 0);

    EXPECT_EQ(p.GetFirst(out, u',', true), 1);
    EXPECT_TRUE(out.IsEmpty());
    EXPECT_EQ(p.GetNext(out), 1);
    EXPECT_TRUE(out.IsEmpty());
    EXPECT_EQ(p.GetNext(out), 1);
    EXPECT_EQ(U(out), u"a");
    EXPECT_EQ(p.GetNext(out), 0);
}

TEST(ParseString, EnclosedPrimaryAndMixedModes) {
    CVXString out;
    CParseString e(u"x(a(b)c)y");
    EXPECT_EQ(e.GetFirst(out, u'(', u')'), 1);
    EXPECT_EQ(U(out), u"a(b)c");
    EXPECT_EQ(e.GetRemaining(out), 1);
    EXPECT_EQ(U(out), u"y");
    EXPECT_EQ(e.GetRemaining(out), 0);
    CParseString none(u"abc");
    EXPECT_EQ(none.GetFirst(out, u'(', u')'), 0);

    CParseString ps(u"\"a b\" c");
    EXPECT_EQ(ps.GetFirstPS(out, u' ', u'"'), 1);
    EXPECT_EQ(U(out), u"a b");
    EXPECT_EQ(ps.GetNext(out), 1);
    EXPECT_EQ(U(out), u"c");
    EXPECT_EQ(ps.GetNext(out), 0);

    CParseString we(u"  w1 [x y] w2");
    EXPECT_EQ(we.GetFirst(out, u' ', u'[', u']'), 1);
    EXPECT_EQ(U(out), u"w1");
    EXPECT_EQ(we.GetNext(out), 1);
    EXPECT_EQ(U(out), u"x y");
    EXPECT_EQ(we.GetNext(out), 1);
    EXPECT_EQ(U(out), u"w2");
    EXPECT_EQ(we.GetNext(out), 0);
}
