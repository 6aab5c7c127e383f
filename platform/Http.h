// Fetching the first bytes of a document by HTTP: what the program asks of the system's HTTP client.
//
// Any thread may fetch, several at once too; the calling thread is held for the fetch, and never longer than it
// allows. Only http and https are spoken, also where a server redirects. No body of a redirecting answer is given;
// an error page is, like any document. Compressed forms are not asked for.
#pragma once

#include <string>

#include "platform/Types.h"

namespace vardel {

struct HttpRequest {
    const char* agent;  // the User-Agent header's text
    const char* url;    // as it was received
    u32 maxBytes;       // at most so many bytes of the document are read, in one go; above 0
    u32 timeoutMs;      // for all of it: name look-up, connecting, redirects, reading; above 0
};

class Http {
  public:
    virtual ~Http() = default;

    // Opens a session, opens the address with GET, reads one block and closes both. True when the read succeeded:
    // `block` then holds the document's first bytes as they came, none for an empty one. A document that ends before
    // its announced length gives what came of it. On failure, a fetch that took too long included, gives false and
    // leaves `block` untouched. Throws std::bad_alloc alone.
    virtual bool Fetch(const HttpRequest& request, std::string& block) = 0;
};

// True for an address of the schemes http and https, in either case of letters.
bool IsWebAddress(const char* url);

// The system's proxy settings are used (Linux: the environment's http_proxy and its kin). The network was started
// before (ProcessServices).
Http& SystemHttp();

}  // namespace vardel
