// The settings and properties of a serial port, with the fields and numbers of the original
// platform's structures, so that host code that fills them keeps working. CCommunicatie maps
// them onto POSIX termios; what termios cannot express is listed with the mapping in
// device/CommState.cpp.
#pragma once

#include "platform/VXExport.h"

#include <cstdint>

namespace vx VX_API {

// Parity (DCB::Parity).
inline constexpr uint8_t NOPARITY = 0;
inline constexpr uint8_t ODDPARITY = 1;
inline constexpr uint8_t EVENPARITY = 2;
inline constexpr uint8_t MARKPARITY = 3;
inline constexpr uint8_t SPACEPARITY = 4;
// Stop bits (DCB::StopBits).
inline constexpr uint8_t ONESTOPBIT = 0;
inline constexpr uint8_t ONE5STOPBITS = 1;
inline constexpr uint8_t TWOSTOPBITS = 2;
// DCB::fDtrControl and DCB::fRtsControl.
inline constexpr uint32_t DTR_CONTROL_DISABLE = 0;
inline constexpr uint32_t DTR_CONTROL_ENABLE = 1;
inline constexpr uint32_t DTR_CONTROL_HANDSHAKE = 2;
inline constexpr uint32_t RTS_CONTROL_DISABLE = 0;
inline constexpr uint32_t RTS_CONTROL_ENABLE = 1;
inline constexpr uint32_t RTS_CONTROL_HANDSHAKE = 2;
inline constexpr uint32_t RTS_CONTROL_TOGGLE = 3;

// The error mask of a port (CCommunicatie::szGetError).
inline constexpr uint32_t CE_RXOVER = 0x0001;   // receive queue overflow
inline constexpr uint32_t CE_OVERRUN = 0x0002;  // character overrun
inline constexpr uint32_t CE_RXPARITY = 0x0004; // parity error
inline constexpr uint32_t CE_FRAME = 0x0008;    // framing error
inline constexpr uint32_t CE_BREAK = 0x0010;    // break condition
inline constexpr uint32_t CE_CTSTO = 0x0020;    // CTS time-out
inline constexpr uint32_t CE_DSRTO = 0x0040;    // DSR time-out
inline constexpr uint32_t CE_RLSDTO = 0x0080;   // RLSD time-out
inline constexpr uint32_t CE_TXFULL = 0x0100;   // send queue full
inline constexpr uint32_t CE_MODE = 0x8000;     // mode not supported

// CCommunicatie::PurgeComm.
inline constexpr uint32_t PURGE_TXABORT = 0x0001;
inline constexpr uint32_t PURGE_RXABORT = 0x0002;
inline constexpr uint32_t PURGE_TXCLEAR = 0x0004;
inline constexpr uint32_t PURGE_RXCLEAR = 0x0008;

// COMMPROP values.
inline constexpr uint32_t SP_SERIALCOMM = 0x00000001; // dwServiceMask
inline constexpr uint32_t PST_RS232 = 0x00000001;     // dwProvSubType
inline constexpr uint32_t BAUD_USER = 0x10000000;     // dwMaxBaud: any rate the driver takes
inline constexpr uint32_t PCF_DTRDSR = 0x0001;
inline constexpr uint32_t PCF_RTSCTS = 0x0002;
inline constexpr uint32_t PCF_PARITY_CHECK = 0x0008;
inline constexpr uint32_t PCF_XONXOFF = 0x0010;
inline constexpr uint32_t PCF_SETXCHAR = 0x0020;
inline constexpr uint32_t PCF_TOTALTIMEOUTS = 0x0040;
inline constexpr uint32_t SP_PARITY = 0x0001;
inline constexpr uint32_t SP_BAUD = 0x0002;
inline constexpr uint32_t SP_DATABITS = 0x0004;
inline constexpr uint32_t SP_STOPBITS = 0x0008;
inline constexpr uint32_t SP_HANDSHAKING = 0x0010;
inline constexpr uint32_t SP_PARITY_CHECK = 0x0020;
inline constexpr uint16_t DATABITS_5 = 0x0001;
inline constexpr uint16_t DATABITS_6 = 0x0002;
inline constexpr uint16_t DATABITS_7 = 0x0004;
inline constexpr uint16_t DATABITS_8 = 0x0008;
inline constexpr uint16_t STOPBITS_10 = 0x0001;
inline constexpr uint16_t STOPBITS_20 = 0x0004;
inline constexpr uint16_t PARITY_NONE = 0x0100;
inline constexpr uint16_t PARITY_ODD = 0x0200;
inline constexpr uint16_t PARITY_EVEN = 0x0400;
inline constexpr uint16_t PARITY_MARK = 0x0800;
inline constexpr uint16_t PARITY_SPACE = 0x1000;

// The device control block: line settings and flow control.
struct DCB {
    uint32_t DCBlength = sizeof(DCB);
    uint32_t BaudRate = 0;
    uint32_t fBinary : 1 = 1;
    uint32_t fParity : 1 = 0;
    uint32_t fOutxCtsFlow : 1 = 0;
    uint32_t fOutxDsrFlow : 1 = 0;
    uint32_t fDtrControl : 2 = DTR_CONTROL_ENABLE;
    uint32_t fDsrSensitivity : 1 = 0;
    uint32_t fTXContinueOnXoff : 1 = 0;
    uint32_t fOutX : 1 = 0;
    uint32_t fInX : 1 = 0;
    uint32_t fErrorChar : 1 = 0;
    uint32_t fNull : 1 = 0;
    uint32_t fRtsControl : 2 = RTS_CONTROL_ENABLE;
    uint32_t fAbortOnError : 1 = 0;
    uint32_t fDummy2 : 17 = 0;
    uint16_t wReserved = 0;
    uint16_t XonLim = 0;
    uint16_t XoffLim = 0;
    uint8_t ByteSize = 8;
    uint8_t Parity = NOPARITY;
    uint8_t StopBits = ONESTOPBIT;
    char XonChar = 0;
    char XoffChar = 0;
    char ErrorChar = 0;
    char EofChar = 0;
    char EvtChar = 0;
    uint16_t wReserved1 = 0;
};

// What the driver of a port can do.
struct COMMPROP {
    uint16_t wPacketLength = 0;
    uint16_t wPacketVersion = 0;
    uint32_t dwServiceMask = 0;
    uint32_t dwReserved1 = 0;
    uint32_t dwMaxTxQueue = 0;
    uint32_t dwMaxRxQueue = 0;
    uint32_t dwMaxBaud = 0;
    uint32_t dwProvSubType = 0;
    uint32_t dwProvCapabilities = 0;
    uint32_t dwSettableParams = 0;
    uint32_t dwSettableBaud = 0;
    uint16_t wSettableData = 0;
    uint16_t wSettableStopParity = 0;
    uint32_t dwCurrentTxQueue = 0;
    uint32_t dwCurrentRxQueue = 0;
    uint32_t dwProvSpec1 = 0;
    uint32_t dwProvSpec2 = 0;
    char16_t wcProvChar[1] = {};
};

} // namespace VX_API
