// Syslog messages as they pass on the wire: taking one apart, keeping it by its sender, and deciding whether
// the user is told of it. There is no socket; the handler of IP frames calls these on the capture thread.
//
// Only the "<PRI>" of RFC 3164, section 4.1.1, is taken apart; the rest is the text, as it stands.
#pragma once

#include <optional>

#include "capture/FrameView.h"
#include "capture/VardelData.h"

namespace vardel {

constexpr u32 kSyslogTextSize = 1024;  // with the terminator

struct SyslogHeader {
    i32 severity;    // 0 emergency to 7 debug
    i32 facility;    // 0 kernel to 127
    u32 textAt;      // offset from the start of the frame
    u32 textLength;  // up to the captured end, Ethernet padding included; 1 to 1023
};

// Nothing where the payload does not begin with "<" or where its text is empty or too long to be kept whole.
std::optional<SyslogHeader> ParseSyslogHeader(const FrameView& frame);

// Takes the line feeds off the end; a carriage return stays.
void StripTrailingLineFeeds(char* text);

struct SyslogNotificationRule {
    u32 level;     // this severity or a more urgent one (a lower number)
    i32 facility;  // this facility, whatever the severity; -1 none
};

// One fitting test is enough: severity, facility, or any of the words as a part of the text, exact in case.
bool SyslogMessageNotifies(const SyslogNotificationRule& rule, const NotificationWordSet& words, i32 severity,
                           i32 facility, const char* text);

// Keeps the message under its sender and tells of it as the settings say. Throws std::bad_alloc; the message
// is then in no list.
void StoreSyslogMessage(VardelData& data, const TcString& source, i32 severity, i32 facility,
                        const char* text);

}  // namespace vardel
