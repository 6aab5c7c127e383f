#include "settings/SiteAddresses.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "foundation/TextTrim.h"
#include "platform/Http.h"

namespace vardel {

namespace {

constexpr std::size_t kLargestFile = 64 * 1024;
constexpr std::size_t kLongestAddress = 1024;
constexpr std::string_view kSection = "Addresses";

struct AddressRow {
    std::string_view name;
    std::string SiteAddresses::*field;
};
constexpr AddressRow kRows[] = {
    {"UpdateServer", &SiteAddresses::updateServer},
    {"MakerSite", &SiteAddresses::makerSite},
    {"HelpSite", &SiteAddresses::helpSite},
};

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

bool SameLetters(std::string_view a, std::string_view b) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char x, char y) { return lower(x) == lower(y); });
}

// What a command line, a shell or a header line could take for something else is no part of an address.
bool IsPlain(char c) { return c > ' ' && c < '\x7f' && c != '"' && c != '\'' && c != '\\' && c != '`'; }

// Empty where the value is no usable address.
std::string UsableAddress(std::string_view value) {
    while (value.ends_with('/')) value.remove_suffix(1);
    std::string address(value);
    const std::size_t host = address.find("://");
    const bool usable = IsWebAddress(address.c_str()) && host + 3 < address.size() &&
                        address.size() <= kLongestAddress && std::all_of(address.begin(), address.end(), IsPlain);
    return usable ? address : std::string();
}

void TakeLine(std::string_view line, SiteAddresses& addresses) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return;
    const std::string_view name = TrimmedText(line.substr(0, equals));
    for (const AddressRow& row : kRows) {
        if (!SameLetters(name, row.name)) continue;
        const std::string address = UsableAddress(TrimmedText(line.substr(equals + 1)));
        if (!address.empty()) addresses.*row.field = address;
    }
}

}  // namespace

SiteAddresses ParseSiteAddresses(std::string_view text) {
    SiteAddresses addresses;
    bool inSection = false;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = TrimmedText(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with(';') || line.starts_with('#')) continue;
        if (line.starts_with('[') && line.ends_with(']'))
            inSection = SameLetters(TrimmedText(line.substr(1, line.size() - 2)), kSection);
        else if (inSection)
            TakeLine(line, addresses);
    }
    return addresses;
}

SiteAddresses ReadSiteAddresses(Folders& folders) {
    const std::string program = folders.ProgramPath();
    const std::size_t last = program.rfind(folders.Separator());
    if (last == std::string::npos) return {};
    const std::string path = program.substr(0, last + 1) + kSiteAddressFile;
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "rb"));
    if (!file) return {};
    std::string text(kLargestFile + 1, '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
    return text.size() > kLargestFile ? SiteAddresses{} : ParseSiteAddresses(text);
}

}  // namespace vardel
