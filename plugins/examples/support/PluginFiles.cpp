#include "plugins/examples/support/PluginFiles.h"

#include <charconv>
#include <fstream>

namespace vardel::examples {

namespace {

std::string Trimmed(const std::string& text) {
    const char* const blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace

std::string BesideModule(const PluginInfo& info, const char* ending) {
    const std::string path = ModulePath(info.module);
    const std::size_t dot = path.rfind('.');
    if (dot == std::string::npos || path.find_first_of("/\\", dot) != std::string::npos) return {};
    return path.substr(0, dot) + ending;
}

IniFile::IniFile(const std::string& path) : path_(path) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        line = Trimmed(line);
        const std::size_t equals = line.find('=');
        if (line.empty() || line[0] == '#' || line[0] == ';' || equals == std::string::npos) continue;
        values_[Trimmed(line.substr(0, equals))] = Trimmed(line.substr(equals + 1));
    }
}

std::string IniFile::Text(const std::string& name, const std::string& otherwise) const {
    const auto found = values_.find(name);
    return found == values_.end() ? otherwise : found->second;
}

long IniFile::Number(const std::string& name, long least, long most, long otherwise) const {
    const std::string text = Text(name, "");
    const char* const end = text.data() + text.size();
    long number = 0;
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end && number >= least && number <= most ? number : otherwise;
}

bool IniFile::Save() const {
    std::ofstream file(path_, std::ios::trunc);
    for (const auto& [name, value] : values_) file << name << '=' << value << '\n';
    file.close();
    return !file.fail();
}

}  // namespace vardel::examples
