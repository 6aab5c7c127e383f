// Text forms of a frame's addresses, put together a word at a time.
//
// They are formed for each captured ARP frame; characters that are written singly and read back as words would
// stall it.
#pragma once

#include "foundation/TcString.h"

namespace vardel {

// Dotted decimal, no leading zeros, from four octets in network order.
TcString::Words FormatIpAddress(const u8 (&octets)[4]);

// "xx:xx:xx:xx:xx:xx", lower case.
TcString::Words FormatMacAddress(const u8 (&octets)[6]);

}  // namespace vardel
