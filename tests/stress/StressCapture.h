// A capture library that gives a program under load its frames as fast as it takes them: hosts by ARP from changing
// cards, browse, device and SSDP announcements, syslog and other traffic of the same addresses. One stands at a time.
#pragma once

#include <atomic>
#include <chrono>
#include <random>
#include <thread>
#include <vector>

#include "tests/stress/StressSystem.h"
#include "tests/unit/support/Frames.h"
#include "tests/unit/support/ScriptedCapture.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {

class StressCapture {
  public:
    static constexpr int kFrames = 300'000;
    static constexpr const char* kDevice = "lan0";
    static constexpr const char* kOtherDevice = "lan1";
    static constexpr int kMostWaits = 1'000;  // milliseconds, as a real library's time-out

    StressCapture() : pool_(MakePool()) {
        current_ = this;
        devices_.devices = {{.name = kDevice, .addresses = {{.address = {10, 9, 200, 1}, .netMask = {255, 255, 0, 0}}},
                             .mac = {2, 0, 0, 0, 0, 9}},
                            {.name = kOtherDevice}};
    }
    ~StressCapture() { current_ = nullptr; }
    StressCapture(const StressCapture&) = delete;
    StressCapture& operator=(const StressCapture&) = delete;

    int Given() const { return given_; }
    // All frames were handed out, and the program is done with the last of them.
    bool IsThrough() const { return through_; }
    // No more frames than these until the next call, so that they last as long as the other work.
    void Allow(int frames) { allowed_ = frames; }

    void Install(ScriptedCaptureModules& modules) {
        CaptureEntryPoints entries = devices_.EntryPoints();
        entries.open = [](const char*, int, int, int, void*, char*) {
            return reinterpret_cast<pcap_handle*>(current_);
        };
        entries.close = [](pcap_handle*) {};
        entries.datalink = [](pcap_handle*) { return 1; };
        entries.compile = [](pcap_handle*, pcap_filter*, const char*, int, u32) { return 0; };
        entries.setfilter = [](pcap_handle*, pcap_filter*) { return 0; };
        entries.next_ex = [](pcap_handle*, pcap_pkthdr** header, const u8** frame) {
            return current_->Read(header, frame);
        };
        InstallCapture(entries, modules);
    }

  private:
    static std::vector<Frame> MakePool() {
        std::vector<Frame> pool;
        for (int n = 0; n < kAddresses; ++n) {
            const std::string ip = StressAddress(n);
            char mac[18];
            std::snprintf(mac, sizeof mac, "02:%02x:%02x:00:00:01", n >> 8, n & 255);
            pool.push_back(ArpReply{.ip = ip, .mac = mac});
            if (n % 10 == 0) pool.push_back(ArpReply{.ip = ip, .mac = "66:66:66:66:66:66"});
            if (n % 20 == 0)
                pool.push_back(UdpFrame{.sourceIp = ip, .destinationPort = 514, .payload = "<9>door opened"});
            if (n % 25 == 0) pool.push_back(BrowseAnnouncement{.sourceIp = ip, .serverName = "ANNOUNCED"});
            if (n % 40 == 0) pool.push_back(SsdpMessage(ip));
            if (n % 50 == 0) pool.push_back(TcpFrame{.sourceIp = ip});
            if (n % 100 == 0) pool.push_back(UdpFrame{.sourceIp = ip, .sourcePort = 22936,
                                                      .payload = std::string(320, 'd')});
        }
        return pool;
    }
    static Frame SsdpMessage(const std::string& ip) {
        return UdpFrame{.sourceIp = ip, .destinationPort = 1900,
                        .payload = "NOTIFY * HTTP/1.1\r\nLocation: http://" + ip + "/root.xml\r\n\r\n"};
    }

    // Now and then a silent second, without its length: the program connects anew.
    int Read(pcap_pkthdr** header, const u8** frame) {
        if (given_ >= kFrames) {
            through_ = true;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            return 0;
        }
        for (int waits = 0; given_ >= allowed_; ++waits) {
            if (waits == kMostWaits) return 0;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        const int number = ++given_;
        if (number % 10'000 == 0) return 0;
        const Frame& bytes = pool_[random_() % pool_.size()];
        header_ = {{1'700'000'000 + number / 1000, 0}, static_cast<u32>(bytes.size()), static_cast<u32>(bytes.size())};
        *header = &header_;
        *frame = bytes.data();
        return 1;
    }

    inline static StressCapture* current_ = nullptr;
    ScriptedCapture devices_;
    const std::vector<Frame> pool_;
    std::mt19937 random_{1};
    pcap_pkthdr header_{};
    std::atomic<int> given_{0};
    std::atomic<int> allowed_{0};
    std::atomic<bool> through_{false};
};

}  // namespace vardel::test
