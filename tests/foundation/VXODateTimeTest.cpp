// Dates: expected OLE values are day counts from 1899-12-30 computed with Python's datetime
// (date.toordinal() - date(1899, 12, 30).toordinal()), times as milliseconds over 86400000.
#include "foundation/VXODateTime.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

using namespace vx;

namespace {

// 2026-01-15 12:00 UTC and 2026-07-01 12:00 UTC, in seconds since 1970.
constexpr int64_t nWinter = 1768478400;
constexpr int64_t nSummer = 1782907200;

// Pins the zone and takes its offset at the given moment.
void UseZone(const char *tz, int64_t at) {
    setenv("TZ", tz, 1);
    CVXODateTime::ReloadTimeZoneBias(at);
}

// Each test runs in Amsterdam winter time; the zone of before comes back afterwards.
class DateTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_tz = std::make_unique<vxtest::ScopedEnv>("TZ", "Europe/Amsterdam");
        UseZone("Europe/Amsterdam", nWinter);
    }
    void TearDown() override {
        m_tz.reset();
        CVXODateTime::ReloadTimeZoneBias();
    }
    std::unique_ptr<vxtest::ScopedEnv> m_tz;
};

std::string Text(const CVXString &s) {
    return static_cast<const char *>(s);
}
double Value(const CVXODateTime &d) {
    return static_cast<double>(d);
}
CVXODateTime WithStatus(double v, CVXODateTime::DateTimeStatus status) {
    return CVXODateTime(COleDateTime(v, status));
}

SYSTEMTIME Fields(int y, int mo, int d, int h, int mi, int s, int ms) {
    SYSTEMTIME st;
    st.wYear = uint16_t(y), st.wMonth = uint16_t(mo), st.wDay = uint16_t(d);
    st.wHour = uint16_t(h), st.wMinute = uint16_t(mi), st.wSecond = uint16_t(s);
    st.wMilliseconds = uint16_t(ms);
    return st;
}

} // namespace

TEST_F(DateTest, RangeStatusAndDateOnly) {
    EXPECT_EQ(Value(CVXODateTime()), 0.0);
    EXPECT_EQ(CVXODateTime().GetStatus(), CVXODateTime::valid);
    for (double ok : {2958465.0, -657434.0})
        EXPECT_EQ(CVXODateTime(ok).GetStatus(), CVXODateTime::valid) << ok;
    for (double bad : {2958465.5, -657434.5, std::nan("")})
        EXPECT_EQ(CVXODateTime(bad).GetStatus(), CVXODateTime::invalid) << bad;
    EXPECT_TRUE(CVXODateTime(-2.0).DateOnly());
    EXPECT_FALSE(CVXODateTime(-1.25).DateOnly());
    EXPECT_EQ(WithStatus(5.0, CVXODateTime::null).GetStatus(), CVXODateTime::null);
}

TEST_F(DateTest, BiasAndTheDateOnlyRule) {
    EXPECT_EQ(CVXODateTime::GetTimeZoneBias(), -60 / 1440.0);
    CVXODateTime date, noon, midnight;
    EXPECT_EQ(date.SetDate(2000, 1, 1), 0);
    EXPECT_EQ(Value(date), 36526.0);
    EXPECT_EQ(noon.SetDateTime(2000, 1, 1, 12, 0, 0), 0);
    EXPECT_EQ(Value(noon), 36526.458333333336); // 11:00 UTC
    EXPECT_EQ(noon.GetHour(), 12);
    midnight.SetDateTime(2000, 1, 2, 0, 0, 0); // no fraction: taken for a date, not shifted
    EXPECT_EQ(Value(midnight), 36527.0);

    UseZone("America/New_York", nWinter);
    EXPECT_EQ(CVXODateTime::GetTimeZoneBias(), 300 / 1440.0);
    EXPECT_EQ(date.GetDay(), 1); // a date shows the same day in every zone
    EXPECT_EQ(date.GetHour(), 0);
    EXPECT_EQ(noon.GetHour(), 6);
    UseZone("UTC", nSummer);
    EXPECT_EQ(CVXODateTime::GetTimeZoneBias(), 0.0);

    EXPECT_EQ(date.SetDate(2001, 2, 29), CVXODateTime::invalid);
    EXPECT_EQ(date.SetDateTime(2000, 1, 1, 24, 0, 0), CVXODateTime::invalid);
}

TEST_F(DateTest, SummerAndWinterInstants) {
    UseZone("Europe/Amsterdam", nSummer);
    EXPECT_EQ(CVXODateTime::GetTimeZoneBias(), -120 / 1440.0);
    CVXODateTime summer, winter;
    summer.SetDateTime(2026, 7, 1, 14, 0, 0);
    EXPECT_EQ(Value(summer), 46204.5); // 12:00 UTC
    // The offset is read once: under the winter offset the same instant shows 13:00.
    UseZone("Europe/Amsterdam", nWinter);
    EXPECT_EQ(summer.GetHour(), 13);
    winter.SetDateTime(2026, 1, 15, 13, 0, 0);
    EXPECT_EQ(Text(winter.ToISODateTime(false)), "2026-01-15T12:00:00.000");
}

TEST_F(DateTest, SystemTimeAndTheGregorianCycles) {
    struct Case {
        double dt;
        int y, mo, d, dow;
    } const cases[] = {{36526.0, 2000, 1, 1, 6}, {61.0, 1900, 3, 1, 4},
                       {60.0, 1900, 2, 28, 3},   {36585.0, 2000, 2, 29, 2},
                       {73110.0, 2100, 3, 1, 1}, {-657434.0, 100, 1, 1, 5},
                       {-1.0, 1899, 12, 29, 5},  {2958465.0, 9999, 12, 31, 5}};
    SYSTEMTIME st;
    for (const Case &c : cases) {
        ASSERT_TRUE(CVXODateTime(c.dt).GetAsSystemTime(st)) << c.dt;
        EXPECT_EQ(std::vector<int>({st.wYear, st.wMonth, st.wDay, st.wDayOfWeek}),
                  std::vector<int>({c.y, c.mo, c.d, c.dow}))
            << c.dt;
    }
    ASSERT_TRUE(CVXODateTime(-1.25).GetAsSystemTime(st)); // forward from 29 December
    EXPECT_EQ(st.wDay * 100 + st.wHour, 2906);
    // Rounding to the nearest millisecond: 0.6 ms before midnight stays, 0.4 ms rolls over.
    ASSERT_TRUE(CVXODateTime(36526.99999999306).GetAsSystemTime(st));
    EXPECT_EQ(std::vector<int>({st.wDay, st.wHour, st.wMinute, st.wSecond, st.wMilliseconds}),
              std::vector<int>({1, 23, 59, 59, 999}));
    ASSERT_TRUE(CVXODateTime(36526.99999999537).GetAsSystemTime(st));
    EXPECT_EQ(std::vector<int>({st.wDay, st.wHour, st.wMilliseconds}), std::vector<int>({2, 0, 0}));
    SYSTEMTIME untouched = Fields(7, 7, 7, 7, 7, 7, 7);
    EXPECT_FALSE(WithStatus(1.0, CVXODateTime::null).GetAsSystemTime(untouched));
    EXPECT_EQ(untouched.wYear, 7);

    CVXODateTime dt;
    EXPECT_TRUE(dt.FromSystemTime(Fields(2000, 1, 1, 10, 0, 0, 123)));
    EXPECT_EQ(Value(dt), 36526.41666809028);
    EXPECT_TRUE(dt.FromSystemTime(Fields(1899, 12, 29, 6, 0, 0, 0)));
    EXPECT_EQ(Value(dt), -1.25);
    EXPECT_FALSE(dt.FromSystemTime(Fields(2000, 13, 1, 0, 0, 0, 0)));
    EXPECT_EQ(dt.GetStatus(), CVXODateTime::invalid);
}

TEST_F(DateTest, ComparisonsAndSpans) {
    const CVXODateTime a(36526.5), b(36526.5), c(36527.0);
    EXPECT_TRUE(a == b && a != c && a < c && c > a && a <= b && a >= b && c >= a);
    const CVXODateTime null1 = WithStatus(0.0, CVXODateTime::null), null2 = null1;
    const CVXODateTime bad1(1e7), bad2(1e7);
    EXPECT_TRUE(null1 == null2);
    EXPECT_FALSE(bad1 == bad2); // invalid dates are never equal, not even by >=
    EXPECT_FALSE(WithStatus(36526.5, CVXODateTime::null) == a);
    EXPECT_TRUE(WithStatus(36526.5, CVXODateTime::null) < c); // ordering looks at values only

    EXPECT_EQ(Value(a + COleDateTimeSpan(1, 6, 0, 0)), 36527.75);
    EXPECT_EQ(Value(a - COleDateTimeSpan(0.5)), 36526.0);
    // Below zero the fraction counts forward: 29 December 06:00 plus 12 hours is 18:00.
    EXPECT_EQ(Value(CVXODateTime(-1.25) + COleDateTimeSpan(0.5)), -1.75);
    EXPECT_EQ(double(CVXODateTime(-1.25) - CVXODateTime(0.25)), -1.0);
    EXPECT_EQ((a - bad1).GetStatus(), CVXODateTime::invalid);
    // 1 d 1 h 1 min 1.4 s rounds to ...:01; 61.6 s to 1:02.
    const COleDateTimeSpan span(1 + 1 / 24.0 + 1 / 1440.0 + 1.4 / 86400.0);
    EXPECT_EQ(
        std::vector<int>({span.GetDays(), span.GetHours(), span.GetMinutes(), span.GetSeconds()}),
        std::vector<int>({1, 1, 1, 1}));
    EXPECT_EQ(COleDateTimeSpan(61.6 / 86400.0).GetSeconds(), 2);
}

TEST_F(DateTest, IsoTextIsStoredTime) {
    EXPECT_EQ(Text(CVXODateTime(36526.5).ToISODateTime(true)), "2000-01-01T12:00:00.000+00:00");
    EXPECT_TRUE(WithStatus(1.0, CVXODateTime::null).ToISODateTime(true).IsEmpty());
    struct Case {
        const char16_t *text;
        double value;
    } const good[] = {
        {u"2000-01-01", 36526.0},
        {u"2000-01-01T10:00:00", 36526.416666666664},
        {u"2000-01-01T10:00:00.5", 36526.416672453706},
        {u"2000-01-01T10:00:00.123456", 36526.41666809028},
        {u"2000-01-01T10:00:00.0+01:00", 36526.375},           // 09:00 UTC
        {u"2000-01-01T10:00:00,000-02:30", 36526.52083333333}, // 12:30 UTC
    };
    CVXODateTime dt;
    for (const Case &c : good) {
        EXPECT_TRUE(dt.FromISODateTime(c.text)) << Text(c.text);
        EXPECT_EQ(Value(dt), c.value) << Text(c.text);
    }

    const char16_t *const bad[] = {u"2000-01-01T10:00:00+01:00",
                                   u"2000-01-01 10:00:00",
                                   u"2000-01-01T10:00",
                                   u"2000-01-01T10:00:00.0+13:00",
                                   u"2000-01-01T10:00:00.0Z",
                                   u"20a0-01-01",
                                   u"2000-01-01x"};
    for (const char16_t *text : bad) {
        CVXODateTime d(36526.5);
        EXPECT_FALSE(d.FromISODateTime(text)) << Text(text);
        EXPECT_EQ(d.GetStatus(), CVXODateTime::null) << Text(text);
    }
    EXPECT_FALSE(dt.FromISODateTime(u"2000-13-01T00:00:00")); // parsed, but no date
    EXPECT_EQ(dt.GetStatus(), CVXODateTime::invalid);
}

TEST_F(DateTest, FromStringReadsRunsOfThePattern) {
    CVXODateTime dt;
    EXPECT_TRUE(dt.FromString(u"21.11.2026 14:30", u"dd.MM.yyyy HH:mm"));
    EXPECT_EQ(Text(dt.ToISODateTime(false)), "2026-11-21T13:30:00.000"); // local 14:30
    // One position serves pattern and text: a blank for a leading zero is skipped within the
    // run, but text before the run pushes the digits out of it (the day reads as 0).
    EXPECT_TRUE(dt.FromString(u" 5.11.2026", u"dd.MM.yyyy"));
    EXPECT_EQ(Value(dt), 46331.0);
    EXPECT_FALSE(dt.FromString(u"x 5.11.2026", u"dd.MM.yyyy"));
    EXPECT_EQ(dt.GetStatus(), CVXODateTime::invalid);
    EXPECT_TRUE(dt.FromString(u"", u"")); // defaults: 1990-01-01
    EXPECT_EQ(Value(dt), 32874.0);

    // Two-digit years fall in the hundred years that begin 50 years before the present one.
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    const int p = local.tm_year + 1900 - 50, low = p % 100;
    auto twoDigits = [](int y) { return CVXString(std::to_string(100 + y).substr(1).c_str()); };
    EXPECT_TRUE(dt.FromString(twoDigits(low), u"yy"));
    EXPECT_EQ(dt.GetYear(), p);
    EXPECT_TRUE(dt.FromString(twoDigits((low + 99) % 100), u"yy")); // the year before p % 100
    EXPECT_EQ(dt.GetYear(), p + 99);

    for (const char16_t *text : {u"21.11", u"30.02.2000", u"12.12.2000 25:00"})
        EXPECT_FALSE(dt.FromString(text, u"dd.MM.yyyy HH:mm")) << Text(text);
}

TEST_F(DateTest, TextInLocalTime) {
    CVXString text;
    CVXODateTime(36526.5).ToString(text);
    EXPECT_EQ(Text(text), "2000-01-01 13:00:00");
    CVXODateTime(36526.0).ToString(text);
    EXPECT_EQ(Text(text), "2000-01-01");
    EXPECT_EQ(Text(CVXODateTime(36526.5).Format("%d/%m/%Y %H.%M %A")), "01/01/2000 13.00 Saturday");
    WithStatus(1.0, CVXODateTime::null).ToString(text);
    EXPECT_EQ(Text(text), "Unknown");
    // Valid when stored (9999-12-30 23:45 UTC), beyond the range once shifted to local time.
    EXPECT_EQ(Text(CVXODateTime(2958464.99).Format("%Y")), "Invalid DateTime");

    CVXODateTime dt;
    EXPECT_TRUE(dt.ParseDateTime(u"2000-01-01 13:00:00"));
    EXPECT_EQ(Value(dt), 36526.5);
    EXPECT_FALSE(dt.ParseDateTime(u"2000-02-30"));
    EXPECT_EQ(dt.GetStatus(), CVXODateTime::invalid);
}

TEST_F(DateTest, TheClockIsUtcWithATimeOfDay) {
    const double before = double(std::time(nullptr)) / 86400.0 + 25569.0;
    const CVXODateTime now(true);
    const double after = double(std::time(nullptr) + 1) / 86400.0 + 25569.0;
    EXPECT_TRUE(Value(now) >= before && Value(now) <= after) << Value(now);
    EXPECT_FALSE(now.DateOnly());
}
