// Runs a command, without a shell, for what it writes to its standard output.
#pragma once

#include <string>
#include <vector>

namespace vardel {

// `words` are the command, looked for in PATH, and its arguments. Its standard input and error are /dev/null. True
// when it ended by itself with exit code 0 within timeoutMs and wrote at most `limit` bytes; else it is ended, with
// what it started in its process group, and `output` is of no use. Any thread may call it.
bool RunForOutput(const std::vector<std::string>& words, int timeoutMs, std::size_t limit, std::string& output);

}  // namespace vardel
