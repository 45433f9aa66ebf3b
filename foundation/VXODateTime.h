// CVXODateTime: one instant or one calendar date, held as an OLE date.
//
// An OLE date is a double counting days from midnight of 30 December 1899, with the time of day
// as the fraction; for negative values the fraction counts forward in its own sign (-1.25 is
// 29 December 1899, 06:00). A value with a fraction is an instant and is held in UTC, while its
// accessors and texts show local time. A value equal to its own floor is a date without a time
// and is never shifted between UTC and local time (the date-only rule).
//
// The local zone's offset (the bias, UTC minus local time) is read once when the library loads.
// A process that runs over a change of summer time keeps the old offset; ReloadTimeZoneBias()
// reads it again (after the TZ variable changed, or to take the offset of a given moment).
#pragma once

#include "platform/VXExport.h"

#include "platform/VXString.h"
#include "platform/VXTypes.h"

#include <cstdint>

namespace vx VX_API {

class CArchiveB;

// The plain OLE date of the platform: value and status, nothing else.
class COleDateTime {
public:
    // Valid, invalid (out of range or unparsable) or null (no date); 32 bits in stored forms.
    enum DateTimeStatus : int32_t { valid = 0, invalid = 1, null = 2 };

    COleDateTime() = default;
    COleDateTime(double dt, DateTimeStatus status) : m_dt(dt), m_status(status) {}

    double m_dt = 0.0;
    DateTimeStatus m_status = valid;
};

// A span of time in days, with a status.
class COleDateTimeSpan {
public:
    COleDateTimeSpan() = default;
    COleDateTimeSpan(double dSpanDays) : m_span(dSpanDays) {}
    COleDateTimeSpan(int32_t lDays, int nHours, int nMins, int nSecs);

    using DateTimeStatus = COleDateTime::DateTimeStatus;
    DateTimeStatus GetStatus() const { return m_status; }
    void SetStatus(DateTimeStatus status) { m_status = status; }
    operator double() const { return m_span; }
    double GetTotalDays() const { return m_span; }
    double GetTotalSeconds() const { return m_span * 86400.0; }

    // The span rounded to whole seconds (half a second added away from zero), split into
    // fields: days, then hours 0..23, minutes 0..59, seconds 0..59 (negative for a negative
    // span).
    int32_t GetDays() const;
    int GetHours() const;
    int GetMinutes() const;
    int GetSeconds() const;

    double m_span = 0.0;
    DateTimeStatus m_status = COleDateTime::valid;

private:
    int64_t RoundedSeconds() const;
};

class CVXODateTime : public COleDateTime {
public:
    // The valid range: the years 100 to 9999.
    static constexpr double dMinDate = -657434.0;
    static constexpr double dMaxDate = 2958465.0;

    CVXODateTime() = default;
    // The value as given; out of range or NaN makes it invalid.
    CVXODateTime(double dt);
    // The present moment (the argument only selects this constructor).
    explicit CVXODateTime(bool bNow);
    CVXODateTime(const COleDateTime &other) : COleDateTime(other) {}

    // The system clock in UTC with milliseconds. A moment at exactly midnight UTC is moved on by
    // one millisecond, so that it is not taken for a date without a time.
    static double GetOleDT();
    void Now();

    // Reads the local zone's offset again, as the zone has it now (or at the given moment,
    // in seconds since 1970-01-01 UTC). Call after changing TZ; the library calls it at load.
    static void ReloadTimeZoneBias();
    static void ReloadTimeZoneBias(int64_t unixTime);
    // The bias in days: UTC minus local time (-1/24 for a zone one hour east of Greenwich).
    static double GetTimeZoneBias();

    DateTimeStatus GetStatus() const { return m_status; }
    void SetStatus(DateTimeStatus status) { m_status = status; }
    operator double() const { return m_dt; }
    // True when the value has no time of day.
    bool DateOnly() const;
    // Makes the value invalid if it is NaN or outside the valid range.
    void CheckRange();

    // A date only, no shift. Returns the status: 0 on success, 1 when the fields make no date.
    int SetDate(int nYear, int nMonth, int nDay);
    // Local time; a value with a time of day is shifted to UTC. Returns the status as SetDate.
    int SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec);

    // Fields in local time; -1 for a value that is not valid.
    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;
    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;
    // 1 for Sunday to 7 for Saturday, local time; -1 for a value that is not valid.
    int GetDayOfWeek() const;

    // The stored value (UTC for instants) split into fields, rounded to the nearest
    // millisecond. False and nothing written when the value is not valid or out of range.
    bool GetAsSystemTime(SYSTEMTIME &st) const;
    // Sets the value from fields taken as stored time, with no shift. The day is not checked;
    // a month outside 1..12 or a result outside the valid range makes the value invalid and
    // gives false.
    bool FromSystemTime(const SYSTEMTIME &st);

    CVXODateTime operator+(const COleDateTimeSpan &span) const;
    CVXODateTime operator-(const COleDateTimeSpan &span) const;
    COleDateTimeSpan operator-(const CVXODateTime &other) const;
    CVXODateTime &operator+=(const COleDateTimeSpan &span);
    CVXODateTime &operator-=(const COleDateTimeSpan &span);

    // Equal when the statuses agree and, for valid dates, the values are exactly equal; two
    // null dates are equal, two invalid dates are not.
    bool operator==(const CVXODateTime &other) const;
    bool operator!=(const CVXODateTime &other) const { return !(*this == other); }
    // The ordering compares the values only, whatever the status.
    bool operator<(const CVXODateTime &other) const { return m_dt < other.m_dt; }
    bool operator>(const CVXODateTime &other) const { return m_dt > other.m_dt; }
    bool operator<=(const CVXODateTime &other) const;
    bool operator>=(const CVXODateTime &other) const;

    // Local time as text: "YYYY-MM-DD hh:mm:ss", or "YYYY-MM-DD" for a date only. Null and
    // invalid dates give the text for unknown (resource 34).
    void ToString(CVXString &out) const;
    // strftime-style text of local time; null and invalid dates give the text for unknown.
    CVXString Format(const char *format) const;
    // The fixed text form with flags: 0 date and time as ToString, 1 (time only) "hh:mm:ss",
    // 2 (date only) "YYYY-MM-DD". The locale is accepted and not used.
    CVXString Format(uint32_t dwFlags, uint32_t lcid) const;
    // Reads the forms Format(flags) writes, as local time. False and an invalid date (null
    // for an empty text) when the text is not one of them.
    bool ParseDateTime(const CVXString &text, uint32_t dwFlags = 0, uint32_t lcid = 0);

    // Reads a date in the layout of `pattern` (runs of y, M, d, H or h, m, s; other characters
    // separate), as local time. Two-digit years fall in the hundred years around the present.
    // False and an invalid date when the fields make no date.
    bool FromString(const CVXString &text, const CVXString &pattern);

    // "YYYY-MM-DDThh:mm:ss.mmm" of the stored time (UTC), with "+00:00" behind it when asked;
    // empty for a value that is not valid.
    CVXString ToISODateTime(bool bWithZone) const;
    // Reads "YYYY-MM-DD", "YYYY-MM-DDThh:mm:ss", with a fraction of up to three digits after
    // "." or ",", and then optionally a zone "+hh:mm" or "-hh:mm". False leaves a null date
    // (or an invalid one for fields that make no date).
    bool FromISODateTime(const CVXString &text);

    // Binary form: the status as a 32-bit integer, then the value as a double, both ways.
    // Defined with the archive (persist/SerialForms.cpp), which sits above dates.
    void SerializeB(CArchiveB &ar);

private:
    // The value in local time by the date-only rule; the largest double when not valid.
    double LocalValue() const;
    // The local value split into fields; false when not valid or out of range.
    bool GetLocalFields(SYSTEMTIME &st) const;
    // Sets the value from local fields and shifts an instant to UTC.
    bool SetLocal(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec);
};

} // namespace VX_API
