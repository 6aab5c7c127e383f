// Whole files read and written in the text mode of the system's C runtime: on Windows the pairs CR LF of a file are
// LF in memory, elsewhere bytes are taken as they stand. Paths are 8-bit texts of the system code page.
//
// Any thread. Nothing is ever waited for: a pipe or a device in the place of a file to read counts as missing.
#pragma once

#include <string>
#include <string_view>

namespace vardel {

// False when there is no such file or it can't be read; `text` is then empty.
bool ReadTextFile(const std::string& path, std::string& text);

// Puts a new content in the place of the file, or makes the file. Whoever reads the file meanwhile has the whole old or
// the whole new content, and so has the disk when the machine stops in between or is full: the content is written to a
// file beside it ("vardelwatch.part"), which then takes its name. What can't be replaced (a file of several names, one
// in a folder without the right to add another) is overwritten in place. False when the content isn't there.
bool WriteTextFile(const std::string& path, std::string_view text);

}  // namespace vardel
