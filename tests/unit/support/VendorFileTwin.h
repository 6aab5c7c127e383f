// The vendor list's parser written down character by character, as slowly and plainly as the rules read: the
// oracle for the fast one. Text mode first, then the parse.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "foundation/TcString.h"

namespace vardel::test {

using VendorTexts = std::map<std::string, std::string>;  // by key

class VendorFileTwin {
  public:
    // `stopBefore`: the number of characters after which the stop byte counts as set; -1 never.
    static VendorTexts Parse(std::string_view file, long stopBefore = -1) {
        VendorFileTwin twin;
        const std::string buffer = TextMode(file) + '\0';
        for (std::size_t cursor = 0;; ++cursor) {
            if (buffer[cursor] == 0 || static_cast<long>(cursor) == stopBefore) return twin.stored_;
            twin.Take(buffer, cursor);
        }
    }

    static std::string Normalised(std::string key) {
        if (key.size() >= 2 && key[1] == ':') key = "0" + key;
        if (key.size() >= 5 && key[4] == ':') key.insert(4, "0");
        if (key.size() == 7) key.insert(6, "0");
        return key;
    }

  private:
    // The C runtime of Windows takes the CR out of each CR LF; any other CR stays.
    static std::string TextMode(std::string_view file) {
        std::string text;
        for (std::size_t i = 0; i < file.size(); ++i)
            if (!(file[i] == '\r' && i + 1 < file.size() && file[i + 1] == '\n')) text += file[i];
        return text;
    }

    void Take(const std::string& buffer, std::size_t cursor) {
        if (buffer[cursor] == '\t') {
            if (!keySeen_) {
                keySeen_ = true;
                key_ = Normalised(buffer.substr(fieldStart_, cursor - fieldStart_));
                fieldStart_ = cursor + 1;
            } else if (!vendorCaptured_) {
                text_ = buffer.substr(fieldStart_, cursor - fieldStart_).substr(0, 254);
                vendorCaptured_ = true;
            }
        } else if (buffer[cursor] == '\n') {
            keySeen_ = false;
            if (!vendorCaptured_) text_ = buffer.substr(fieldStart_, cursor - fieldStart_).substr(0, 254);
            vendorCaptured_ = false;
            TcString vendor(text_.c_str());
            vendor.Trim();
            stored_.insert({key_, vendor.GetContent()});
            fieldStart_ = cursor + 1;
        }
    }

    VendorTexts stored_;
    std::string key_, text_;
    std::size_t fieldStart_ = 0;
    bool keySeen_ = false;
    bool vendorCaptured_ = false;
};

}  // namespace vardel::test
