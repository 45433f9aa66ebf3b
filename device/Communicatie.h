// CCommunicatie: the blocking serial link to a survey instrument. It runs on the caller's thread
// and holds no protocol: the host does the framing. The user may break off a long read or write
// through the host's prompt (IUserPrompt::BreakRequested, polled once per transfer).
//
// Ports are numbered from 0 for "COM1" up to 23 for "COM24". Each number maps to a device path,
// by default /dev/ttyS0 ... /dev/ttyS23; a host points a number at another device (a USB adapter,
// a pseudo-terminal) with SetDevicePath.
//
// Transfers keep the port's total time-outs: a read or write of n bytes waits at most 100 ms per
// byte asked for, and then hands over what it has. ReadComm and WriteComm loop over such
// transfers until the whole count has moved, so they wait as long as the instrument is silent,
// unless the user breaks off. An instrument that goes away (the other end hangs up) makes them
// fail instead.
//
// Every failure is a false return, or ComFout / ComTimeOut from ReadOneChar; nothing throws.
// A failed OpenComm leaves errno at the reason: ENOENT (no such device), EBUSY (held by another
// link), ENOTTY (not a terminal), EACCES and the like as the system gives them.
#pragma once

#include "platform/VXExport.h"

#include "device/CommTypes.h"
#include "platform/Object.h"
#include "platform/VXString.h"

#include <cstdint>

namespace vx VX_API {

// The result of ReadOneChar.
enum ComRes : int { ComByte = 1, ComFout = 2, ComTimeOut = 3 };

class CCommunicatie : public CObject {
public:
    static constexpr int INVALID_HANDLE_VALUE = -1;
    // Number of port names, "COM1" to "COM24".
    static constexpr int nComPorts = 24;
    // The total time-out of a transfer, per byte asked for.
    static constexpr int nTimeOutMsPerByte = 100;

    // Gates the operations that say so: they fail while it is false. Nothing in the library
    // clears it; a host may.
    bool m_bActief = true;

    CCommunicatie() = default;
    CCommunicatie(const CCommunicatie &) = delete;
    CCommunicatie &operator=(const CCommunicatie &) = delete;
    // Closes the port, whatever the gate says.
    ~CCommunicatie() override;

    // The name of port nPort, "COM1" for 0. Raises CInvalidArgException outside 0 to 23.
    static CVXString ComNaam(int nPort);
    // Maps port nPort to a device path; an empty path restores /dev/ttyS<nPort>. Raises
    // CInvalidArgException outside 0 to 23.
    static void SetDevicePath(int nPort, const CVXString &path);
    // The device path of port nPort (our addition, for messages). Raises outside 0 to 23.
    static CVXString szGetDevicePath(int nPort);

    // Gated. Opens the port's device for reading and writing, exclusively, existing only, and
    // sets raw 8-bit transfer with the time-outs above. False when the device is missing, busy,
    // not a terminal, when nPort is outside 0 to 23, or when this object holds a port already.
    bool OpenComm(int nPort);
    // Gated. False when no port was opened, or when it was closed already.
    bool CloseComm();
    // Gated. Reads exactly n bytes into buf. n of 0 returns true at once. Each transfer asks for
    // n bytes at the offset reached so far, so buf must have room for 2·n − 1 bytes.
    bool ReadComm(void *buf, short n, bool bBreak);
    // Gated. Writes n bytes from buf, with the shape of ReadComm: buf must hold 2·n − 1 bytes.
    bool WriteComm(void const *buf, short n, bool bBreak);
    // Gated (ComFout when closed by the gate). One byte within about nSeconds seconds: ComByte,
    // ComFout on failure or break-off, ComTimeOut.
    ComRes ReadOneChar(void *buf, int nSeconds, bool bBreak);

    // Gated pass-throughs: the line settings.
    bool SetCommState(DCB *dcb);
    bool GetCommState(DCB *dcb);
    // Pass-throughs, not gated.
    bool GetCommProperties(COMMPROP *prop);
    bool PurgeComm(uint32_t flags);
    bool SetCommBreak();
    bool ClearCommBreak();

    // Not gated. Collects the port's error mask and turns it into text: one text per error, in
    // a fixed order, run together. "Unknown" when the port cannot report (it is not open).
    CVXString szGetError();

protected:
    // m_szError := the texts of the bits of m_nCommError; the mask is cleared.
    void SetErrorString();
    // The port's errors since the last call (or the open) as a mask; false when not open.
    bool ClearCommError(uint32_t &mask);

    uint32_t m_nCommError = 0;
    int m_hComm = INVALID_HANDLE_VALUE;
    CVXString m_szError;

private:
    // One transfer of up to n bytes within the port's total time-out.
    bool ReadFile(void *at, uint32_t n, uint32_t &got);
    bool WriteFile(const void *at, uint32_t n, uint32_t &put);
    bool BreakOff(bool bBreak) const;
    // True while the port is ours; else false with errno at EBADF.
    bool bPortOpen() const;

    // The handle keeps its value after CloseComm, as it always did; this says whether it is
    // still ours, so that a closed number (which the system may hand out again) is never used.
    bool m_bOpen = false;
    // SetCommState was refused by the driver since the last look at the errors.
    bool m_bModeFout = false;
    // The driver's error counters at the last look (see ClearCommError).
    struct SFoutTellers {
        int32_t nFrame = 0;
        int32_t nOverrun = 0;
        int32_t nParity = 0;
        int32_t nBreak = 0;
        int32_t nBufOverrun = 0;
    };
    SFoutTellers m_Tellers;
};

} // namespace VX_API
