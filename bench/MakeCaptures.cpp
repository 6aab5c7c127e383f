// make_captures FOLDER: writes the savefiles, settings and vendor list that `bench/run` measures with.
//
// All are the same on every run. Frames follow each other at 100,000 a second.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <thread>

#include "bench/BenchFrames.h"
#include "capture/AddressText.h"
#include "foundation/TcString.h"

namespace vardel::bench {
namespace {

constexpr u32 kStartSecond = 1'700'000'000;
constexpr u32 kFramesPerSecond = 100'000;

constexpr u32 kFewHosts = 1000;
constexpr u32 kManyHosts = 65'536;

class File {
  public:
    explicit File(const std::string& path) : file_(std::fopen(path.c_str(), "wb")), path_(path) {
        if (!file_) Fail();
    }
    ~File() {
        if (std::fclose(file_) != 0) Fail();
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    void Put(const void* bytes, std::size_t size) {
        if (std::fwrite(bytes, 1, size, file_) != size) Fail();
    }
    void Put(const std::string& text) { Put(text.data(), text.size()); }

  private:
    [[noreturn]] void Fail() {
        std::perror(path_.c_str());
        std::exit(1);
    }
    std::FILE* file_;
    const std::string path_;
};

class Savefile {
  public:
    explicit Savefile(const std::string& path) : file_(path) {
        const u32 header[] = {0xa1b2c3d4, 4u << 16 | 2, 0, 0, 65536, 1};
        file_.Put(header, sizeof header);
    }
    void Put(const u8* frame, u32 size) {
        const u32 header[] = {kStartSecond + count_ / kFramesPerSecond, count_ % kFramesPerSecond * 10, size,
                              size};
        file_.Put(header, sizeof header);
        file_.Put(frame, size);
        ++count_;
    }

  private:
    File file_;
    u32 count_ = 0;
};

// First each host once, so that all are known; then hosts in the order that `next` tells.
template <class NextHost>
void WriteArpCapture(const std::string& path, const std::vector<Address>& hosts, u32 frames,
                     NextHost&& next) {
    Savefile out(path);
    u8 frame[kFrameSize];
    for (u32 i = 0; i < frames; ++i) {
        const u32 host = i < hosts.size() ? i : next(i) % static_cast<u32>(hosts.size());
        WriteArpFrame(frame, hosts[host], host);
        out.Put(frame, sizeof frame);
    }
}

void WriteShuffled(const std::string& path, const std::vector<Address>& hosts, u32 frames) {
    std::mt19937 random(1);
    WriteArpCapture(path, hosts, frames, [&](u32) { return static_cast<u32>(random()); });
}

// Each frame of a host comes from another MAC than the one before; only the first one is the host's own.
void WriteMacChanges(const std::string& path, const std::vector<Address>& hosts, u32 frames) {
    Savefile out(path);
    u8 frame[kFrameSize];
    for (u32 i = 0; i < frames; ++i) {
        WriteArpFrame(frame, hosts[i % hosts.size()], i);
        out.Put(frame, sizeof frame);
    }
}

// TCP, and UDP to ports that nobody listens to.
void WriteNowhere(const std::string& path, u32 frames) {
    Savefile out(path);
    u8 frame[kFrameSize];
    for (u32 i = 0; i < frames; ++i) {
        WriteIpFrame(frame, sizeof frame, i % 2 ? kTcp : kUdp, 0x0a000001u + i % kFewHosts, 40000,
                     i % 2 ? 443 : 53);
        out.Put(frame, sizeof frame);
    }
}

void WriteSyslog(const std::string& path, u32 sources, u32 frames) {
    Savefile out(path);
    u8 frame[256];
    for (u32 i = 0; i < frames; ++i) {
        char text[128];
        const int length = std::snprintf(
            text, sizeof text, "<%u>Nov 14 22:13:20 gateway kernel: message %u of the run", i % 192, i);
        const u32 size = std::max(kFrameSize, 42 + static_cast<u32>(length));
        WriteIpFrame(frame, size, kUdp, 0x0a000001u + i % sources, 514, 514,
                     {text, static_cast<std::size_t>(length)});
        out.Put(frame, size);
    }
}

// Addresses whose hash numbers share their low 16 bits: a table that took its buckets from them would have
// one.
std::vector<Address> CollidingAddresses(u32 count) {
    const u32 threads = std::max(1u, std::thread::hardware_concurrency());
    std::vector<std::vector<Address>> found(threads);
    std::vector<std::thread> workers;
    for (u32 worker = 0; worker < threads; ++worker)
        workers.emplace_back([&, worker] {
            // Of all there are, each worker its share.
            for (u64 address = 1 + worker; address <= 0xffffffffu; address += threads) {
                u8 octets[4];
                WriteAddress(octets, static_cast<Address>(address));
                if ((FormatIpAddress(octets).HashNum() & 0xffff) == 0)
                    found[worker].push_back(static_cast<Address>(address));
            }
        });
    for (std::thread& worker : workers) worker.join();
    std::vector<Address> all;
    for (const auto& part : found) all.insert(all.end(), part.begin(), part.end());
    std::sort(all.begin(), all.end());
    if (all.size() > count) all.resize(count);
    return all;
}

std::string SettingsText(const std::string& values, const std::vector<Address>& trusted = {}) {
    const std::string key = "HKEY_CURRENT_USER\\Software\\Ostrand Software\\Vardelwatch";
    std::string text = "REGEDIT4\r\n\r\n[" + key + "\\Settings]\r\n" + values;
    if (!trusted.empty()) text += "\r\n[" + key + "\\TrustedHosts]\r\n";
    for (std::size_t i = 0; i < trusted.size(); ++i) {
        constexpr std::size_t kRecordSize = 830, kIpAt = 520;
        u8 octets[4];
        WriteAddress(octets, trusted[i]);
        u8 record[kRecordSize] = {};
        std::snprintf(reinterpret_cast<char*>(record) + kIpAt, 16, "%u.%u.%u.%u", octets[0], octets[1],
                      octets[2], octets[3]);
        text += "\"Host" + std::to_string(i) + "\"=hex:";
        for (std::size_t at = 0; at < kRecordSize; ++at) {
            char digits[4];
            std::snprintf(digits, sizeof digits, "%02x,", record[at]);
            text += digits;
        }
        text.back() = '\r';
        text += '\n';
    }
    return text;
}

void WriteVendors(const std::string& path) {
    std::string text;
    for (u32 octet = 0; octet < 256; ++octet) {
        char line[64];
        std::snprintf(line, sizeof line, "02:00:%02x\tExample Networks Inc.\n", octet);
        text += line;
    }
    File(path).Put(text);
}

void WriteAll(const std::string& folder) {
    const auto few = ConsecutiveAddresses(kFewHosts);
    WriteShuffled(folder + "/known-1000.pcap", few, 5'000'000);
    const auto many = ConsecutiveAddresses(kManyHosts);
    WriteArpCapture(folder + "/known-65536-in-order.pcap", many, 2'000'000, [](u32 i) { return i; });
    WriteShuffled(folder + "/known-65536-consecutive.pcap", many, 2'000'000);
    WriteShuffled(folder + "/known-65536-spread.pcap", SpreadAddresses(kManyHosts), 2'000'000);
    const auto colliding = CollidingAddresses(kManyHosts);
    std::printf("%zu addresses share the low 16 bits of their hash number\n", colliding.size());
    WriteShuffled(folder + "/known-65536-colliding.pcap", colliding, 2'000'000);
    WriteNowhere(folder + "/nowhere.pcap", 5'000'000);
    WriteSyslog(folder + "/syslog.pcap", 100, 2'000'000);
    WriteMacChanges(folder + "/mac-changes.pcap", few, 3'000'000);

    WriteVendors(folder + "/ethercodes.dat");
    File(folder + "/trusted.reg").Put(SettingsText("", few));
    File(folder + "/shares.reg").Put(SettingsText("\"ShareSearch\"=dword:00000001\r\n"));
    File(folder + "/syslog.reg")
        .Put(SettingsText("\"Syslog\"=dword:00000001\r\n\"SyslogMaxEntries\"=dword:00000064\r\n"
                          "\"SyslogNotification\"=dword:00000000\r\n"));
}

}  // namespace
}  // namespace vardel::bench

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: make_captures FOLDER\n", stderr);
        return 2;
    }
    vardel::bench::WriteAll(argv[1]);
    return 0;
}
