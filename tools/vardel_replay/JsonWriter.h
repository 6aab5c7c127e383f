// JsonWriter: builds one JSON document in memory, member by member.
//
// Texts are taken as bytes of the system code page: a byte of 0x80 and up becomes \u00XX, so the document is
// plain ASCII and every byte can be told from it.
#pragma once

#include <string>
#include <string_view>

#include "platform/Types.h"

namespace vardel::replay {

class JsonWriter {
  public:
    // Inside an object every value is preceded by its name.
    void Name(std::string_view name);

    void BeginObject() { Open('{'); }
    void EndObject() { Close('}'); }
    void BeginArray() { Open('['); }
    void EndArray() { Close(']'); }

    // The next element starts a new line.
    void BreakLine() { breakLine_ = true; }

    void Text(std::string_view text);
    void Number(i64 number);
    void Seconds(double seconds);  // with nine decimals

    const std::string& Document() const { return document_; }

  private:
    void Separate();
    void Quote(std::string_view text);
    void Open(char bracket);
    void Close(char bracket);

    std::string document_;
    bool first_ = true;  // nothing stands before the next element, or only its name
    bool breakLine_ = false;
};

}  // namespace vardel::replay
