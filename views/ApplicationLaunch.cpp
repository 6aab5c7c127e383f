#include "views/ApplicationLaunch.h"

namespace vardel {

namespace {

struct HostTagForm {
    const char* tag;
    TcString HostRecord::*value;
};
constexpr HostTagForm kHostTags[] = {
    {"%VDLW_IP%", &HostRecord::ip}, {"%VDLW_HOST%", &HostRecord::hostName}, {"%VDLW_MAC%", &HostRecord::mac}};

struct AdapterTagForm {
    const char* tag;
    TcString AdapterRecord::*value;
};
// Wanted: the mask stands for what the settings dialog calls the local subnet.
constexpr AdapterTagForm kAdapterTags[] = {{"%VDLW_LIP%", &AdapterRecord::ipAddress},
                                           {"%VDLW_LHOST%", &AdapterRecord::hostName},
                                           {"%VDLW_LSUB%", &AdapterRecord::netMask}};

// A text that is another thread's too is copied before its inner pointer is used.
void Put(TcString& text, const char* tag, const TcString& value) {
    const TcString own(value);
    text.ReplaceAll(tag, own.GetContent());
}

std::string OwnCopy(const TcString& text) {
    const TcString copy(text);
    return copy.GetContent();
}

}  // namespace

TcString ExpandAppParameters(const TcString& parameters, const HostRecord& host, const VardelData& data) {
    TcString text(parameters);
    for (const HostTagForm& form : kHostTags) Put(text, form.tag, host.*form.value);
    const auto found = data.adapters.find(data.adapterIndex);
    // Wanted: an entry without its record leaves the tags as they stand.
    if (found != data.adapters.end() && !found->second) return text;
    for (const AdapterTagForm& form : kAdapterTags)
        Put(text, form.tag, found == data.adapters.end() ? TcString(" ") : (*found->second).*form.value);
    return text;
}

bool LaunchApplication(Shell& shell, const TcString& file, const TcString& parameters) {
    return shell.Execute(ShellVerb::Open, OwnCopy(file), shell.ParameterPieces(OwnCopy(parameters)));
}

bool LaunchForHost(VardelData& data, const TcString& file, const TcString& parameters, const HostRecord& host) {
    Shell& shell = data.services.shell;
    std::vector<std::string> pieces = shell.ParameterPieces(OwnCopy(parameters));
    for (std::string& piece : pieces) piece = ExpandAppParameters(piece.c_str(), host, data).GetContent();
    return shell.Execute(ShellVerb::Open, OwnCopy(file), pieces);
}

}  // namespace vardel
