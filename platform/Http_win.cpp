// The system's client has time-outs for each of its steps, but none for all of them together: a server that sends a
// byte now and then holds a reading thread for as long as it likes. So a fetch runs on a thread of its own, which
// the caller awaits for as long as it allows. After that it closes the session, which by the API's documentation
// unblocks a thread that waits inside; should that take its time, the thread goes on by itself with memory that it
// shares with nobody.
#include "platform/Http.h"

#include <memory>
#include <mutex>

#include "platform/Threads.h"
#include "platform/WindowsApi.h"

#include <wininet.h>

namespace vardel {

namespace {

class FetchJob {
  public:
    explicit FetchJob(const HttpRequest& request)
        : agent_(request.agent), url_(request.url), timeoutMs_(request.timeoutMs), bytes_(request.maxBytes, '\0') {}

    // On the job's own thread.
    void Run() noexcept {
        const HINTERNET session = InternetOpenA(agent_.c_str(), INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
        if (!session) return;
        if (Enter(session)) {
            LimitEachStep(session);
            const HINTERNET document = InternetOpenUrlA(session, url_.c_str(), nullptr, 0, 0, 0);
            DWORD count = 0;
            // Whether the address opened shows in the read.
            if (IsOpenedByWeb(document) &&
                InternetReadFile(document, bytes_.data(), static_cast<DWORD>(bytes_.size()), &count)) {
                count_ = count;
                succeeded_ = true;
            }
            if (document) InternetCloseHandle(document);
        }
        CloseSession();
    }

    // On the caller's thread, while the job may still run.
    void GiveUp() {
        {
            const std::lock_guard hold(guard_);
            givenUp_ = true;
        }
        CloseSession();
    }

    // Once the job's thread has ended.
    bool TakeBlock(std::string& block) {
        if (!succeeded_) return false;
        bytes_.resize(count_);
        block = std::move(bytes_);
        return true;
    }

  private:
    // False when nobody waits for the job any more.
    bool Enter(HINTERNET session) {
        const std::lock_guard hold(guard_);
        session_ = session;
        return !givenUp_;
    }
    void CloseSession() {
        HINTERNET session = nullptr;
        {
            const std::lock_guard hold(guard_);
            std::swap(session, session_);
        }
        if (session) InternetCloseHandle(session);
    }
    void LimitEachStep(HINTERNET session) const {
        DWORD timeout = timeoutMs_;
        for (const DWORD option :
             {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_SEND_TIMEOUT, INTERNET_OPTION_RECEIVE_TIMEOUT})
            InternetSetOptionA(session, option, &timeout, sizeof timeout);
    }
    // The client refuses a redirect to another scheme; this holds where one doesn't.
    static bool IsOpenedByWeb(HINTERNET document) {
        char url[INTERNET_MAX_URL_LENGTH + 1] = "";
        DWORD size = sizeof url - 1;
        return document && InternetQueryOptionA(document, INTERNET_OPTION_URL, url, &size) && IsWebAddress(url);
    }

    const std::string agent_;
    const std::string url_;
    const u32 timeoutMs_;
    std::string bytes_;
    DWORD count_ = 0;
    bool succeeded_ = false;
    std::mutex guard_;
    HINTERNET session_ = nullptr;
    bool givenUp_ = false;
};

using SharedJob = std::shared_ptr<FetchJob>;

void RunJob(void* raw) {
    const std::unique_ptr<SharedJob> job(static_cast<SharedJob*>(raw));
    (*job)->Run();
}

class WindowsHttp : public Http {
  public:
    bool Fetch(const HttpRequest& request, std::string& block) override {
        if (!IsWebAddress(request.url)) return false;
        const auto job = std::make_shared<FetchJob>(request);
        auto threadsShare = std::make_unique<SharedJob>(job);
        Threads& threads = SystemThreads();
        ThreadHandle thread = nullptr;
        u32 id = 0;
        if (!threads.Start(&RunJob, threadsShare.get(), thread, id)) return false;
        threadsShare.release();
        const bool ended = threads.WaitAll({&thread, 1}, request.timeoutMs);
        threads.Close(thread);
        if (ended) return job->TakeBlock(block);
        job->GiveUp();
        return false;
    }
};

}  // namespace

Http& SystemHttp() {
    static WindowsHttp http;
    return http;
}

}  // namespace vardel
