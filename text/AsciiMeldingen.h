// The message list of a run (reading a file, a check): CAsciiMeldingen collects the messages as
// ready-made report text in a memory buffer, counts them by kind, stops taking them after a
// limit and writes them out as a report file. CAsciiMelding is one message about one place in a
// source file; CAsciiProgress is a message list with a progress display.
#pragma once

#include "platform/VXExport.h"

#include "platform/Object.h"
#include "platform/VXString.h"
#include "text/AsciiFile.h"
#include "text/Progress.h"

#include <cstdint>

namespace vx VX_API {

class CAsciiMelding;

class CAsciiMeldingen : public CObject {
public:
    // The five kinds of message; 2 and 4 are errors, 3 and 4 concern file relations. A kind
    // above 4 is written but counted nowhere.
    enum Type : int {
        mtMelding = 0,
        mtWaarschuwing = 1,
        mtFout = 2,
        mtRelatie = 3,
        mtRelatieFout = 4
    };
    // The list is full once it holds more messages than this.
    static constexpr uint32_t lMaxMeldingen = 5000;

    // With a date line at the head (after each Reset).
    CAsciiMeldingen();
    explicit CAsciiMeldingen(bool bDatum);
    CAsciiMeldingen(const CAsciiMeldingen &) = delete;
    CAsciiMeldingen &operator=(const CAsciiMeldingen &) = delete;

    // The two-line form of the message.
    void AddMelding(CAsciiMelding &melding);
    // The text and "\r\n".
    void AddMelding(Type type, const CVXString &text);
    // The text of a string resource and "\r\n".
    void AddMelding(Type type, unsigned int nResourceId);
    template <class... Args>
    void AddMeldingFmt(Type type, const char16_t *format, const Args &...args) {
        CVXString text;
        text.Format(format, args...);
        AddMelding(type, text);
    }
    template <class... Args>
    void AddMeldingFmt(Type type, unsigned int nResourceId, const Args &...args) {
        CVXString text;
        text.Format(nResourceId, args...);
        AddMelding(type, text);
    }
    // Adds the other list's counters and appends its whole text, whatever the limit.
    void AddMelding(CAsciiMeldingen &other);

    // Messages of kinds 2 and 4.
    uint32_t lGetFouten() const;
    // Messages of all five kinds.
    uint32_t lGetAantal() const;
    // Messages of one kind (0 for a kind above 4).
    uint32_t lGetAantal(Type type) const;
    bool bIsVol() const { return m_bVol; }
    // The report text, in the 8-bit code page.
    CAsciiMemFile *pGetMeldingen() { return &m_Meldingen; }
    // True when messages of kind 3 or 4 were given.
    bool bFileRelatie() const;

    // Writes the report to `path` (created or emptied, opened exclusively); the list stays as
    // it is. A file that cannot be opened raises CFileException with the path.
    void SaveAs(const CVXString &path);
    // Empties the list; with the date flag the present date and time start the text.
    void Reset();

private:
    // Appends a message text and counts it, unless the list is full.
    void Append(Type type, const CVXString &text);
    void Verhoog(Type type);

    CAsciiMemFile m_Meldingen;
    uint32_t m_lAantal[5] = {};
    bool m_bDatum;
    bool m_bVol = false;
};

class CAsciiMelding : public CObject {
public:
    CAsciiMelding(CAsciiMeldingen::Type type, const CVXString &szBron, uint32_t lRegel, char cKolom,
                  uint16_t nKolom, const CVXString &szTekst);

    // Two lines: "<mark> <source> line (column)\r\n" and four blanks, the text, "\r\n". The mark
    // is "*" for an error, a blank otherwise.
    void CreeerRegel(CVXString &out) const;

    CAsciiMeldingen::Type m_nType;
    CVXString m_szBron;
    uint32_t m_lRegel;
    char m_cKolom;
    uint16_t m_nKolom;
    CVXString m_szTekst;
};

// A message list that also shows progress.
class CAsciiProgress : public CAsciiMeldingen {
public:
    // The title of the display from a string resource; the display is shown at once.
    explicit CAsciiProgress(unsigned int nTitleId);

    // Adds the resource text as a message of kind 0 and shows it under the bar.
    void AddMeldingText(unsigned int nTextId);
    void StepIt() { m_Progress.StepIt(); }
    void SetParms(int16_t nLow, int16_t nHigh, int16_t nStep) {
        m_Progress.SetParms(nLow, nHigh, nStep);
    }
    void SetPos(int16_t nPos) { m_Progress.SetPos(nPos); }
    void OffsetPos(int16_t nOffset) { m_Progress.OffsetPos(nOffset); }
    CKvtpProgress &Progress() { return m_Progress; }

private:
    CKvtpProgress m_Progress;
};

} // namespace VX_API
