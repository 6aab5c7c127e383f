// TcMD5: the MD5 digest (RFC 1321) of a text, as a text. It names things (a plugin's identity); it protects
// nothing.
//
// A local object of one thread.
#pragma once

namespace vardel {

class TcMD5 {
  public:
    TcMD5() { setPlainText(""); }
    virtual ~TcMD5() = default;

    void setPlainText(const char* text);

    // 32 lower-case hexadecimal digits, terminated; valid until the next setPlainText. The form is a key in
    // the settings: it never changes. Without a text given, the digest of the empty one.
    const char* getMD5Digest() const { return digest_; }

  private:
    char digest_[33];
};

}  // namespace vardel
