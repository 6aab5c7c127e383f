// Writes the first inputs of the handlers' fuzz targets: one of each kind of frame that a handler tells
// apart.
//
//     handler_seeds FOLDER       fills FOLDER/arp_handler and FOLDER/ip_handler
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/unit/support/Frames.h"

using namespace vardel;
using namespace vardel::test;

namespace {

namespace fs = std::filesystem;

std::string Block(const Frame& frame) {
    std::string block;
    if (frame.size() < 255)
        block = std::string(1, static_cast<char>(frame.size()));
    else
        block = {'\xff', static_cast<char>(frame.size() >> 8), static_cast<char>(frame.size())};
    return block.append(frame.begin(), frame.end());
}

void Write(const fs::path& folder, const std::string& name, const std::string& bytes) {
    fs::create_directories(folder);
    std::ofstream(folder / name, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// Settings, notification level and facility, state of the host; see IpHandlerFuzz.cpp.
const std::string kNotifies{0x42, 3, 21, 4};
const std::string kLimits{0x20, 0, 0, 4};
const std::string kTraced{static_cast<char>(0xc2), 3, 21, 4};
// The memory of the frame numbered `frame` runs out after `allowed` allocations.
std::string Fails(int frame, int allowed) {
    return {static_cast<char>(0xc2),   9, 21, static_cast<char>(0x84), static_cast<char>(frame),
            static_cast<char>(allowed)};
}

std::string IpInput(std::string input, const std::vector<Frame>& frames) {
    for (const Frame& frame : frames) input += Block(frame);
    return input;
}

void WriteTraceAndMemorySeeds(const fs::path& folder) {
    const std::vector<Frame> each{TcpFrame{}, UdpFrame{}, UdpFrame{.sourcePort = 1900}, BrowseAnnouncement{},
                                  SyslogDatagram{.message = "<8>err a text that is longer than the object"}};
    Write(folder, "traced", IpInput(kTraced, each));
    const std::vector<Frame> longOnes{
        BrowseAnnouncement{.serverName = "A NAME OF 16 CHR", .major = 4, .minor = 0, .serverType = 0x1000},
        SyslogDatagram{.message = "<8>err a text that is longer than the object"}};
    for (int frame = 0; frame < 2; ++frame)
        for (int allowed = 0; allowed < 12; ++allowed)
            Write(folder, "memory_" + std::to_string(frame) + "_" + std::to_string(allowed),
                  IpInput(Fails(frame, allowed), longOnes));
}

void WriteIpSeeds(const fs::path& folder) {
    std::vector<Frame> versions;
    for (int version : {0x40, 0x50, 0x51, 0x52, 0x53, 0x60, 0x61, 0x62, 0x63, 0xa0})
        for (u32 type : {0u, 0x8000u, 0x1000u, 0x800u, 0x80u, 0x40u})
            versions.push_back(BrowseAnnouncement{.major = static_cast<u8>(version >> 4),
                                                  .minor = static_cast<u8>(version & 15),
                                                  .serverType = type});
    for (std::size_t i = 0; i < versions.size(); i += 6)
        Write(folder, "versions_" + std::to_string(i / 6),
              IpInput(kNotifies, {versions.begin() + static_cast<long>(i),
                                  versions.begin() + static_cast<long>(i) + 6}));
    Write(folder, "setup_words",
          IpInput(kNotifies, {NetBiosDatagram{.block = BrowseBlock{.setupCount = 204}}}));
    Write(folder, "master", IpInput(kNotifies, {BrowseAnnouncement{.operation = 15}}));
    Write(folder, "no_announcement",
          IpInput(kNotifies, {NetBiosDatagram{.block = BrowseBlock{.command = 0x26}},
                              NetBiosDatagram{.datagramLength = u16{60}}}));
    Write(folder, "elsewhere", IpInput(kNotifies, {TcpFrame{}, UdpFrame{}}));
    Write(folder, "device",
          IpInput(kNotifies, {UdpFrame{.sourcePort = 22936, .payload = std::string(320, 'x')},
                              UdpFrame{.sourcePort = 22936, .payload = std::string(320, '\0')}}));
    const auto ssdp = [](const std::string& start, const std::string& location) {
        return UdpFrame{.sourcePort = 1900, .payload = start + "Location: " + location + "\r\n\r\n"};
    };
    Write(folder, "ssdp_nothing",
          IpInput(kNotifies, {UdpFrame{.sourcePort = 1900}, ssdp("M-SEARCH * HTTP/1.1\r\n", "http://a"),
                              ssdp("NOTIFY * HTTP/1.1\r\n", "ftp://a")}));
    int number = 0;
    for (const char* address : {"http://a", "https://b", "http://\xff"})
        Write(folder, "ssdp_" + std::to_string(number++),
              IpInput(kNotifies, {ssdp("NOTIFY * HTTP/1.1\r\n", address), ssdp("HTTP/1.1 200 OK\r\n", address)}));
    Write(folder, "syslog",
          IpInput(kNotifies, {SyslogDatagram{.message = "<13>hello"}, SyslogDatagram{.message = "<13err"},
                              SyslogDatagram{.message = "<191>text\r\n\n"},
                              SyslogDatagram{.message = "<1234>x"}, SyslogDatagram{.message = "<>"}}));
    Write(folder, "syslog_limit", IpInput(kLimits, std::vector<Frame>(6, SyslogDatagram{})));
    WriteTraceAndMemorySeeds(folder);
    Write(folder, "syslog_length",
          IpInput(kLimits, {SyslogDatagram{.message = "<191>" + std::string(1023, 'x')},
                            SyslogDatagram{.message = "<191>" + std::string(1024, 'x')}}));
}

// Steps of ArpHandlerFuzz.cpp.
constexpr char kTrust[] = {0, 1};
constexpr char kDistrust[] = {1, 2};
constexpr char kVendor[] = {2, 1, 1};
std::string Touch(int how) {
    return {3, static_cast<char>(how)};
}
std::string Says(const Frame& frame) {
    return std::string({5, 1}) + Block(frame);
}
// At second -1 of 1970.
std::string SaysEarly(const Frame& frame) {
    return std::string({5, '\xff', '\xff', '\xff', '\xff', '\xff'}) + Block(frame);
}
std::string SaysWithoutMemory(int allowed, const Frame& frame) {
    return std::string({4, static_cast<char>(allowed), 1}) + Block(frame);
}

std::string ArpInput(int settings, int names, const std::vector<std::string>& steps) {
    std::string input{static_cast<char>(settings), static_cast<char>(names)};
    for (const std::string& step : steps) input += step;
    return input;
}

void WriteArpSeeds(const fs::path& folder) {
    const std::string first = Says(ArpReply{});
    const std::string other = Says(ArpReply{.mac = "02:00:00:00:00:02"});
    const std::string trust(kTrust, sizeof kTrust), distrust(kDistrust, sizeof kDistrust),
        vendor(kVendor, sizeof kVendor);
    Write(folder, "known_host", ArpInput(3, 0, {first, first, trust, first, distrust, first}));
    Write(folder, "listed_before", ArpInput(3, 0, {first, trust, distrust, Touch(3), first}));
    Write(folder, "spoof", ArpInput(0, 0, {first, other, first, other}));
    Write(folder, "vendor", ArpInput(0, 0, {first, vendor, first, first}));
    Write(folder, "without_mac", ArpInput(1, 0, {first, Touch(1), first, Touch(0), first}));
    Write(folder, "without_record", ArpInput(0, 0, {first, Touch(4), first}));
    Write(folder, "probe_and_rarp", ArpInput(0, 0, {Says(ArpProbe{}), Says(RarpRequest{}), Says(Frame(20))}));
    Write(folder, "time", ArpInput(0, 0, {SaysEarly(ArpReply{})}));
    for (int allowed = 0; allowed < 12; ++allowed)
        Write(folder, "memory_" + std::to_string(allowed),
              ArpInput(3, 0,
                       {SaysWithoutMemory(allowed, ArpReply{}), first, trust,
                        SaysWithoutMemory(allowed, ArpReply{}), other}));
    for (int names : {0x01, 0x02, 0x04, 0x0a, 0x10, 0x20, 0x40})
        Write(folder, "names_" + std::to_string(names),
              ArpInput(4, names, {first, Says(ArpReply{.ip = "255.255.255.255"})}));
}

}  // namespace

int main(int count, char** words) {
    if (count != 2) {
        std::fprintf(stderr, "handler_seeds FOLDER\n");
        return 2;
    }
    WriteArpSeeds(fs::path(words[1]) / "arp_handler");
    WriteIpSeeds(fs::path(words[1]) / "ip_handler");
    return 0;
}
