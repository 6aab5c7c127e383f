// TcBlowfish: turns a password into a text that can be stored, and back, with a key of the program's own.
//
// A local object; the key is fixed, so that each build reads what another one stored. It keeps a password
// from being read over someone's shoulder, not from somebody who has the program and the settings.
//
// The stored text of n characters, 1 to kLongestText, is base64 (RFC 4648, section 4, without padding) of:
//   8 bytes      check block: CBC-MAC of the length and the padded text, under a key of its own
//   8 * k bytes  the text, padded with zeros to whole blocks, in CBC mode; the check block is its initial
//   vector
// So it holds no zero byte, and each bit of it depends on the whole text. It is EncodedLength(n) long: 22 to
// 86 characters for 1 to 50, never more than 96. An empty text is stored as an empty text.
#pragma once

namespace vardel {

class TcBlowfish {
  public:
    static constexpr int kLongestText = 64;

    // Characters of the stored form of a text of `length`, without terminator.
    static constexpr int EncodedLength(int length) {
        if (length == 0) return 0;
        const int sealedBytes = 8 + (length + 7) / 8 * 8;
        return (sealedBytes * 8 + 5) / 6;
    }

    virtual ~TcBlowfish() = default;

    // Both work in place and put a terminator behind the result. Encode takes `length` characters (a zero
    // byte ends the text before), and the buffer must have room for EncodedLength(length) + 1 bytes: 100
    // serve any text of up to 64. Decode takes the stored text's own length; its result is shorter. False,
    // and an empty text, for a text that is too long and for one that Encode never made: a password must not
    // be stored as it is, nor a stored form taken for a password.
    bool Encode(unsigned char* buffer, int length);
    bool Decode(unsigned char* buffer, int length);
};

}  // namespace vardel
