// A savefile as a capture source, for demonstrations and machines that give no right to capture.
#include <algorithm>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "platform/CaptureDevice_posix.h"

namespace vardel {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

// Bounded, so that no gap that a damaged file tells can overflow the play clock.
microseconds Stamp(const timeval& time) {
    constexpr std::int64_t kLastSecond = 0xffffffff;
    return std::chrono::seconds(std::clamp<std::int64_t>(time.tv_sec, 0, kLastSecond)) +
           microseconds(std::clamp<std::int64_t>(time.tv_usec, 0, 999'999));
}

// One savefile being played: where it stands, and what time it is on its own clock.
class Playback {
  public:
    Playback(std::string path, pcap_t* pcap) : path_(std::move(path)), pcap_(pcap) {}
    ~Playback() { pcap_close(pcap_); }
    Playback(const Playback&) = delete;
    Playback& operator=(const Playback&) = delete;

    const std::string& Path() const { return path_; }
    pcap_t* Native() { return pcap_; }

    void Resume() { resumedAt_ = Clock::now(); }
    void Pause() { played_ += Clock::now() - resumedAt_; }

    int Next(std::chrono::milliseconds timeout, pcap_pkthdr** header, const u8** frame) {
        const auto deadline = Clock::now() + timeout;
        if (!ended_ && !header_) {
            if (const int result = ReadAhead(); result != 1) {
                ended_ = true;
                return result;
            }
        }
        if (ended_ || Moment(due_) > deadline) {
            std::this_thread::sleep_until(deadline);
            return 0;
        }
        std::this_thread::sleep_until(Moment(due_));
        *header = reinterpret_cast<pcap_pkthdr*>(std::exchange(header_, nullptr));
        *frame = frame_;
        return 1;
    }

  private:
    // Takes the next frame off the file and works out when it is due. A time stamp that goes back in time
    // makes a frame due with the one before.
    int ReadAhead() {
        const int result = pcap_next_ex(pcap_, &header_, &frame_);
        if (result != 1) {
            header_ = nullptr;
            return result;
        }
        const microseconds stamp = Stamp(header_->ts);
        if (started_ && stamp > lastStamp_) due_ += stamp - lastStamp_;
        if (!started_) due_ = std::chrono::duration_cast<microseconds>(played_ + (Clock::now() - resumedAt_));
        started_ = true;
        lastStamp_ = stamp;
        return 1;
    }

    // When the play clock will show `time`, provided that it isn't paused.
    Clock::time_point Moment(microseconds time) const { return resumedAt_ + (time - played_); }

    const std::string path_;
    pcap_t* const pcap_;
    ::pcap_pkthdr* header_ = nullptr;  // the frame that waits for its moment, in libpcap's buffer
    const u8* frame_ = nullptr;
    bool started_ = false;
    bool ended_ = false;
    microseconds lastStamp_{0};
    microseconds due_{0};        // on the play clock
    Clock::duration played_{0};  // what the play clock showed when it was last paused
    Clock::time_point resumedAt_;
};

// The playback that waits between two opens.
class PlaybackShelf {
  public:
    // The one of this path, or null; any other is given up.
    std::unique_ptr<Playback> Take(const std::string& path) {
        std::lock_guard hold(guard_);
        std::unique_ptr<Playback> taken = std::move(waiting_);
        return taken && taken->Path() == path ? std::move(taken) : nullptr;
    }
    void Put(std::unique_ptr<Playback> playback) {
        std::lock_guard hold(guard_);
        waiting_ = std::move(playback);
    }

  private:
    std::mutex guard_;
    std::unique_ptr<Playback> waiting_;
};

// Never destroyed: a capture thread that outlives the program's end may still close its device.
PlaybackShelf& Shelf() {
    static PlaybackShelf* shelf = new PlaybackShelf;
    return *shelf;
}

class SavefileDevice : public pcap_handle {
  public:
    SavefileDevice(std::unique_ptr<Playback> playback, std::chrono::milliseconds readTimeout)
        : playback_(std::move(playback)), readTimeout_(readTimeout) {
        playback_->Resume();
    }
    ~SavefileDevice() override {
        playback_->Pause();
        Shelf().Put(std::move(playback_));
    }
    pcap_t* Native() override { return playback_->Native(); }
    int Next(pcap_pkthdr** header, const u8** frame) override {
        return playback_->Next(readTimeout_, header, frame);
    }

  private:
    std::unique_ptr<Playback> playback_;
    const std::chrono::milliseconds readTimeout_;
};

// Opened as a plain file: to libpcap's own open the name "-" would mean the standard input.
std::unique_ptr<Playback> StartPlayback(const char* path, char* errors) {
    std::FILE* file = std::fopen(path, "rbe");
    if (!file) {
        std::snprintf(errors, kPcapErrorBufferSize, "%s can't be opened", path);
        return nullptr;
    }
    char why[PCAP_ERRBUF_SIZE] = "";
    pcap_t* pcap = pcap_fopen_offline(file, why);
    if (!pcap) {
        std::fclose(file);
        std::snprintf(errors, kPcapErrorBufferSize, "%s", why);
        return nullptr;
    }
    return std::make_unique<Playback>(path, pcap);
}

}  // namespace

std::unique_ptr<pcap_handle> OpenSavefileDevice(const char* path, const CaptureOptions& options,
                                                char* errors) {
    std::unique_ptr<Playback> playback = Shelf().Take(path);
    if (!playback) playback = StartPlayback(path, errors);
    if (!playback) return nullptr;
    return std::make_unique<SavefileDevice>(std::move(playback), options.readTimeout);
}

void ForgetSavefile() {
    Shelf().Put(nullptr);
}

}  // namespace vardel
