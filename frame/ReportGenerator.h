// Reports: a snapshot of the host table, the watched hosts and the share accesses, written by a template of the
// user's. docs/reports.md tells the template language.
//
// Main thread. Every failure is silent: no template, an empty one, a folder that can't be written to.
#pragma once

#include <string>
#include <string_view>

#include "capture/VardelData.h"

namespace vardel {

// The report timer's work: reads the template that the settings name and writes the report to the settings' folder.
void ReportGenerator(VardelData& data);

// The report of a template's text. Holds the host table's feeders off while it goes through the hosts, and those of
// the share accesses while it goes through these.
std::string FormReport(std::string_view templateText, VardelData& data);

// Where the report of a template goes: the template's name without its last five characters, in `folder`, which ends
// in a separator of its own; the one ahead of the name is put in all the same, so two in a row are as it should be.
// Empty where nothing is left of the name.
std::string ReportFilePath(const std::string& templatePath, const std::string& folder, char separator);

}  // namespace vardel
