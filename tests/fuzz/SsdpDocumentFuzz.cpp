// A device's message and its description under any bytes. The first byte chooses what the rest is: a message, or the
// document that a well-formed message leads to. Of what is found, each text must be a part of what was read.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "capture/EventMap.h"
#include "capture/SsdpDocument.h"
#include "capture/SsdpReception.h"
#include "tests/unit/support/TestServices.h"

using namespace vardel;

namespace {

constexpr char kUrl[] = "http://10.0.0.1/device.xml";

void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

bool IsTrimmedPartOf(const std::string& text, const std::string& whole) {
    const std::string blanks = " \t\r\n";
    return whole.find(text) != std::string::npos &&
           (text.empty() || (blanks.find(text.front()) == std::string::npos &&
                             blanks.find(text.back()) == std::string::npos));
}

void TryMessage(const std::string& message) {
    const auto location = ParseSsdpLocation(message);
    Require(!location || IsTrimmedPartOf(std::string(*location), message), "the location is no part of the message");
}

void TryDocument(const std::string& document) {
    TheEventMap().Clear();
    test::TestServices system;
    system.http.documents[kUrl] = document;
    VardelData data(system.services);
    HostRecord host;
    host.ip = "10.0.0.1";
    FetchDeviceDescription(kUrl, host, data);
    const std::string read = document.substr(0, kDescriptionBytes);
    const std::string name = host.friendlyName.GetContent();
    Require(host.upnpDone == 1, "the attempt was not counted");
    Require(IsTrimmedPartOf(name, read) && name.find(':') == std::string::npos, "the name is no part of the document");
    Require(IsTrimmedPartOf(host.presentationUrl.GetContent(), read), "the page is no part of the document");
    Require(TheEventMap().Count() <= 1, "more than one event");
    TheEventMap().Clear();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* input, std::size_t size) {
    if (size == 0) return 0;
    const std::string text(reinterpret_cast<const char*>(input) + 1, size - 1);
    if (input[0] == 'm') TryMessage(text);
    else TryDocument(text);
    return 0;
}
