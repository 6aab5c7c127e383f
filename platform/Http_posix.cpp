#include "platform/Http.h"

#include <curl/curl.h>

#include <algorithm>
#include <memory>

namespace vardel {

namespace {

// As many as the other system's client follows.
constexpr long kMostRedirects = 5;
constexpr char kSchemes[] = "http,https";

struct CloseSession {
    void operator()(CURL* session) const { curl_easy_cleanup(session); }
};
using Session = std::unique_ptr<CURL, CloseSession>;

struct Block {
    std::string bytes;  // has room for `most`, so that taking a piece allocates nothing
    std::size_t most;
    bool IsFull() const { return bytes.size() == most; }
};

// Taking less than what came ends the transfer.
std::size_t TakePiece(char* piece, std::size_t, std::size_t count, void* raw) {
    Block& block = *static_cast<Block*>(raw);
    block.bytes.append(piece, std::min(count, block.most - block.bytes.size()));
    return block.IsFull() ? 0 : count;
}

// A blank is no part of an address, but devices write it.
std::string WithoutBlanks(const char* url) {
    std::string result;
    for (; *url; ++url) {
        if (*url == ' ') result += "%20";
        else result += *url;
    }
    return result;
}

bool SetUp(CURL* session, const HttpRequest& request, Block& block) {
    const CURLcode results[] = {
        curl_easy_setopt(session, CURLOPT_URL, WithoutBlanks(request.url).c_str()),
        curl_easy_setopt(session, CURLOPT_USERAGENT, request.agent),
        curl_easy_setopt(session, CURLOPT_PROTOCOLS_STR, kSchemes),
        curl_easy_setopt(session, CURLOPT_REDIR_PROTOCOLS_STR, kSchemes),
        curl_easy_setopt(session, CURLOPT_FOLLOWLOCATION, 1L),
        curl_easy_setopt(session, CURLOPT_MAXREDIRS, kMostRedirects),
        curl_easy_setopt(session, CURLOPT_TIMEOUT_MS, static_cast<long>(request.timeoutMs)),
        // Time-outs without signals, which would hit any thread; and a name look-up that still runs at the end is
        // left to end by itself.
        curl_easy_setopt(session, CURLOPT_NOSIGNAL, 1L),
        curl_easy_setopt(session, CURLOPT_QUICK_EXIT, 1L),
        curl_easy_setopt(session, CURLOPT_WRITEFUNCTION, &TakePiece),
        curl_easy_setopt(session, CURLOPT_WRITEDATA, &block),
    };
    return std::all_of(std::begin(results), std::end(results), [](CURLcode code) { return code == CURLE_OK; });
}

class PosixHttp : public Http {
  public:
    bool Fetch(const HttpRequest& request, std::string& block) override {
        // The library starts with the first fetch: most runs need none.
        static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
        if (started != CURLE_OK || !IsWebAddress(request.url)) return false;
        const Session session(curl_easy_init());
        if (!session) return false;
        Block taken{{}, request.maxBytes};
        taken.bytes.reserve(taken.most);
        if (!SetUp(session.get(), request, taken)) return false;
        const CURLcode result = curl_easy_perform(session.get());
        if (result != CURLE_OK && result != CURLE_PARTIAL_FILE && !taken.IsFull()) return false;
        block = std::move(taken.bytes);
        return true;
    }
};

}  // namespace

Http& SystemHttp() {
    static PosixHttp http;
    return http;
}

}  // namespace vardel
