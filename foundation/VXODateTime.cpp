#include "foundation/VXODateTime.h"

#include "foundation/NumberText.h"
#include "platform/Resources.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <string>

namespace vx {

namespace {

// Half a millisecond and one millisecond as fractions of a day.
constexpr double dHalfMilliDay = 5.787037037037037e-09;
constexpr double dOneMilliDay = 1.1574074074074074e-08;
constexpr double dMilliPerDay = 86400000.0;
constexpr int64_t nMilliPerDay = 86400000;
// Day number of 1899-12-30 counted from 0000-01-01 (0xA96C7).
constexpr int64_t nDayOfOleZero = 693959;
// Lengths of the Gregorian cycles in days.
constexpr int64_t n400Years = 146097;
constexpr int64_t nFirstCentury = 36525; // starts with a leap year (divisible by 400)
constexpr int64_t nCentury = 36524;
constexpr int64_t n4Years = 1461;
constexpr int64_t nCommon4Years = 1460; // the first four years of a century not divisible by 400
constexpr int nYear = 365;
constexpr int nLeapYear = 366;
// Default fields of FromString.
constexpr uint32_t nDefaultYear = 0x7C6; // 1990
// The number a field of FromString gets when the text has ended before it.
constexpr uint32_t nMissingField = 0xFFFF;
// A digit run is read at most up to this value, so that long runs cannot overflow.
constexpr uint32_t nFieldCap = 999999;

constexpr int nDaysBeforeMonth[13] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};

// The zone's offset in days, UTC minus local time. Written at load and by ReloadTimeZoneBias.
double g_dBias = 0.0;

bool IsLeap(int64_t y) {
    return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

int DaysInMonth(int y, int m) {
    return nDaysBeforeMonth[m] - nDaysBeforeMonth[m - 1] + (m == 2 && IsLeap(y) ? 1 : 0);
}

bool IsDigit(char16_t ch) {
    return ch >= u'0' && ch <= u'9';
}

// Whole days since 1899-12-30 of a date; the month must lie in 1..12, the day is not checked.
int64_t DayNumber(int64_t y, int m, int d) {
    int64_t n = 365 * y + y / 4 - y / 100 + y / 400 + nDaysBeforeMonth[m - 1] + d;
    if (m <= 2 && IsLeap(y)) --n; // y / 4 above already counted this year's leap day
    return n - nDayOfOleZero;
}

// The OLE value of date fields and a time of day in milliseconds. Before 1899-12-30 the time
// counts forward in the value's own sign, so it is subtracted there.
double OleFromFields(int64_t y, int m, int d, int64_t msOfDay) {
    const int64_t days = DayNumber(y, m, d);
    const double time = static_cast<double>(msOfDay) / dMilliPerDay;
    return days >= 0 ? static_cast<double>(days) + time : static_cast<double>(days) - time;
}

int64_t MilliOfDay(int64_t h, int64_t mi, int64_t s, int64_t ms) {
    return ((h * 60 + mi) * 60 + s) * 1000 + ms;
}

// OLE values are not continuous below zero (-1.25 lies after -1.0); these map them to a
// continuous day count and back, for arithmetic with spans.
double LinearFromOle(double d) {
    if (d >= 0.0) return d;
    const double whole = std::trunc(d);
    return whole + (whole - d);
}

double OleFromLinear(double x) {
    if (x >= 0.0) return x;
    const double day = std::floor(x);
    return day - (x - day);
}

double OleAddDays(double d, double span) {
    return OleFromLinear(LinearFromOle(d) + span);
}

bool IsDateOnly(double d) {
    return d == std::floor(d);
}

// Year, month and day of a day number counted from 0000-01-01, through the cycles of 400, 100,
// 4 and 1 years, so that the century rule holds.
void SetDateFields(int64_t n, SYSTEMTIME &st) {
    int64_t year = 400 * (n / n400Years);
    int64_t r = n % n400Years;
    bool leapBlock = true; // does the current four-year block start with a leap year?
    if (r >= nFirstCentury) {
        r -= nFirstCentury;
        year += 100 * (1 + r / nCentury);
        r %= nCentury;
        if (r < nCommon4Years) {
            leapBlock = false;
        } else {
            r -= nCommon4Years;
            year += 4;
        }
    }
    year += 4 * (r / n4Years);
    r %= n4Years;
    bool leap = false;
    if (leapBlock) {
        if (r < nLeapYear) {
            leap = true;
        } else {
            r -= nLeapYear;
            year += 1 + r / nYear;
            r %= nYear;
        }
    } else {
        year += r / nYear;
        r %= nYear;
    }
    int month = 1;
    while (month < 12 && r >= nDaysBeforeMonth[month] + (leap && month >= 2 ? 1 : 0))
        ++month;
    const int before = nDaysBeforeMonth[month - 1] + (leap && month > 2 ? 1 : 0);
    st.wYear = static_cast<uint16_t>(year);
    st.wMonth = static_cast<uint16_t>(month);
    st.wDay = static_cast<uint16_t>(r - before + 1);
}

// Splits a value into fields, rounded to the nearest millisecond, with no shift.
bool SplitOle(double d, SYSTEMTIME &st) {
    if (!(d >= CVXODateTime::dMinDate && d <= CVXODateTime::dMaxDate)) return false;
    const double r = d > 0.0 ? d + dHalfMilliDay : d - dHalfMilliDay;
    const int64_t days = static_cast<int64_t>(r);
    const double a = std::fabs(r);
    int64_t ms = static_cast<int64_t>((a - std::floor(a)) * dMilliPerDay);
    if (ms >= nMilliPerDay) // a fraction a hair below 1 can round up in the product
        ms = nMilliPerDay - 1;
    SetDateFields(days + nDayOfOleZero, st);
    st.wDayOfWeek = static_cast<uint16_t>((days + nDayOfOleZero - 1) % 7);
    st.wHour = static_cast<uint16_t>(ms / 3600000);
    st.wMinute = static_cast<uint16_t>(ms / 60000 % 60);
    st.wSecond = static_cast<uint16_t>(ms / 1000 % 60);
    st.wMilliseconds = static_cast<uint16_t>(ms % 1000);
    return true;
}

// The check of the platform's date builder: years 100 to 9999, real days and times.
bool FieldsMakeDate(int y, int m, int d, int h, int mi, int s) {
    if (y < 100 || y > 9999 || m < 1 || m > 12) return false;
    return d >= 1 && d <= DaysInMonth(y, m) && h >= 0 && h <= 23 && mi >= 0 && mi <= 59 && s >= 0 &&
           s <= 59;
}

CVXString UnknownText() {
    CVXString text;
    if (!LoadResourceString(IDS_UNKNOWN, text)) text = u"Unknown";
    return text;
}

// The platform's date text failed (a value out of range after the shift to local time).
CVXString InvalidText() {
    return CVXString(u"Invalid DateTime");
}

// strftime into a string, growing the buffer for long results up to a fixed bound.
CVXString StrFTime(const char *format, const std::tm &t) {
    if (!format || !*format) return CVXString();
    constexpr size_t nMaxBuffer = 1 << 16;
    std::string buffer(64 + 4 * std::char_traits<char>::length(format), '\0');
    while (buffer.size() <= nMaxBuffer) {
        const size_t n = std::strftime(buffer.data(), buffer.size(), format, &t);
        if (n > 0) return CVXString(buffer.substr(0, n).c_str());
        buffer.resize(buffer.size() * 2);
    }
    return CVXString(); // the format prints nothing (or more than the bound)
}

std::tm TmFromFields(const SYSTEMTIME &st) {
    std::tm t{};
    t.tm_year = st.wYear - 1900;
    t.tm_mon = st.wMonth - 1;
    t.tm_mday = st.wDay;
    t.tm_hour = st.wHour;
    t.tm_min = st.wMinute;
    t.tm_sec = st.wSecond;
    t.tm_wday = st.wDayOfWeek;
    t.tm_yday =
        static_cast<int>(DayNumber(st.wYear, st.wMonth, st.wDay) - DayNumber(st.wYear, 1, 1));
    t.tm_isdst = -1;
    t.tm_gmtoff = -std::lround(g_dBias * 86400.0);
    return t;
}

// A cursor over a text for the fixed-layout parsers.
class CTextCursor {
public:
    explicit CTextCursor(const CVXString &text) : m_p(text), m_nLen(text.GetLength()) {}
    bool AtEnd() const { return m_nPos >= m_nLen; }
    // The unit at a position, 0 past the end.
    char16_t At(int pos) const { return pos >= 0 && pos < m_nLen ? m_p[pos] : u'\0'; }
    bool Take(char16_t ch) {
        if (At(m_nPos) != ch) return false;
        ++m_nPos;
        return true;
    }
    // One to `maxDigits` decimal digits.
    bool Number(int maxDigits, int &out) {
        int n = 0;
        out = 0;
        while (n < maxDigits && IsDigit(At(m_nPos))) {
            out = out * 10 + (At(m_nPos++) - u'0');
            ++n;
        }
        return n > 0;
    }

private:
    const char16_t *m_p;
    int m_nLen;
    int m_nPos = 0;
};

// A field of the ISO form: `count` units from `first` (fewer where the text ends), read by the
// library's strict number parser.
bool ReadU16(const CVXString &text, int first, int count, uint16_t &out) {
    const CVXString part = text.Mid(first, count);
    return bString2Number(&out, part);
}

// The field a letter of a FromString pattern stands for (y M d H/h m s), -1 for a separator.
int PatternField(char16_t letter) {
    static constexpr char16_t szLetters[] = u"yMdHhms";
    static constexpr int nFieldOf[] = {0, 1, 2, 3, 3, 4, 5};
    for (int i = 0; szLetters[i]; ++i)
        if (szLetters[i] == letter) return nFieldOf[i];
    return -1;
}

// The number of a pattern run: the text is skipped to its next digit, then digits are read
// while the position lies before the end of the run. A text that has ended gives 0xFFFF.
uint32_t ReadRun(const CVXString &text, int &pos, int runEnd) {
    const int nText = text.GetLength();
    while (pos < nText && !IsDigit(text[pos]))
        ++pos;
    if (pos >= nText) return nMissingField;
    uint32_t value = 0;
    for (; pos < runEnd && pos < nText && IsDigit(text[pos]); ++pos)
        value = std::min(value * 10 + static_cast<uint32_t>(text[pos] - u'0'), nFieldCap);
    return value;
}

// The present local year, for the window of two-digit years.
int CurrentLocalYear() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return local.tm_year + 1900;
}

// A two-digit year in the hundred years around the present.
int WindowYear(int y) {
    const int p = CurrentLocalYear() - 50;
    const int r = p % 100;
    return y >= r ? p - r + y : p - r + 100 + y;
}

// The library reads the zone's offset when it is loaded.
[[maybe_unused]] const bool g_bBiasRead = (CVXODateTime::ReloadTimeZoneBias(), true);

} // namespace

// ---- COleDateTimeSpan -------------------------------------------------------------------------

COleDateTimeSpan::COleDateTimeSpan(int32_t lDays, int nHours, int nMins, int nSecs)
    : m_span(lDays + nHours / 24.0 + nMins / 1440.0 + nSecs / 86400.0) {}

int64_t COleDateTimeSpan::RoundedSeconds() const {
    constexpr double dHalfSecondDay = 5.787037037037037e-06;
    constexpr double dMaxSeconds = 9.0e18; // beyond it (and for NaN) the fields are 0
    const double d = m_span >= 0.0 ? m_span + dHalfSecondDay : m_span - dHalfSecondDay;
    const double seconds = d * 86400.0;
    return std::fabs(seconds) < dMaxSeconds ? static_cast<int64_t>(seconds) : 0;
}

int32_t COleDateTimeSpan::GetDays() const {
    return static_cast<int32_t>(RoundedSeconds() / 86400);
}
int COleDateTimeSpan::GetHours() const {
    return static_cast<int>(RoundedSeconds() / 3600 % 24);
}
int COleDateTimeSpan::GetMinutes() const {
    return static_cast<int>(RoundedSeconds() / 60 % 60);
}
int COleDateTimeSpan::GetSeconds() const {
    return static_cast<int>(RoundedSeconds() % 60);
}

// ---- construction, clock, bias ------------------------------------------------------------------

CVXODateTime::CVXODateTime(double dt) : COleDateTime(dt, valid) {
    CheckRange();
}

CVXODateTime::CVXODateTime(bool) : COleDateTime(GetOleDT(), valid) {}

double CVXODateTime::GetOleDT() {
    std::timespec ts{};
    clock_gettime(CLOCK_REALTIME, &ts);
    std::tm utc{};
    gmtime_r(&ts.tv_sec, &utc);
    const int64_t ms = MilliOfDay(utc.tm_hour, utc.tm_min, utc.tm_sec, ts.tv_nsec / 1000000);
    const double now = OleFromFields(utc.tm_year + 1900, utc.tm_mon + 1, utc.tm_mday, ms);
    // A moment at exactly midnight would read as a date without a time.
    return ms == 0 ? now + dOneMilliDay : now;
}

void CVXODateTime::Now() {
    m_dt = GetOleDT();
    m_status = valid;
}

void CVXODateTime::ReloadTimeZoneBias() {
    ReloadTimeZoneBias(std::time(nullptr));
}

void CVXODateTime::ReloadTimeZoneBias(int64_t unixTime) {
    tzset();
    const std::time_t t = static_cast<std::time_t>(unixTime);
    std::tm local{};
    if (!localtime_r(&t, &local)) return;
    // The offset in whole minutes, as the zone information of the original platform gives it.
    const long minutes = -local.tm_gmtoff / 60;
    g_dBias = static_cast<double>(minutes) / 1440.0;
}

double CVXODateTime::GetTimeZoneBias() {
    return g_dBias;
}

// ---- status and range ---------------------------------------------------------------------------

bool CVXODateTime::DateOnly() const {
    return IsDateOnly(m_dt);
}

void CVXODateTime::CheckRange() {
    if (!(m_dt >= dMinDate && m_dt <= dMaxDate)) m_status = invalid;
}

double CVXODateTime::LocalValue() const {
    if (m_status != valid) return dMaxDouble;
    return DateOnly() ? m_dt : OleAddDays(m_dt, -g_dBias);
}

bool CVXODateTime::GetLocalFields(SYSTEMTIME &st) const {
    return SplitOle(LocalValue(), st);
}

// ---- fields -------------------------------------------------------------------------------------

int CVXODateTime::SetDate(int nYear, int nMonth, int nDay) {
    if (FieldsMakeDate(nYear, nMonth, nDay, 0, 0, 0)) {
        m_dt = OleFromFields(nYear, nMonth, nDay, 0);
        m_status = valid;
    } else {
        m_status = invalid;
    }
    return m_status;
}

bool CVXODateTime::SetLocal(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec) {
    if (!FieldsMakeDate(nYear, nMonth, nDay, nHour, nMin, nSec)) {
        m_status = invalid;
        return false;
    }
    m_dt = OleFromFields(nYear, nMonth, nDay, MilliOfDay(nHour, nMin, nSec, 0));
    m_status = valid;
    if (!DateOnly()) {
        m_dt = OleAddDays(m_dt, g_dBias);
        CheckRange();
    }
    return m_status == valid;
}

int CVXODateTime::SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec) {
    SetLocal(nYear, nMonth, nDay, nHour, nMin, nSec);
    return m_status;
}

int CVXODateTime::GetYear() const {
    SYSTEMTIME st;
    return GetLocalFields(st) ? st.wYear : -1;
}
int CVXODateTime::GetMonth() const {
    SYSTEMTIME st;
    return GetLocalFields(st) ? st.wMonth : -1;
}
int CVXODateTime::GetDay() const {
    SYSTEMTIME st;
    return GetLocalFields(st) ? st.wDay : -1;
}
int CVXODateTime::GetHour() const {
    SYSTEMTIME st;
    return GetLocalFields(st) ? st.wHour : -1;
}
int CVXODateTime::GetMinute() const {
    SYSTEMTIME st;
    return GetLocalFields(st) ? st.wMinute : -1;
}
int CVXODateTime::GetSecond() const {
    SYSTEMTIME st;
    return GetLocalFields(st) ? st.wSecond : -1;
}
int CVXODateTime::GetDayOfWeek() const {
    SYSTEMTIME st;
    return GetLocalFields(st) ? st.wDayOfWeek + 1 : -1;
}

bool CVXODateTime::GetAsSystemTime(SYSTEMTIME &st) const {
    return m_status == valid && SplitOle(m_dt, st);
}

bool CVXODateTime::FromSystemTime(const SYSTEMTIME &st) {
    // The month indexes a table: outside 1..12 there is no date to make.
    if (st.wMonth < 1 || st.wMonth > 12) {
        m_status = invalid;
        return false;
    }
    m_dt = OleFromFields(st.wYear, st.wMonth, st.wDay,
                         MilliOfDay(st.wHour, st.wMinute, st.wSecond, st.wMilliseconds));
    m_status = valid;
    CheckRange();
    return m_status == valid;
}

// ---- arithmetic and comparison ------------------------------------------------------------------

CVXODateTime CVXODateTime::operator+(const COleDateTimeSpan &span) const {
    CVXODateTime result(*this);
    result += span;
    return result;
}

CVXODateTime CVXODateTime::operator-(const COleDateTimeSpan &span) const {
    CVXODateTime result(*this);
    result -= span;
    return result;
}

CVXODateTime &CVXODateTime::operator+=(const COleDateTimeSpan &span) {
    if (m_status == null || span.m_status == null) {
        m_status = null;
    } else if (m_status == invalid || span.m_status == invalid) {
        m_status = invalid;
    } else {
        m_dt = OleAddDays(m_dt, span.m_span);
        CheckRange();
    }
    return *this;
}

CVXODateTime &CVXODateTime::operator-=(const COleDateTimeSpan &span) {
    COleDateTimeSpan negative(-span.m_span);
    negative.m_status = span.m_status;
    return *this += negative;
}

COleDateTimeSpan CVXODateTime::operator-(const CVXODateTime &other) const {
    COleDateTimeSpan span(LinearFromOle(m_dt) - LinearFromOle(other.m_dt));
    if (m_status == null || other.m_status == null)
        span.m_status = null;
    else if (m_status == invalid || other.m_status == invalid)
        span.m_status = invalid;
    return span;
}

bool CVXODateTime::operator==(const CVXODateTime &other) const {
    if (m_status != other.m_status) return false;
    if (m_status == valid) return m_dt == other.m_dt;
    return m_status == null; // two nulls are equal, two invalid dates are not
}

bool CVXODateTime::operator<=(const CVXODateTime &other) const {
    return *this < other || *this == other;
}

bool CVXODateTime::operator>=(const CVXODateTime &other) const {
    return *this > other || *this == other;
}

// ---- text ---------------------------------------------------------------------------------------

CVXString CVXODateTime::Format(const char *format) const {
    if (m_status != valid) return UnknownText();
    SYSTEMTIME st;
    if (!GetLocalFields(st)) return InvalidText();
    return StrFTime(format, TmFromFields(st));
}

CVXString CVXODateTime::Format(uint32_t dwFlags, uint32_t) const {
    constexpr uint32_t nTimeValueOnly = 1;
    constexpr uint32_t nDateValueOnly = 2;
    if (dwFlags & nDateValueOnly) return Format("%Y-%m-%d");
    if (dwFlags & nTimeValueOnly) return Format("%H:%M:%S");
    return Format(DateOnly() ? "%Y-%m-%d" : "%Y-%m-%d %H:%M:%S");
}

void CVXODateTime::ToString(CVXString &out) const {
    out = Format(0u, 0u);
}

bool CVXODateTime::ParseDateTime(const CVXString &text, uint32_t, uint32_t) {
    if (text.IsEmpty()) {
        m_status = null;
        return false;
    }
    CTextCursor c(text);
    int y = 1899, mo = 12, d = 30, h = 0, mi = 0, s = 0;
    int first = 0;
    bool ok = c.Number(4, first);
    if (ok && c.Take(u':')) { // a time alone: on the day of value 0
        h = first;
        ok = c.Number(2, mi) && c.Take(u':') && c.Number(2, s);
    } else if (ok) {
        y = first;
        ok = c.Take(u'-') && c.Number(2, mo) && c.Take(u'-') && c.Number(2, d);
        if (ok && c.Take(u' '))
            ok =
                c.Number(2, h) && c.Take(u':') && c.Number(2, mi) && c.Take(u':') && c.Number(2, s);
    }
    if (!ok || !c.AtEnd()) {
        m_status = invalid;
        return false;
    }
    return SetLocal(y, mo, d, h, mi, s);
}

bool CVXODateTime::FromString(const CVXString &text, const CVXString &pattern) {
    uint32_t fields[6] = {nDefaultYear, 1, 1, 0, 0, 0}; // y M d h m s
    const int nPattern = pattern.GetLength();
    // One position walks the pattern and the text together.
    int pos = 0;
    while (pos < nPattern) {
        const char16_t letter = pattern[pos];
        int runEnd = pos;
        while (runEnd < nPattern && pattern[runEnd] == letter)
            ++runEnd;
        const int field = PatternField(letter);
        if (field >= 0) fields[field] = ReadRun(text, pos, runEnd);
        pos = std::max(pos, runEnd);
    }
    int year = static_cast<int>(fields[0]);
    if (year < 100) year = WindowYear(year);
    auto f = [&](int i) { return static_cast<int>(fields[i]); };
    return SetLocal(year, f(1), f(2), f(3), f(4), f(5));
}

CVXString CVXODateTime::ToISODateTime(bool bWithZone) const {
    SYSTEMTIME st;
    if (!GetAsSystemTime(st)) return CVXString();
    CVXString text;
    text.Format(u"%4.4d-%2.2d-%2.2dT%2.2d:%2.2d:%2.2d.%3.3d", int(st.wYear), int(st.wMonth),
                int(st.wDay), int(st.wHour), int(st.wMinute), int(st.wSecond),
                int(st.wMilliseconds));
    if (bWithZone) text += u"+00:00";
    return text;
}

bool CVXODateTime::FromISODateTime(const CVXString &text) {
    m_status = null;
    const CTextCursor c(text);
    const int len = text.GetLength();
    SYSTEMTIME st;
    if (!ReadU16(text, 0, 4, st.wYear) || c.At(4) != u'-' || !ReadU16(text, 5, 2, st.wMonth) ||
        c.At(7) != u'-' || !ReadU16(text, 8, 2, st.wDay))
        return false;
    if (len == 10) return SetDate(st.wYear, st.wMonth, st.wDay) == valid;
    if (c.At(10) != u'T' || !ReadU16(text, 11, 2, st.wHour) || c.At(13) != u':' ||
        !ReadU16(text, 14, 2, st.wMinute) || c.At(16) != u':' || !ReadU16(text, 17, 2, st.wSecond))
        return false;
    st.wMilliseconds = 0;
    if (len < 20) return FromSystemTime(st);
    if (c.At(19) != u'.' && c.At(19) != u',') return false;
    int pos = 20;
    while (IsDigit(c.At(pos)))
        ++pos;
    const int digits = pos - 20;
    if (!ReadU16(text, 20, std::min(digits, 3), st.wMilliseconds)) return false;
    if (digits == 1)
        st.wMilliseconds *= 100;
    else if (digits == 2)
        st.wMilliseconds *= 10;
    if (pos == len) return FromSystemTime(st);
    // A zone: sign, two digits, colon, two digits, and nothing after them.
    uint16_t hours = 0, minutes = 0;
    const char16_t sign = c.At(pos);
    if (len - pos != 6 || (sign != u'+' && sign != u'-') || !ReadU16(text, pos + 1, 2, hours) ||
        c.At(pos + 3) != u':' || !ReadU16(text, pos + 4, 2, minutes) || hours >= 13)
        return false;
    const int factor = sign == u'+' ? -1 : 1; // east of Greenwich lies before UTC
    if (!FromSystemTime(st)) return false;
    *this += COleDateTimeSpan(0, factor * hours, factor * minutes, 0);
    return m_status == valid;
}

} // namespace vx
