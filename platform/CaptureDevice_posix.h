// What an opened capture source is on Linux: a live interface or a savefile, both over libpcap.
//
// A device is opened, read and closed by one thread at a time (the capture thread). The frame that Next hands
// out stays valid until the next call of Next or the end of the device. Compiled filters end with their
// device, so that a program that reopens a silent interface every second for months keeps nothing behind.
#pragma once

#include <pcap/pcap.h>

#include <chrono>
#include <memory>
#include <vector>

#include "platform/CaptureLibrary.h"

namespace vardel {

struct pcap_handle {
    pcap_handle() = default;
    virtual ~pcap_handle();
    pcap_handle(const pcap_handle&) = delete;
    pcap_handle& operator=(const pcap_handle&) = delete;

    // 1 a frame; 0 when the read time-out passed without one; negative an error or the end.
    virtual int Next(pcap_pkthdr** header, const u8** frame) = 0;
    virtual pcap_t* Native() = 0;

    // The program's instructions belong to the device. Negative on failure.
    int Compile(bpf_program& program, const char* text, int optimize, u32 netmask);

  private:
    std::vector<bpf_program> programs_;
};

struct CaptureOptions {
    int snapLength = 0;
    bool promiscuous = false;
    std::chrono::milliseconds readTimeout{0};
};

constexpr char kSavefilePrefix[] = "file://";

// Both give null on failure, with the reason in `errors` (kPcapErrorBufferSize bytes).
std::unique_ptr<pcap_handle> OpenLiveDevice(const char* name, const CaptureOptions& options, char* errors);

// Replays the savefile at `path`, paced by the frames' own time stamps; the first frame comes at once. One
// playback stands at a time, for as long as no other source is opened. Closing and opening again goes on
// where it stood: the play clock runs only while a device is open, so no frame is lost and none comes twice.
// At the end of the file (or at a tear in it) one read gives the library's negative result; after that the
// source is a silent network: it opens, and its reads time out. Opening another source, then this one again,
// plays the file from its start.
std::unique_ptr<pcap_handle> OpenSavefileDevice(const char* path, const CaptureOptions& options,
                                                char* errors);

// Ends the playback that waits to be resumed, if there is one.
void ForgetSavefile();

}  // namespace vardel
