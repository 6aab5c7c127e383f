// Frames as a test speaks of them: every builder is a plain structure with named fields, and turns into the
// bytes that a capture library would hand over.
//
//     lan.Says(ArpReply{.ip = "10.0.0.5", .mac = "00:11:22:33:44:55"});
//
// A frame starts with its Ethernet header and is padded with zeros to 60 bytes, the shortest that a wire
// carries, unless a builder has `padded` and it is false.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Types.h"

namespace vardel::test {

using Frame = std::vector<u8>;

constexpr u16 kArpEtherType = 0x0806;
constexpr u16 kRarpEtherType = 0x8035;
constexpr u16 kIpEtherType = 0x0800;
constexpr std::size_t kShortestFrame = 60;

// Appends fields to a frame, numbers in network byte order unless told otherwise.
class FrameWriter {
  public:
    FrameWriter& Byte(u8 value) {
        frame_.push_back(value);
        return *this;
    }
    FrameWriter& Big16(u32 value) { return Byte(static_cast<u8>(value >> 8)).Byte(static_cast<u8>(value)); }
    FrameWriter& Little16(u32 value) {
        return Byte(static_cast<u8>(value)).Byte(static_cast<u8>(value >> 8));
    }
    FrameWriter& Little32(u32 value) { return Little16(value & 0xffff).Little16(value >> 16); }
    FrameWriter& Zeros(std::size_t count) {
        frame_.insert(frame_.end(), count, u8{0});
        return *this;
    }
    FrameWriter& Text(std::string_view text) {
        frame_.insert(frame_.end(), text.begin(), text.end());
        return *this;
    }
    // The text in a field of `size` bytes: cut to it, or followed by zeros.
    FrameWriter& Field(std::string_view text, std::size_t size) {
        const std::string_view kept = text.substr(0, size);
        return Text(kept).Zeros(size - kept.size());
    }
    FrameWriter& Mac(const std::string& text) {
        unsigned octets[6] = {};
        std::sscanf(text.c_str(), "%x:%x:%x:%x:%x:%x", &octets[0], &octets[1], &octets[2], &octets[3],
                    &octets[4], &octets[5]);
        for (unsigned octet : octets) Byte(static_cast<u8>(octet));
        return *this;
    }
    FrameWriter& Ip(const std::string& text) {
        unsigned octets[4] = {};
        std::sscanf(text.c_str(), "%u.%u.%u.%u", &octets[0], &octets[1], &octets[2], &octets[3]);
        for (unsigned octet : octets) Byte(static_cast<u8>(octet));
        return *this;
    }
    std::size_t Size() const { return frame_.size(); }
    Frame Done(bool padded = true) {
        if (padded && frame_.size() < kShortestFrame) frame_.resize(kShortestFrame);
        return std::move(frame_);
    }

  private:
    Frame frame_;
};

// An ARP or RARP frame: what `ip` at `mac` says of itself. 60 bytes.
struct ArpFrame {
    std::string ip = "10.0.0.1";
    std::string mac = "02:00:00:00:00:01";
    u16 operation = 1;  // 1 request, 2 reply, 3 RARP request, 4 RARP reply
    u16 etherType = kArpEtherType;
    std::string targetIp = "10.0.0.254";
    std::string targetMac = "00:00:00:00:00:00";

    operator Frame() const {  // NOLINT: turning into bytes is what a builder is for
        FrameWriter out;
        out.Mac("ff:ff:ff:ff:ff:ff").Mac(mac).Big16(etherType);
        out.Big16(1).Big16(kIpEtherType).Byte(6).Byte(4).Big16(operation);
        out.Mac(mac).Ip(ip).Mac(targetMac).Ip(targetIp);
        return out.Done();
    }
};

struct ArpReply {
    std::string ip = "10.0.0.1";
    std::string mac = "02:00:00:00:00:01";
    operator Frame() const { return ArpFrame{.ip = ip, .mac = mac, .operation = 2}; }  // NOLINT
};

// A host that asks whether an address is free: its own is still 0.0.0.0.
struct ArpProbe {
    std::string mac = "02:00:00:00:00:01";
    operator Frame() const { return ArpFrame{.ip = "0.0.0.0", .mac = mac}; }  // NOLINT
};

struct RarpRequest {
    std::string ip = "10.0.0.1";
    std::string mac = "02:00:00:00:00:01";
    operator Frame() const {  // NOLINT
        return ArpFrame{.ip = ip, .mac = mac, .operation = 3, .etherType = kRarpEtherType};
    }
};

// An IPv4 packet with a 20-byte header around `body`.
struct IpFrame {
    std::string sourceIp = "10.0.0.1";
    std::string destinationIp = "10.0.0.254";
    u8 protocol = 17;
    std::string body = "";
    bool padded = true;

    operator Frame() const {  // NOLINT
        FrameWriter out;
        out.Mac("02:00:00:00:00:fe").Mac("02:00:00:00:00:01").Big16(kIpEtherType);
        out.Byte(0x45).Byte(0).Big16(static_cast<u32>(20 + body.size())).Big16(1).Big16(0);
        out.Byte(64).Byte(protocol).Big16(0).Ip(sourceIp).Ip(destinationIp).Text(body);
        return out.Done(padded);
    }
};

struct UdpFrame {
    std::string sourceIp = "10.0.0.1";
    u16 sourcePort = 40000;
    u16 destinationPort = 40001;
    std::string payload = "";
    std::optional<u16> udpLength = std::nullopt;  // as the header says; the true one when not given
    bool padded = true;

    operator Frame() const {  // NOLINT
        FrameWriter out;
        out.Big16(sourcePort).Big16(destinationPort);
        out.Big16(udpLength.value_or(static_cast<u16>(8 + payload.size()))).Big16(0).Text(payload);
        const Frame body = out.Done(false);
        return IpFrame{.sourceIp = sourceIp, .body = std::string(body.begin(), body.end()), .padded = padded};
    }
};

struct TcpFrame {
    std::string sourceIp = "10.0.0.1";
    u16 sourcePort = 40000;
    u16 destinationPort = 80;
    std::string payload = "";

    operator Frame() const {  // NOLINT
        FrameWriter out;
        out.Big16(sourcePort)
            .Big16(destinationPort)
            .Zeros(8)
            .Byte(0x50)
            .Byte(0x10)
            .Big16(8192)
            .Zeros(4)
            .Text(payload);
        const Frame body = out.Done(false);
        return IpFrame{.sourceIp = sourceIp, .protocol = 6, .body = std::string(body.begin(), body.end())};
    }
};

// `message` is the whole payload, its "<PRI>" included.
struct SyslogDatagram {
    std::string sourceIp = "10.0.0.1";
    std::string message = "<13>hello";
    u16 sourcePort = 514;
    bool padded = true;

    operator Frame() const {  // NOLINT
        return UdpFrame{.sourceIp = sourceIp,
                        .sourcePort = sourcePort,
                        .destinationPort = 514,
                        .payload = message,
                        .padded = padded};
    }
};

// The SMB transaction of a browse announcement alone, from its 0xff "SMB" on.
struct BrowseBlock {
    std::string serverName = "SERVER";  // a field of 16 bytes
    u8 major = 6;
    u8 minor = 1;
    u32 serverType = 0;  // bit 0x8000: server
    u8 operation = 1;    // 1 host announcement, 15 local master announcement
    std::string transaction = "\\MAILSLOT\\BROWSE";
    u8 command = 0x25;
    u8 wordCount = 17;
    u8 setupCount = 3;
    std::optional<u16> byteCount = std::nullopt;  // the true one when not given
    std::string comment = "";

    operator std::string() const {  // NOLINT
        FrameWriter data;
        data.Text(transaction).Byte(0);
        data.Byte(operation).Byte(0).Little32(720000).Field(serverName, 16);
        data.Byte(major)
            .Byte(minor)
            .Little32(serverType)
            .Byte(15)
            .Byte(1)
            .Little16(0xaa55)
            .Text(comment)
            .Byte(0);
        const Frame tail = data.Done(false);

        FrameWriter out;
        out.Byte(0xff).Text("SMB").Byte(command).Zeros(27).Byte(wordCount).Zeros(26);
        out.Byte(setupCount).Byte(0).Zeros(2 * std::size_t{setupCount});
        out.Little16(byteCount.value_or(static_cast<u16>(tail.size())));
        const Frame head = out.Done(false);
        return std::string(head.begin(), head.end()) + std::string(tail.begin(), tail.end());
    }
};

// A NetBIOS datagram from port 138 to port 138 around any block.
struct NetBiosDatagram {
    std::string sourceIp = "10.0.0.1";
    std::string sourceName = " FDEFFCFGEFFCCACACACACACACACACACA";  // encoded, as on the wire
    std::string destinationName = " FHEPFCELEHFCEPFFFACACACACACACABN";
    std::string block = "";
    std::optional<u16> datagramLength =
        std::nullopt;  // both names and the block; the true one when not given
    u16 sourcePort = 138;
    u16 destinationPort = 138;
    bool padded = true;

    operator Frame() const {  // NOLINT
        FrameWriter out;
        const std::size_t length = sourceName.size() + 1 + destinationName.size() + 1 + block.size();
        out.Byte(0x11).Byte(2).Big16(1).Ip(sourceIp).Big16(138);
        out.Big16(datagramLength.value_or(static_cast<u16>(length))).Big16(0);
        out.Text(sourceName).Byte(0).Text(destinationName).Byte(0).Text(block);
        const Frame payload = out.Done(false);
        return UdpFrame{.sourceIp = sourceIp,
                        .sourcePort = sourcePort,
                        .destinationPort = destinationPort,
                        .payload = std::string(payload.begin(), payload.end()),
                        .padded = padded};
    }
};

// What a Windows host or a file server tells its neighbours of itself every few minutes.
struct BrowseAnnouncement {
    std::string sourceIp = "10.0.0.1";
    std::string serverName = "SERVER";
    u8 major = 6;
    u8 minor = 1;
    u32 serverType = 0;
    u8 operation = 1;

    operator Frame() const {  // NOLINT
        return NetBiosDatagram{.sourceIp = sourceIp,
                               .block = BrowseBlock{.serverName = serverName,
                                                    .major = major,
                                                    .minor = minor,
                                                    .serverType = serverType,
                                                    .operation = operation}};
    }
};

}  // namespace vardel::test
