// Savefiles: the frames of a list of savefiles, one after the other, through the program's capture filter.
//
// Opened by the main thread; after that used by one thread at a time.
#pragma once

#include <pcap/pcap.h>

#include <memory>
#include <string>
#include <vector>

#include "tools/vardel_replay/FrameBatch.h"

namespace vardel::replay {

enum class OpenResult { Opened, Unreadable, OtherLinkType };

class Savefiles {
  public:
    // Opens all files. On failure the message tells which file and why, and nothing may be read.
    OpenResult Open(const std::vector<std::string>& names, std::string& message);

    // Adds frames to `batch` until that is full or the last file ends. False when nothing is left to read.
    // A file that can't be read to its end is left at the tear; the next one follows.
    bool Read(FrameBatch& batch);

    // One line a torn file. Complete once Read gave false.
    const std::vector<std::string>& Tears() const { return tears_; }

  private:
    struct CloseHandle {
        void operator()(pcap_t* handle) const { pcap_close(handle); }
    };
    struct Savefile {
        std::string name;
        std::unique_ptr<char[]> buffer;  // of the file behind the handle
        std::unique_ptr<pcap_t, CloseHandle> handle;
    };
    class FilterProgram {
      public:
        ~FilterProgram() { pcap_freecode(&program); }
        bpf_program program{};
    };
    struct Sink {
        pcap_t* handle;
        const bpf_program* filter;
        FrameBatch* batch;
    };

    OpenResult OpenOne(const std::string& name, std::string& message);
    static void TakeFrame(u_char* sink, const ::pcap_pkthdr* header, const u_char* bytes);

    FilterProgram filter_;
    std::vector<Savefile> files_;
    std::size_t current_ = 0;
    std::vector<std::string> tears_;
};

}  // namespace vardel::replay
