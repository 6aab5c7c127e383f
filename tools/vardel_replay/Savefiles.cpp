#include "tools/vardel_replay/Savefiles.h"

#include <stdio_ext.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace vardel::replay {

namespace {

// Savefiles are read through once. With the small buffer that a file has by itself, and its lock that each of a
// frame's two reads takes, reading costs more than the handlers.
constexpr std::size_t kReadBuffer = 64u << 10;

// As the capture thread opens an adapter.
constexpr char kCaptureFilter[] = "arp or rarp or ip";
constexpr bpf_u_int32 kCaptureNetMask = 0xFFFF0000;

std::FILE* OpenForReading(const std::string& name, char* buffer) {
    std::FILE* file = name == "-" ? fdopen(dup(STDIN_FILENO), "rb") : std::fopen(name.c_str(), "rb");
    if (!file) return nullptr;
    std::setvbuf(file, buffer, _IOFBF, kReadBuffer);
    __fsetlocking(file, FSETLOCKING_BYCALLER);
    return file;
}

}  // namespace

OpenResult Savefiles::Open(const std::vector<std::string>& names, std::string& message) {
    for (const std::string& name : names) {
        const OpenResult result = OpenOne(name, message);
        if (result != OpenResult::Opened) return result;
    }
    return OpenResult::Opened;
}

OpenResult Savefiles::OpenOne(const std::string& name, std::string& message) {
    auto buffer = std::make_unique<char[]>(kReadBuffer);
    std::FILE* file = OpenForReading(name, buffer.get());
    if (!file) {
        message = name + ": " + std::strerror(errno);
        return OpenResult::Unreadable;
    }
    char errors[PCAP_ERRBUF_SIZE] = "";
    pcap_t* handle = pcap_fopen_offline(file, errors);
    if (!handle) {
        std::fclose(file);
        message = name + ": " + errors;
        return OpenResult::Unreadable;
    }
    files_.push_back({name, std::move(buffer), std::unique_ptr<pcap_t, CloseHandle>(handle)});
    if (const int type = pcap_datalink(handle); type != DLT_EN10MB) {
        const char* typeName = pcap_datalink_val_to_name(type);
        message = name + ": link type " + (typeName ? typeName : std::to_string(type)) + " is not Ethernet";
        return OpenResult::OtherLinkType;
    }
    // One link type, one program for all files.
    if (!filter_.program.bf_insns &&
        pcap_compile(handle, &filter_.program, kCaptureFilter, 1, kCaptureNetMask) < 0) {
        message = name + ": " + pcap_geterr(handle);
        return OpenResult::Unreadable;
    }
    return OpenResult::Opened;
}

// The filter runs here and not inside the library, which would not tell of the frames that it refuses.
void Savefiles::TakeFrame(u_char* sink, const ::pcap_pkthdr* header, const u_char* bytes) {
    const Sink& to = *reinterpret_cast<Sink*>(sink);
    if (pcap_offline_filter(to.filter, header, bytes) == 0)
        to.batch->Skip();
    else
        to.batch->Keep({{header->ts.tv_sec, header->ts.tv_usec}, header->caplen, header->len}, bytes);
    if (to.batch->IsFull()) pcap_breakloop(to.handle);
}

bool Savefiles::Read(FrameBatch& batch) {
    while (current_ < files_.size() && !batch.IsFull()) {
        Savefile& file = files_[current_];
        Sink sink{file.handle.get(), &filter_.program, &batch};
        const int result = pcap_loop(file.handle.get(), -1, TakeFrame, reinterpret_cast<u_char*>(&sink));
        if (result == PCAP_ERROR_BREAK) continue;
        if (result == PCAP_ERROR) tears_.push_back(file.name + ": " + pcap_geterr(file.handle.get()));
        file.handle.reset();
        ++current_;
    }
    return batch.ReadCount() > 0;
}

}  // namespace vardel::replay
