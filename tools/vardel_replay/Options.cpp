#include "tools/vardel_replay/Options.h"

#include <cctype>
#include <charconv>

namespace vardel::replay {

const char kUsage[] =
    "usage: vardel-replay [--settings FILE.reg] [--vendors FILE] [--local IP[=MAC]]... [--resolve] "
    "[--fetch]\n"
    "                     [--drain] [--repeat N] [--quiet] CAPTURE...\n";

namespace {

bool ParseNumber(const std::string& text, u32 low, u32 high, u32& number) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end && number >= low && number <= high;
}

// Host records are keyed by the address text, so only its one canonical form is taken.
bool IsUsableAddress(const std::string& text) {
    if (text == "0.0.0.0") return false;
    std::size_t start = 0;
    for (int octet = 0; octet < 4; ++octet) {
        const std::size_t end = octet < 3 ? text.find('.', start) : text.size();
        if (end == std::string::npos) return false;
        const std::string digits = text.substr(start, end - start);
        u32 value = 0;
        if (!ParseNumber(digits, 0, 255, value) || digits != std::to_string(value)) return false;
        start = end + 1;
    }
    return true;
}

bool NormaliseMac(std::string& text) {
    constexpr std::size_t kMacTextLength = 17;
    if (text.size() != kMacTextLength) return false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const unsigned char c = static_cast<unsigned char>(text[at]);
        if (at % 3 == 2 ? c != ':' : !std::isxdigit(c)) return false;
        text[at] = static_cast<char>(std::tolower(c));
    }
    return true;
}

bool TakeSettings(const std::string& value, Options& options) {
    options.settingsFile = value;
    return !value.empty();
}

bool TakeVendors(const std::string& value, Options& options) {
    options.vendorFile = value;
    return !value.empty();
}

bool TakeLocal(const std::string& value, Options& options) {
    LocalAddress local;
    const std::size_t equals = value.find('=');
    local.ip = value.substr(0, equals);
    if (!IsUsableAddress(local.ip)) return false;
    if (equals != std::string::npos) {
        local.mac = value.substr(equals + 1);
        if (!NormaliseMac(local.mac)) return false;
    }
    options.localAddresses.push_back(local);
    return true;
}

bool TakeRepeat(const std::string& value, Options& options) {
    return ParseNumber(value, 1, 1'000'000'000, options.repeat);
}

struct Flag {
    const char* name;
    bool Options::*field;
};
constexpr Flag kFlags[] = {
    {"--resolve", &Options::resolve},
    {"--fetch", &Options::fetch},
    {"--drain", &Options::drain},
    {"--quiet", &Options::quiet},
};

struct ValueOption {
    const char* name;
    bool (*take)(const std::string& value, Options& options);
};
constexpr ValueOption kValueOptions[] = {
    {"--settings", TakeSettings},
    {"--vendors", TakeVendors},
    {"--local", TakeLocal},
    {"--repeat", TakeRepeat},
};

const Flag* FindFlag(const std::string& name) {
    for (const Flag& flag : kFlags)
        if (name == flag.name) return &flag;
    return nullptr;
}

const ValueOption* FindValueOption(const std::string& name) {
    for (const ValueOption& option : kValueOptions)
        if (name == option.name) return &option;
    return nullptr;
}

}  // namespace

bool ParseOptions(const std::vector<std::string>& arguments, Options& options, std::string& complaint) {
    bool namesOnly = false;
    for (std::size_t at = 0; at < arguments.size(); ++at) {
        const std::string& argument = arguments[at];
        // A lone "-" is the capture library's name for standard input.
        if (namesOnly || argument.empty() || argument[0] != '-' || argument == "-") {
            options.captures.push_back(argument);
        } else if (argument == "--") {
            namesOnly = true;
        } else if (const Flag* flag = FindFlag(argument)) {
            options.*(flag->field) = true;
        } else if (const ValueOption* option = FindValueOption(argument)) {
            if (++at == arguments.size()) {
                complaint = argument + " needs a value";
                return false;
            }
            if (!option->take(arguments[at], options)) {
                complaint = argument + " can't be \"" + arguments[at] + "\"";
                return false;
            }
        } else {
            complaint = "unknown option " + argument;
            return false;
        }
    }
    if (options.captures.empty()) complaint = "no savefile was named";
    return complaint.empty();
}

}  // namespace vardel::replay
