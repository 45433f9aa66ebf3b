#include "platform/VXString.h"
#include "platform/Bstr.h"
#include "platform/CodePage.h"
#include "platform/Errors.h"
#include "platform/Resources.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

using namespace vx;

namespace {
std::u16string U(const CVXString &s) {
    return std::u16string(static_cast<const char16_t *>(s), s.GetLength());
}
} // namespace

TEST(VXString, EmptyIsNullWhateverItWasMadeFrom) {
    const CVXString none, fromWide(u""), fromNarrow(""),
        fromNull(static_cast<const char16_t *>(nullptr));
    for (const CVXString *s : {&none, &fromWide, &fromNarrow, &fromNull}) {
        EXPECT_EQ(s->GetData(), nullptr);
        EXPECT_EQ(s->GetLength(), 0);
        EXPECT_TRUE(s->IsEmpty());
        const char16_t *wide = *s;
        const char *narrow = *s;
        ASSERT_NE(wide, nullptr);
        ASSERT_NE(narrow, nullptr);
        EXPECT_EQ(wide[0], 0);
        EXPECT_EQ(narrow[0], 0);
    }
    CVXString trimmed(u"   ");
    trimmed.TrimRight();
    EXPECT_EQ(trimmed.GetData(), nullptr);
}

TEST(VXString, CopiesShareTheNodeAndEditsDetach) {
    CVXString b(u"abc");
    CVXString a(b);
    EXPECT_EQ(a.GetData(), b.GetData());
    a.MakeUpper();
    EXPECT_NE(a.GetData(), b.GetData());
    EXPECT_EQ(U(a), u"ABC");
    EXPECT_EQ(U(b), u"abc");
    a = a; // self-assignment keeps the text
    EXPECT_EQ(U(a), u"ABC");
}

TEST(VXString, LengthComesFromTheCountNotTheTerminator) {
    const char16_t raw[] = {u'a', 0, u'b'};
    BSTR b = SysAllocStringLen(raw, 3);
    CVXString s(b, false); // takes ownership
    EXPECT_EQ(s.GetLength(), 3);
    EXPECT_EQ(s.GetAtU(2), u'b');
    // Operations told as scanning stop at the embedded zero.
    EXPECT_EQ(s.Find(u'b'), -1);
    EXPECT_STREQ(static_cast<const char *>(s), "a");
    const char16_t surrogate[] = {0xD83D, 0xDE00, 0};
    EXPECT_EQ(CVXString(surrogate).GetLength(), 2);
}

TEST(VXString, EightBitViewIsBuiltOnceAndGoesStaleAfterInPlaceEdits) {
    CVXString s(u"Hello");
    const char *first = s;
    const char *second = s;
    EXPECT_EQ(first, second);
    EXPECT_STREQ(first, "Hello");
    s.MakeLower(); // sole owner: edited in place, the 8-bit form is not refreshed
    EXPECT_EQ(static_cast<const char *>(s), first);
    EXPECT_STREQ(static_cast<const char *>(s), "Hello");
    EXPECT_EQ(U(s), u"hello");
    s.SetAtU(0, u'J');
    EXPECT_STREQ(static_cast<const char *>(s), "Hello");
    // Operations that build a new node show the new text.
    s += u"!";
    EXPECT_STREQ(static_cast<const char *>(s), "Jello!");
    // Assigning the node's own 8-bit form is a no-op.
    const CVXStringData *node = s.GetData();
    s = static_cast<const char *>(s);
    EXPECT_EQ(s.GetData(), node);
}

TEST(VXString, IndexOutsideTheTextIsAnError) {
    // Reading or writing past the text used to dereference the null node of the empty string.
    const CVXString empty;
    EXPECT_THROW(empty.GetAtU(0), CInvalidArgException);
    EXPECT_THROW(empty[0], CInvalidArgException);
    const CVXString ab(u"ab");
    EXPECT_EQ(ab.GetAtU(1), u'b');
    EXPECT_THROW(ab.GetAtU(2), CInvalidArgException); // the terminator is not a unit
    EXPECT_THROW(ab[-1], CInvalidArgException);
    EXPECT_THROW(ab.GetAtA(2), CInvalidArgException);
    CVXString edit(u"ab");
    const CVXString shared = edit;
    EXPECT_THROW(edit.SetAtU(2, u'x'), CInvalidArgException);
    CVXString none;
    EXPECT_THROW(none.SetAtU(0, u'x'), CInvalidArgException);
    EXPECT_TRUE(none.IsEmpty());
    // A refused write leaves both the text and its sharing alone.
    EXPECT_EQ(edit, u"ab");
    EXPECT_EQ(edit.GetData(), shared.GetData());
}

TEST(VXString, CopiesConvertToEightBitsFromManyThreads) {
    // Every thread converts its own copy of one string: they share the node, so they must all
    // see one fully built view (ThreadSanitizer checks the publication, LeakSanitizer that the
    // losing copies are freed).
    constexpr int kThreads = 4;
    constexpr int kRounds = 200;
    for (int round = 0; round < kRounds; ++round) {
        const CVXString original(u"Gem\u00e4\u00dfigte Zone " +
                                 CVXString(static_cast<char16_t>(u'A' + round % 26)));
        std::vector<CVXString> copies(kThreads, original);
        std::vector<const char *> views(kThreads, nullptr);
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t)
            threads.emplace_back([&copies, &views, t] { views[t] = copies[t]; });
        for (std::thread &th : threads)
            th.join();
        for (int t = 0; t < kThreads; ++t) {
            EXPECT_EQ(views[t], views[0]);
            // In Windows-1252 a-umlaut is 0xE4 and sharp s 0xDF.
            const std::string expected =
                std::string("Gem\xe4\xdfigte Zone ") + static_cast<char>('A' + round % 26);
            ASSERT_STREQ(views[t], expected.c_str());
        }
    }
}

TEST(VXString, EightBitTextGoesThroughTheCodePage) {
    // Windows-1252: 0x80 is the euro sign, 0xE9 is e-acute.
    const char bytes[] = {'\x80', '\xE9', 0};
    CVXString s(bytes);
    EXPECT_EQ(U(s), std::u16string({u'\u20AC', u'\u00E9'}));
    EXPECT_STREQ(static_cast<const char *>(s), bytes);
    // A unit the code page cannot hold becomes '?'.
    EXPECT_STREQ(static_cast<const char *>(CVXString(u"a\u4E2Db")), "a?b");
}

TEST(VXString, CompareAndItsAsymmetryWithAnEmptyLiteral) {
    const CVXString empty, abc(u"abc"), abd(u"abd"), ab(u"ab");
    EXPECT_EQ(empty.Compare(CVXString()), 0);
    EXPECT_EQ(empty.Compare(u""), -1); // the literal is a text, the empty string is none
    EXPECT_EQ(empty.CompareNoCase(u""), -1);
    EXPECT_EQ(abc.Compare(empty), 1);
    EXPECT_EQ(abc.Compare(abd), u'c' - u'd');
    EXPECT_EQ(CVXString(u"ABD").CompareNoCase(u"abc"), u'd' - u'c');
    // Units compare as unsigned numbers.
    EXPECT_GT(CVXString(u"\uFFFF").Compare(u"a"), 0);
}

TEST(VXString, SubstringsClampAndShare) {
    const CVXString s(u"abcd");
    EXPECT_EQ(U(s.Mid(2, 100)), u"cd");
    EXPECT_TRUE(s.Mid(5, 1).IsEmpty());
    EXPECT_TRUE(s.Left(-1).IsEmpty());
    EXPECT_EQ(s.Left(100).GetData(), s.GetData());
    EXPECT_EQ(U(s.Right(3)), u"bcd");
    EXPECT_EQ(U(s.SpanIncluding(u"ba")), u"ab");
    EXPECT_EQ(U(s.SpanExcluding(u"dc")), u"ab");
}

TEST(VXString, FindRules) {
    const CVXString s(u"abcabc");
    EXPECT_EQ(s.Find(u'c'), 2);
    EXPECT_EQ(s.ReverseFind(u'a'), 3);
    EXPECT_EQ(s.Find(u"ca"), 2);
    EXPECT_EQ(s.Find(u"", 6), 6); // at the length the terminator is searched
    EXPECT_EQ(s.FindOneOf(u"xc"), 2);
}

TEST(VXString, ReplaceRemoveInsertDelete) {
    CVXString s(u"aaa");
    EXPECT_EQ(s.Replace(u"aa", u"b"), 1);
    EXPECT_EQ(U(s), u"ba");
    CVXString t(u"x.y.z");
    EXPECT_EQ(t.Replace(u".", u"::"), 2);
    EXPECT_EQ(U(t), u"x::y::z");
    EXPECT_EQ(t.Replace(u"::", nullptr), 2);
    EXPECT_EQ(U(t), u"xyz");
    EXPECT_EQ(t.Replace(u'y', u'Y'), 1);
    EXPECT_EQ(U(t), u"xYz");

    CVXString r(u"banana");
    EXPECT_EQ(r.Remove(u'a'), 3);
    EXPECT_EQ(U(r), u"bnn");

    CVXString d(u"abc");
    EXPECT_EQ(d.Delete(1, 1), 2);
    EXPECT_EQ(U(d), u"ac");
    EXPECT_EQ(d.Delete(0, 2), 0);
    EXPECT_EQ(d.GetData(), nullptr);
    CVXString over(u"abc");
    EXPECT_THROW(over.Delete(2, 5), CInvalidArgException);

    CVXString i(u"ac");
    EXPECT_EQ(i.Insert(1, u'b'), 3);
    EXPECT_EQ(U(i), u"abc");
    // A single unit may be inserted at the new length; one past it lets the old terminator in.
    CVXString j(u"ab");
    EXPECT_EQ(j.Insert(2, u'c'), 3);
    EXPECT_EQ(U(j), u"abc");
    CVXString k(u"ab");
    EXPECT_EQ(k.Insert(9, u'c'), 3);
    EXPECT_EQ(U(k), std::u16string(u"ab\0", 3));
}

TEST(VXString, TrimFamily) {
    CVXString s(u"  a b  ");
    s.TrimRight();
    EXPECT_EQ(U(s), u"  a b");
    s.TrimLeft();
    EXPECT_EQ(U(s), u"a b");
    CVXString blanks(u"   ");
    blanks.Trim();
    EXPECT_EQ(blanks.GetData(), nullptr);
    CVXString set(u"-+a+-b-+");
    set.TrimLeft(u"+-");
    set.TrimRight(u"+-");
    EXPECT_EQ(U(set), u"a+-b");
    CVXString all(u"+-+");
    all.TrimLeft(u"+-"); // the scan stops at the end of the text
    EXPECT_TRUE(all.IsEmpty());
}

TEST(VXString, CaseReverseEnquoteAndConcatenation) {
    CVXString s(u"aBc");
    s.MakeReverse();
    EXPECT_EQ(U(s), u"cBa");
    CVXString e;
    e.MakeUpper(); // no effect on the empty string
    EXPECT_EQ(e.GetData(), nullptr);
    EXPECT_EQ(U(CVXString(u"say \"hi\"").Enquote()), u"\"SAY HI\"");
    // += always builds a new node, even when the node was not shared.
    CVXString t(u"ab");
    const CVXStringData *before = t.GetData();
    t += u"c";
    EXPECT_NE(t.GetData(), before);
}

TEST(VXStringFormat, PrintsLikePrintfWithCheckedArguments) {
    CVXString s;
    s.Format(u"%d|%5.2f|%-4s|%c|%x|%I64d|%%|%s", 42, 3.14159, u"ab", u'Z', 255u,
             int64_t{-9000000000}, CVXString(u"str"));
    EXPECT_EQ(U(s), u"42| 3.14|ab  |Z|ff|-9000000000|%|str");
    s.Format(u"%s", static_cast<const char16_t *>(nullptr));
    EXPECT_EQ(U(s), u"(null)");
    s.Format(u"");
    EXPECT_EQ(s.GetData(), nullptr);
    int count = 0;
    s.Format(u"abc%n", &count);
    EXPECT_EQ(count, 3);
}

TEST(VXStringFormat, MismatchesAreProgrammingErrors) {
    CVXString s;
    EXPECT_THROW(s.Format(u"%d", 1.5), CInvalidArgException);
    EXPECT_THROW(s.Format(u"%d", int64_t{1}), CInvalidArgException); // 64 bits need I64
    EXPECT_THROW(s.Format(u"%d %d", 1), CInvalidArgException);
    EXPECT_THROW(s.Format(u"%q", 3), CInvalidArgException);
}

TEST(VXStringFormat, LengthEstimate) {
    auto estimate = [](const char16_t *f, auto... a) {
        const CFormatArg list[] = {CFormatArg(a)..., CFormatArg(0)};
        return nEstimateFormatLen(f, CFormatArgs{list, sizeof...(a)});
    };
    EXPECT_EQ(estimate(u"ab%%c"), 4);
    EXPECT_EQ(estimate(u"%s", u""), 1); // at least 1
    EXPECT_EQ(estimate(u"%.2s", u"abcd"), 2);
    EXPECT_EQ(estimate(u"%d", 1), 32);
    EXPECT_EQ(estimate(u"%g", 1.0), 128);
    // %f is printed on trial at the precision plus six: "%*.*f" of 2.5 at 0, 8 gives 10 units.
    EXPECT_EQ(estimate(u"%.2f", 2.5), 10);
    // A precision too large for the estimate cuts the printed text at the bound.
    CVXString s;
    s.Format(u"%.200e", 1.0);
    EXPECT_EQ(s.GetLength(), 200);
}

TEST(VXStringFormat, ResourceTemplatesAndMarkers) {
    SetResourceLanguage(LANG_DUTCH);
    CVXString s;
    s.Format(34u);
    EXPECT_EQ(U(s), u"Onbekend");
    AfxFormatString1(s, IDS_FILE_IN_USE, u"a.txt");
    EXPECT_EQ(U(s), u"a.txt in gebruik");
    AfxFormatString2(s, IDS_FILE_OPEN_FAILED, u"x", u"y");
    EXPECT_EQ(U(s), u"File x kan niet worden geopend,\noorzaak: y");
    SetResourceLanguage(LANG_CHINESE);
    SetResourceLanguage(LANG_ENGLISH_US);
    EXPECT_FALSE(s.LoadStringA(99999));
    EXPECT_TRUE(s.IsEmpty());

    const char16_t *strings[] = {u"one", nullptr};
    AfxFormatStringText(s, u"[%1][%2][%3][%x][100%]", strings, 2);
    EXPECT_EQ(U(s), u"[one][][?][%x][100%]");
}

TEST(CodePage, SettingIsOneProcessWideChoice) {
    EXPECT_STREQ(GetCodePage(), "WINDOWS-1252");
    SetCodePage("ISO-8859-15");
    EXPECT_EQ(CodePageToWide("\xA4", 1), u"\u20AC"); // the euro sits at 0xA4 there
    SetCodePage("UTF-8");
    EXPECT_THROW(SetCodePage("NO-SUCH-CODEPAGE"), CInvalidArgException);
    SetCodePage("WINDOWS-1252");
    EXPECT_EQ(Utf8ToWide("\xF0\x9F\x98\x80", 4), std::u16string({0xD83D, 0xDE00}));
    EXPECT_EQ(WideToUtf8(u"\u00E9", 1), "\xC3\xA9");
    EXPECT_EQ(Utf8ToWide("\xC3", 1), u"\uFFFD");
}
