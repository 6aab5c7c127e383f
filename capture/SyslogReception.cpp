#include "capture/SyslogReception.h"

#include <cstring>
#include <memory>

#include "capture/EventMap.h"

namespace vardel {

namespace {

// Offset from the start of the frame.
constexpr u32 kPayloadAt = 42;
constexpr u32 kMostDigits = 3;

enum NotificationType : u32 { kWindowAndEvent = 0 };

bool IsDigit(u8 character) {
    return character >= '0' && character <= '9';
}

std::unique_ptr<SyslogRecord> MakeRecord(const TcString& source, i32 severity, i32 facility,
                                         const char* text) {
    auto record = std::make_unique<SyslogRecord>();
    record->source = source;
    record->severity = severity;
    record->facility = facility;
    record->text = text;
    return record;
}

// Null where the sender's entry holds none.
SyslogSourceList* ListOf(VardelData& data, const TcString& source) {
    ReadPin pin;
    const SyslogMap::Entry* entry = data.syslogs.Find(source);
    if (!entry) {
        data.syslogs.Insert(source, std::make_unique<SyslogSourceList>());
        entry = data.syslogs.Find(source);
    }
    return entry ? entry->Value() : nullptr;
}

void Notify(VardelData& data, const TcString& source, i32 severity, i32 facility, const char* text) {
    const u32 syslogInfo = static_cast<u32>(facility) << 16 | static_cast<u32>(severity);
    PostSyslogEvent(static_cast<i32>(EventKind::SyslogNotification), source, syslogInfo, text);
    if (data.settings.SyslogNotificationType != kWindowAndEvent) return;
    data.fences.WaitToFeed(Fence::SysLog);
    // A copy of its own, so that the tick may free it without touching the stored list.
    auto copy = MakeRecord(source, severity, facility, text);
    data.syslogNotifications.Append(copy.get());
    copy.release();
}

}  // namespace

std::optional<SyslogHeader> ParseSyslogHeader(const FrameView& frame) {
    if (frame.At(kPayloadAt) != '<') return std::nullopt;
    u32 at = kPayloadAt + 1;
    u32 pri = 0;
    // A fourth digit is not read: it belongs to the text.
    for (; at - kPayloadAt <= kMostDigits && IsDigit(frame.At(at)); ++at)
        pri = pri * 10 + (frame.At(at) - '0');
    // Its absence is accepted: the text then starts right behind the digits.
    if (frame.At(at) == '>') ++at;
    const u32 length = frame.Size() - at;  // the frame holds all that was read so far
    if (length < 1 || length >= kSyslogTextSize) return std::nullopt;
    return SyslogHeader{static_cast<i32>(pri & 7), static_cast<i32>(pri >> 3 & 127), at, length};
}

void StripTrailingLineFeeds(char* text) {
    for (std::size_t length = std::strlen(text); length > 0 && text[length - 1] == '\n'; --length)
        text[length - 1] = 0;
}

bool SyslogMessageNotifies(const SyslogNotificationRule& rule, const NotificationWordSet& words, i32 severity,
                           i32 facility, const char* text) {
    if (static_cast<u32>(severity) <= rule.level || facility == rule.facility) return true;
    bool hit = false;
    words.ForEach([&](const TcString& word, const TcString*) {
        hit = std::strstr(text, word.GetContent()) != nullptr;
        return !hit;
    });
    return hit;
}

void StoreSyslogMessage(VardelData& data, const TcString& source, i32 severity, i32 facility,
                        const char* text) {
    SyslogSourceList* list = ListOf(data, source);
    if (!list) return;
    auto record = MakeRecord(source, severity, facility, text);
    record->serial = list->NextSerial();
    list->ExpireOldest(data.settings.SyslogMaxEntries);
    const SyslogNotificationRule rule{data.settings.SyslogNotificationLevel,
                                      data.settings.SyslogNotificationFacility};
    if (data.settings.SyslogNotification &&
        SyslogMessageNotifies(rule, data.notificationWords, severity, facility, text))
        Notify(data, source, severity, facility, text);
    // Only now does the view see it.
    list->Append(std::move(record));
}

}  // namespace vardel
