// The message list: report lines, counters, the limit, merging, saving; progress display.
#include "text/AsciiMeldingen.h"

#include "foundation/VXODateTime.h"
#include "platform/Resources.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

using namespace vx;
using vxtest::ReadBytes;
using vxtest::TempDir;
using Type = CAsciiMeldingen::Type;

namespace {

std::string Report(CAsciiMeldingen &list) {
    CAsciiMemFile *mem = list.pGetMeldingen();
    return std::string(reinterpret_cast<const char *>(mem->GetData()),
                       static_cast<size_t>(mem->GetLength()));
}

Type Kind(int n) {
    return static_cast<Type>(n);
}

} // namespace

TEST(AsciiMelding, TwoLinesPerMessage) {
    CVXString out;
    CAsciiMelding(Kind(3), u"punten.txt", 12, 'K', 7, u"Onbekende code").CreeerRegel(out);
    EXPECT_EQ(out, u"  <punten.txt> 12 (K7)\r\n    Onbekende code\r\n");
    CAsciiMelding(Kind(4), u"a", 0, 'c', 65535, u"").CreeerRegel(out);
    EXPECT_EQ(out, u"* <a> 0 (c65535)\r\n    \r\n");
    CAsciiMelding(Kind(2), u"b", 4000000000u, 'x', 1, u"t").CreeerRegel(out);
    EXPECT_EQ(out, u"* <b> -294967296 (x1)\r\n    t\r\n"); // the line number prints with %d
}

TEST(AsciiMeldingen, KindsAndCounters) {
    CAsciiMeldingen list(false);
    EXPECT_EQ(Report(list), "");
    CAsciiMelding warning(Kind(3), u"f", 1, 'k', 2, u"w");
    CAsciiMelding error(Kind(4), u"f", 2, 'k', 3, u"e");
    list.AddMelding(warning);
    EXPECT_EQ(list.lGetFouten(), 0u);
    EXPECT_TRUE(list.bFileRelatie());
    list.AddMelding(error);
    list.AddMelding(Kind(2), u"plain");
    list.AddMelding(Kind(5), u"uncounted");
    list.AddMeldingFmt(Kind(0), u"%d items", 3);
    EXPECT_EQ(list.lGetFouten(), 2u);
    EXPECT_EQ(list.lGetAantal(), 4u);
    EXPECT_EQ(list.lGetAantal(Kind(2)), 1u);
    EXPECT_EQ(list.lGetAantal(Kind(5)), 0u);
    EXPECT_EQ(Report(list), "  <f> 1 (k2)\r\n    w\r\n* <f> 2 (k3)\r\n    e\r\n"
                            "plain\r\nuncounted\r\n3 items\r\n");

    CAsciiMeldingen plain(false);
    plain.AddMelding(Kind(1), u"x");
    EXPECT_FALSE(plain.bFileRelatie());
    plain.AddMelding(Kind(0), static_cast<unsigned int>(IDS_UNKNOWN));
    plain.AddMeldingFmt(Kind(1), static_cast<unsigned int>(IDS_UNKNOWN));
    EXPECT_EQ(Report(plain), "x\r\nUnknown\r\nUnknown\r\n");
}

TEST(AsciiMeldingen, TheLimitKeepsThe5001stAndResetReopens) {
    CAsciiMeldingen list(false);
    for (int i = 0; i < 5000; ++i)
        list.AddMelding(Kind(i % 5), u"m");
    EXPECT_FALSE(list.bIsVol());
    for (int i = 0; i < 100; ++i)
        list.AddMelding(Kind(5), u"k"); // kind 5 never fills the list
    EXPECT_FALSE(list.bIsVol());
    list.AddMelding(Kind(0), u"last");
    EXPECT_TRUE(list.bIsVol());
    EXPECT_EQ(list.lGetAantal(), 5001u);
    const size_t length = Report(list).size();
    EXPECT_EQ(length, 5000u * 3 + 100u * 3 + 6u);
    CAsciiMelding more(Kind(2), u"f", 1, 'k', 1, u"t");
    list.AddMelding(more);
    list.AddMelding(Kind(2), u"dropped");
    EXPECT_EQ(list.lGetAantal(), 5001u);
    EXPECT_EQ(list.lGetFouten(), 2000u);
    EXPECT_EQ(Report(list).size(), length);

    list.Reset();
    EXPECT_FALSE(list.bIsVol());
    EXPECT_EQ(list.lGetAantal(), 0u);
    EXPECT_EQ(Report(list), "");
    list.AddMelding(Kind(1), u"again");
    EXPECT_EQ(Report(list), "again\r\n");
}

TEST(AsciiMeldingen, MergingIgnoresTheLimit) {
    CAsciiMeldingen a(false), b(false);
    for (int i = 0; i < 4000; ++i) {
        a.AddMelding(Kind(2), u"a");
        b.AddMelding(Kind(3), u"b");
    }
    a.AddMelding(b);
    EXPECT_EQ(a.lGetAantal(), 8000u);
    EXPECT_EQ(a.lGetFouten(), 4000u);
    EXPECT_FALSE(a.bIsVol());
    a.AddMelding(Kind(0), u"one");
    EXPECT_TRUE(a.bIsVol());
    a.AddMelding(Kind(0), u"two");
    EXPECT_EQ(a.lGetAantal(), 8001u);
    const std::string report = Report(a);
    EXPECT_EQ(report.size(), 8000u * 3 + 5u);
    EXPECT_EQ(report.substr(0, 3), "a\r\n");
    EXPECT_EQ(report.substr(4000 * 3, 3), "b\r\n");
    EXPECT_EQ(report.substr(8000 * 3), "one\r\n");

    CAsciiMeldingen self(false);
    self.AddMelding(Kind(4), u"x");
    self.AddMelding(self);
    EXPECT_EQ(Report(self), "x\r\nx\r\n");
    EXPECT_EQ(self.lGetFouten(), 2u);
}

TEST(AsciiMeldingen, DateLineAtTheHead) {
    CAsciiMeldingen dated;
    dated.AddMelding(Kind(1), u"x");
    dated.Reset();
    const std::string report = Report(dated);
    // "YYYY-MM-DD hh:mm:ss\r\n": the text form the date parser reads back.
    ASSERT_EQ(report.size(), 21u) << report;
    EXPECT_EQ(report.substr(19), "\r\n");
    CVXODateTime stamp;
    EXPECT_TRUE(stamp.ParseDateTime(report.substr(0, 19).c_str())) << report;
    EXPECT_EQ(dated.lGetAantal(), 0u);
}

TEST(AsciiMeldingen, SaveAsWritesTheReport) {
    TempDir dir;
    CAsciiMeldingen list(false);
    list.AddMelding(Kind(2), u"caf\u00e9");
    const std::string path = dir.file("report.txt");
    vxtest::WriteBytes(path, std::vector<uint8_t>(50, 'z')); // emptied first
    list.SaveAs(CVXString(path.c_str()));
    EXPECT_EQ(ReadBytes(path), (std::vector<uint8_t>{'c', 'a', 'f', 0xE9, '\r', '\n'}));
    EXPECT_EQ(list.lGetAantal(), 1u); // the list stays as it is

    const std::string bad = dir.file("no/such/dir/report.txt");
    try {
        list.SaveAs(CVXString(bad.c_str()));
        FAIL() << "no exception";
    } catch (const CFileException &e) {
        EXPECT_EQ(e.m_strFileName, CVXString(bad.c_str()));
    }
}

namespace {

// Records what a progress display is told.
class CRecordingSink : public IProgressSink {
public:
    void Begin(const CVXString &title) override { Log("begin " + S(title)); }
    void SetRange(int32_t lo, int32_t hi) override { Log("range " + N(lo) + " " + N(hi)); }
    void SetPos(int32_t pos) override { Log("pos " + N(pos)); }
    void SetText(const CVXString &text) override { Log("text " + S(text)); }
    void End() override { Log("end"); }
    std::string m_log;

private:
    void Log(const std::string &line) { m_log += line + ";"; }
    static std::string S(const CVXString &s) { return static_cast<const char *>(s); }
    static std::string N(int32_t n) { return std::to_string(n); }
};

} // namespace

TEST(Progress, TheDialogTalksToTheInstalledSink) {
    CRecordingSink sink;
    SetProgressSink(&sink);
    {
        CAsciiProgress progress(IDS_UNKNOWN);
        progress.SetParms(0, 50, 20);
        for (int i = 0; i < 3; ++i)
            progress.StepIt(); // the third stays at the end of the range
        progress.SetPos(-5);
        progress.OffsetPos(7);
        progress.AddMeldingText(IDS_UNKNOWN);
        EXPECT_EQ(progress.lGetAantal(), 1u);
    }
    SetProgressSink(nullptr);
    EXPECT_EQ(sink.m_log, "begin Unknown;range 0 100;pos 0;range 0 50;pos 0;pos 20;pos 40;"
                          "pos 50;pos 0;pos 7;text Unknown;end;");

    CKvtpProgress quiet(u"no sink"); // nothing installed: the state is kept, nothing shown
    quiet.Init();
    quiet.SetParml(100000); // scaled to the bar
    quiet.SetPosl(50000);
    EXPECT_EQ(quiet.GetHigh(), CKvtpProgress::nBarMax);
    EXPECT_EQ(quiet.GetPos(), CKvtpProgress::nBarMax / 2);
    quiet.StepBack();
    EXPECT_EQ(quiet.GetPos(), CKvtpProgress::nBarMax / 2 - 10);
    quiet.SetParml(300);
    quiet.SetPosl(120);
    EXPECT_EQ(quiet.GetPos(), 120);
}

TEST(Progress, TerminalBar) {
    char *buffer = nullptr;
    size_t size = 0;
    std::FILE *out = open_memstream(&buffer, &size);
    ASSERT_NE(out, nullptr);
    CTerminalProgress bar(out, 10);
    bar.Begin(u"Reading");
    bar.SetRange(0, 200);
    bar.SetPos(1); // still 0 %: not drawn again
    bar.SetPos(50);
    bar.SetText(u"file.txt");
    bar.SetPos(200);
    bar.End();
    std::fclose(out);
    const std::string text(buffer, size);
    std::free(buffer);
    EXPECT_EQ(text, "\rReading [..........]   0%\x1b[K"
                    "\rReading [##........]  25%\x1b[K"
                    "\rReading [##........]  25% file.txt\x1b[K"
                    "\rReading [##########] 100% file.txt\x1b[K\n");
}
