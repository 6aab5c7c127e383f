// CaptureLoop: the capture thread's work. Keeps a connection to the chosen adapter open while capture is
// switched on and hands every frame to its packet handler.
//
// A connection ends at the first read that gives no frame, also when it only timed out: that is how a stop, a
// flipped switch and another adapter are noticed on a quiet network. It is then opened again, each second
// where that fails. Runs on the capture thread alone. `params` has its handlers and its data; it and the
// entry points outlive the loop.
#pragma once

#include "capture/ThreadParams.h"
#include "foundation/TcString.h"
#include "platform/CaptureLibrary.h"

namespace vardel {

class CaptureLoop {
  public:
    CaptureLoop(const ThreadParams& params, const CaptureEntryPoints& capture);
    ~CaptureLoop();
    CaptureLoop(const CaptureLoop&) = delete;
    CaptureLoop& operator=(const CaptureLoop&) = delete;

    // Returns when the stop byte is set.
    void Run();

  private:
    class Connection;

    void AnnounceStart(const TcString& interfaceName);
    void StopForWantOfInterface();
    void CaptureFrom(const TcString& interfaceName);
    bool IsEthernet(pcap_handle* handle);
    bool SetFilter(pcap_handle* handle);
    void ReadFrames(pcap_handle* handle);
    bool MayGoOn();
    void SleepOneSecond();

    const ThreadParams& params_;
    const CaptureEntryPoints& capture_;
    Events& events_;
    EventHandle neverSignalled_;  // "DoNothingEvent", waited for as a sleep
    bool announced_ = false;      // "capturing started" was posted and not answered by a stop event yet
    char errorBuffer_[kPcapErrorBufferSize] = {};
};

}  // namespace vardel
