// The vendor list's parser on any bytes: it must come through, and agree with the parse character by
// character.
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "capture/VendorFile.h"
#include "tests/unit/support/VendorFileTwin.h"

using namespace vardel;

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
    const std::string_view file(reinterpret_cast<const char*>(data), size);
    VendorMap vendors;
    ParseVendorFile(file, vendors, [] { return true; });

    test::VendorTexts texts;
    vendors.ForEach([&](const TcString& key, const TcString* vendor) {
        texts[{key.GetContent(), static_cast<std::size_t>(key.GetLength())}] = vendor->GetContent();
    });
    if (texts != test::VendorFileTwin::Parse(file)) {
        std::fputs("the table differs from the slow parser's\n", stderr);
        std::abort();
    }
    return 0;
}
