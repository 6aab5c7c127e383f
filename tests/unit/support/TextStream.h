// A stream whose content can be read back.
#pragma once

#include <cstdio>
#include <string>

namespace vardel::test {

class TextStream {
  public:
    TextStream() : file_(std::tmpfile()) {}
    ~TextStream() {
        if (file_) std::fclose(file_);
    }
    TextStream(const TextStream&) = delete;
    TextStream& operator=(const TextStream&) = delete;
    std::FILE* File() const { return file_; }
    // Line ends as "\n" on every system.
    std::string Content() {
        std::string text;
        std::rewind(file_);
        for (int character; (character = std::fgetc(file_)) != EOF;)
            if (character != '\r') text += static_cast<char>(character);
        return text;
    }

  private:
    std::FILE* file_;
};

}  // namespace vardel::test
