// Text forms of a frame's addresses, written straight into a text that the calling thread owns.
#pragma once

#include "foundation/TcString.h"

namespace vardel {

// Dotted decimal, no leading zeros, from four octets in network order.
void FormatIpAddress(const u8 (&octets)[4], TcString& text);

// "xx:xx:xx:xx:xx:xx", lower case.
void FormatMacAddress(const u8 (&octets)[6], TcString& text);

}  // namespace vardel
