#include "frame/RunReport.h"

#include "frame/HostTable.h"
#include "platform/CodePage.h"
#include "watchers/EventLogFile.h"

namespace vardel {

void RunReport::PrintNewEvents(const VardelData& data) {
    if (!output_) return;
    // Formed first and written afterwards: a slow terminal must not hold the pin.
    std::string lines;
    {
        ReadPin pin;
        for (const EventMap::Node* node = TheEventMap().After(lastPrinted_); node; node = EventMap::Next(node)) {
            lastPrinted_ = node->key;
            if (!node->Value()) continue;
            std::string line = FormEventLine(*node->Value(), data);
            if (line.ends_with('\n')) line.pop_back();
            lines += PrintableText(line, OutputTakesUtf8()) + "\n";
        }
    }
    if (lines.empty()) return;
    std::fwrite(lines.data(), 1, lines.size(), output_);
    std::fflush(output_);
}

void RunReport::PrintEnd(const VardelData& data) {
    PrintNewEvents(data);
    if (!output_) return;
    const std::vector<HostRow> hosts = CollectHosts(data);
    std::fprintf(output_, "\n%s\n%zu hosts, %u events\n", FormatHostTable(hosts).c_str(), hosts.size(),
                 static_cast<unsigned>(TheEventMap().Count()));
    std::fflush(output_);
}

}  // namespace vardel
