#include "tests/unit/support/LiteralIp.h"

#include <cstdio>

#include "platform/CodePage.h"

namespace vardel::test {

namespace {

std::string SourceIpOf(const FrameBytes& frame) {
    char text[20];
    std::snprintf(text, sizeof text, "%d.%d.%d.%d", ByteAt(frame, 26), ByteAt(frame, 27), ByteAt(frame, 28),
                  ByteAt(frame, 29));
    return text;
}

void ChooseOs(int major, int minor, u32 type, LiteralHost& host) {
    const bool server = (type & 0x8000) != 0;
    if (major == 4) {
        if (type & 0x800) {
            host.os = "Unix/Linux";
        } else if (server) {
            host.os = "Microsoft Windows NT 4.0 Server";
            host.osClass = 2;
        } else if (type & 0x1000) {
            host.os = "Microsoft Windows NT 4.0 Workstation";
            host.osClass = 1;
        } else {
            host.os = "Microsoft Windows 9x/ME";
            host.osClass = 1;
        }
    } else if (major == 5) {
        if (minor == 0 && server) {
            host.os = "Microsoft Windows Server 2000";
            host.osClass = 2;
        } else if (minor == 0) {
            host.os = "Microsoft Windows 2000 Workstation";
            host.osClass = 1;
        } else if (minor == 1) {
            host.os = "Microsoft Windows XP";
            host.osClass = 1;
        } else if (minor == 2) {
            host.os = "Microsoft Windows Server 2003";
            host.osClass = 2;
        } else {
            host.os = " ";
        }
    } else if (major == 6) {
        if (minor == 0) {
            host.os = server ? "Microsoft Windows Server 2008" : "Microsoft Windows Vista";
            host.osClass = server ? 2 : 1;
        } else if (minor == 1) {
            host.os = server ? "Microsoft Windows Server 2008 R2" : "Microsoft Windows 7";
            host.osClass = server ? 2 : 1;
        } else if (minor == 2) {
            host.os = server ? "Microsoft Windows Server 2012" : "Microsoft Windows 8";
            host.osClass = server ? 2 : 1;
        }
    } else {
        host.os = " ";
    }
}

void FillBlankOs(u32 type, const LiteralState& state, LiteralHost& host) {
    if (host.os != " ") return;
    if (type & 0x80) {
        host.os = "Novell";
        host.osClass = 2;
    } else if (type & 0x40) {
        host.os = "Mac OS";
        host.osClass = 1;
    } else {
        host.os = state.texts.at(116);
    }
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

void TrimBlanks(std::string& text) {
    while (!text.empty() && IsBlank(text.back())) text.pop_back();
    while (!text.empty() && IsBlank(text.front())) text.erase(0, 1);
}

std::string LowerCase(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return text;
}

bool FindBetween(const std::string& document, const std::string& open, const std::string& close,
                 std::string& part) {
    std::size_t start = document.find(open);
    if (start == std::string::npos) return false;
    start += open.size();
    const std::size_t end = document.find(close, start);
    if (end == std::string::npos) return false;
    part = document.substr(start, end - start);
    return true;
}

bool Notifies(const LiteralState& state, int severity, int facility, const std::string& text) {
    bool hit = static_cast<u32>(severity) <= state.settings.syslogNotificationLevel;
    if (!hit && facility == state.settings.syslogNotificationFacility) hit = true;
    if (!state.notificationWords.empty() && !hit)
        for (const std::string& word : state.notificationWords)
            if (text.find(word) != std::string::npos) {
                hit = true;
                break;
            }
    return hit;
}

}  // namespace

void LiteralIp::PacketReceived(const FrameBytes* frame, LiteralState* state) {
    if (!frame || !state) return;
    ++packetCount;
    if (ByteAt(*frame, 23) != 17) return;
    const int source = BigWordAt(*frame, 34);
    const int destination = BigWordAt(*frame, 36);
    if (destination == 138 && source == 138)
        Browse(*frame, *state);
    else if (destination == 514)
        Syslog(*frame, *state);
    else if (source == 1900 || destination == 1900)
        Ssdp(*frame, *state);
    else if (source == 22936 && BigWordAt(*frame, 38) - 8 == 320)
        Device(*frame, *state);
}

void LiteralIp::Ssdp(const FrameBytes& frame, LiteralState& state) {
    const auto found = state.arpMap.find(SourceIpOf(frame));
    if (found == state.arpMap.end() || !found->second) return;
    LiteralHost& host = *found->second;
    if (host.isLocal || host.upnpDone) return;
    std::string text = TextAt(frame, 42, frame.size());
    if (text.find("HTTP/1.1 200 OK\r\n") != 0 && text.find("NOTIFY * HTTP/1.1\r\n") != 0) return;
    const std::size_t location = text.find("Location:");
    if (location == std::string::npos) return;
    text.erase(0, location + 9);
    const std::size_t end = text.find("\r\n");
    if (end == std::string::npos) return;
    text.erase(end);
    TrimBlanks(text);

    const bool isWeb = LowerCase(text).find("http://") == 0 || LowerCase(text).find("https://") == 0;
    if (isWeb) state.fetches.push_back(text);
    if (isWeb && state.documents.count(text) != 0) {
        const std::string document = state.documents.at(text).substr(0, 4096).c_str();
        std::string part;
        if (FindBetween(document, "<friendlyName>", "</friendlyName>", part)) {
            if (part.find(':') != std::string::npos) part.erase(part.find(':'));
            TrimBlanks(part);
            host.friendlyName = part;
            state.events.push_back({11, part, host.ip, "", -1});
        }
        if (FindBetween(document, "<presentationURL>", "</presentationURL>", part)) {
            TrimBlanks(part);
            host.presentationUrl = part;
        }
    }
    host.upnpDone = 1;
}

void LiteralIp::Device(const FrameBytes& frame, LiteralState& state) {
    const auto found = state.arpMap.find(SourceIpOf(frame));
    if (found == state.arpMap.end() || !found->second) return;
    LiteralHost& host = *found->second;
    if (host.isLocal) return;
    const std::string name = TextAt(frame, 42 + 48, frame.size());
    if (host.nameUnresolved && !name.empty()) {
        host.hostName = name;
        host.nameUnresolved = 0;
    }
    const std::string label =
        (TextAt(frame, 42 + 80, frame.size()) + " FW: " + std::to_string(ByteAt(frame, 42 + 188)) + "." +
         std::to_string(ByteAt(frame, 42 + 189)))
            .substr(0, 99);
    if (!host.deviceProbed) {
        host.osFromBrowse = 1;
        host.deviceProbed = 1;
        state.events.push_back({12, host.hostName, host.ip, label, -1});
    }
    host.os = label;
}

void LiteralIp::Browse(const FrameBytes& frame, LiteralState& state) {
    const int length = BigWordAt(frame, 52);
    const std::string sourceName = TextAt(frame, 56, 255);
    const int sourceLength = static_cast<int>(sourceName.size());
    const std::string targetName = TextAt(frame, 56 + sourceName.size() + 1, 255);
    const int targetLength = static_cast<int>(targetName.size());
    int rest = length - (targetLength + 1) - (sourceLength + 1);
    if (rest < 1) return;
    if (rest > 512) rest = 512;
    FrameBytes block(512, 0);
    const std::size_t start = 56 + sourceName.size() + 1 + targetName.size() + 1;
    for (std::size_t i = 0; i < static_cast<std::size_t>(rest); ++i)
        block[i] = static_cast<u8>(ByteAt(frame, start + i));

    if (ByteAt(block, 4) != 0x25) return;
    const std::size_t s = static_cast<std::size_t>(ByteAt(block, 59));
    if (ByteAt(block, 61 + 2 * s) == 0) return;
    if (ByteAt(block, 32) == 8) return;
    const std::string name = TextAt(block, 63 + 2 * s, 1000);
    if (name.empty()) return;
    if (name.substr(0, 10) != "\\MAILSLOT\\") return;
    if (name.substr(10, 6) != "BROWSE") return;
    const std::size_t a = 63 + 2 * s + name.size() + 1;
    if (ByteAt(block, a) != 1 && ByteAt(block, a) != 15) return;
    ++announcements;

    const auto found = state.arpMap.find(SourceIpOf(frame));
    if (found == state.arpMap.end() || !found->second) return;
    LiteralHost& host = *found->second;
    if (!host.isLocal) {
        const u32 type =
            static_cast<u32>(ByteAt(block, a + 24)) | static_cast<u32>(ByteAt(block, a + 25)) << 8 |
            static_cast<u32>(ByteAt(block, a + 26)) << 16 | static_cast<u32>(ByteAt(block, a + 27)) << 24;
        ChooseOs(ByteAt(block, a + 22), ByteAt(block, a + 23), type, host);
        FillBlankOs(type, state, host);
        host.osFromBrowse = 1;
    }
    if (host.nameUnresolved) {
        host.hostName = TextAt(block, a + 6, 16);
        LowerInCodePage(host.hostName.data(), host.hostName.size());
        host.nameUnresolved = 0;
    }
}

void LiteralIp::Syslog(const FrameBytes& frame, LiteralState& state) {
    if (!state.settings.syslog) return;
    if (ByteAt(frame, 42) != '<') return;
    std::size_t pos = 43;
    int pri = 0;
    while (pos < frame.size() && frame[pos] >= '0' && frame[pos] <= '9' && pos - 42 <= 3) {
        pri = pri * 10 + (frame[pos] - '0');
        pos = pos + 1;
    }
    if (ByteAt(frame, pos) == '>') pos = pos + 1;
    const int facility = (pri >> 3) & 127;
    const int severity = pri & 7;
    const long length = static_cast<long>(frame.size()) - static_cast<long>(pos);
    if (length < 1 || length >= 1024) return;
    std::string text = TextAt(frame, pos, static_cast<std::size_t>(length));
    if (text.empty()) return;
    const std::string sourceIp = SourceIpOf(frame);

    if (state.syslogs.count(sourceIp) == 0) state.syslogs[sourceIp] = state.NewSource();
    LiteralSource* list = state.syslogs[sourceIp];
    if (!list) return;
    while (!text.empty() && text.back() == '\n') text.pop_back();
    LiteralMessage record{sourceIp, text, severity, facility, 0, 0};
    list->count = list->count + 1;
    record.serial = list->count;
    const u32 limit = state.settings.syslogMaxEntries;
    if (limit > 0 && list->messages.size() >= limit)
        for (LiteralMessage& message : list->messages)
            if (!message.expired) {
                message.expired = 1;
                break;
            }
    if (state.settings.syslogNotification && Notifies(state, severity, facility, text)) {
        state.events.push_back({10, sourceIp, "", text, facility * 65536 + severity});
        if (state.settings.syslogNotificationType == 0)
            state.syslogNotifications.push_back({sourceIp, text, severity, facility, 0, 0});
    }
    list->messages.push_back(record);
}

}  // namespace vardel::test
