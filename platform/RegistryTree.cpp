#include "platform/RegistryTree.h"

#include <algorithm>

namespace vardel {

namespace {

std::string Folded(std::string_view text) {
    std::string folded(text);
    for (char& c : folded)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return folded;
}

}  // namespace

const RegistryValue* RegistryKey::Find(std::string_view name) const {
    const auto found = values_.find(Folded(name));
    return found == values_.end() ? nullptr : &found->second;
}

void RegistryKey::Set(std::string_view name, ValueType type, std::string data) {
    auto [at, isNew] = values_.try_emplace(Folded(name));
    if (isNew) {
        at->second.name = name;
        at->second.serial = serial_++;
    }
    at->second.type = type;
    at->second.data = std::move(data);
}

bool RegistryKey::Erase(std::string_view name) {
    return values_.erase(Folded(name)) != 0;
}

std::vector<const RegistryValue*> RegistryKey::Values() const {
    std::vector<const RegistryValue*> values;
    for (const auto& [name, value] : values_) values.push_back(&value);
    std::sort(values.begin(), values.end(),
              [](const RegistryValue* a, const RegistryValue* b) { return a->serial < b->serial; });
    return values;
}

RegistryTree::KeyPointer RegistryTree::Find(std::string_view path) {
    const auto found = keys_.find(Folded(path));
    if (found != keys_.end()) return found->second;
    return HasSubkeys(path) ? Make(path) : nullptr;
}

RegistryTree::KeyPointer RegistryTree::Make(std::string_view path) {
    KeyPointer& key = keys_[Folded(path)];
    if (!key) key = std::make_shared<RegistryKey>(std::string(path));
    return key;
}

bool RegistryTree::Erase(std::string_view path) {
    const std::string folded = Folded(path);
    const std::string below = folded + "\\";
    bool erased = false;
    const auto drop = [&](auto at) {
        at->second->deleted = true;
        erased = true;
        return keys_.erase(at);
    };
    if (const auto found = keys_.find(folded); found != keys_.end()) drop(found);
    for (auto at = keys_.lower_bound(below); at != keys_.end() && at->first.starts_with(below);)
        at = drop(at);
    return erased;
}

bool RegistryTree::HasSubkeys(std::string_view path) const {
    const std::string below = Folded(path) + "\\";
    const auto at = keys_.lower_bound(below);
    return at != keys_.end() && at->first.starts_with(below);
}

bool RegistryTree::IsValidPath(std::string_view path) {
    return !path.empty() && path.front() != '\\' && path.back() != '\\' &&
           path.find("\\\\") == std::string_view::npos;
}

}  // namespace vardel
