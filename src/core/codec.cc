// Copyright 2026 The Veltmark authors.

#include "core/codec.h"

#include <cstdint>

#include "core/text.h"

namespace rz {
namespace {

// Characters of the bytes 0x80..0x9F. The five bytes without a character
// map to the C1 control of the same value so they round-trip.
constexpr uint16_t kHighControls[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

// The byte of a character, or '?' when the code page has none.
char EncodeChar(uint32_t ch) {
  if (ch < 0x80 || (ch >= 0xA0 && ch <= 0xFF)) return static_cast<char>(ch);
  for (int i = 0; i < 32; ++i) {
    if (kHighControls[i] == ch) return static_cast<char>(0x80 + i);
  }
  return '?';
}

}  // namespace

std::string DecodeWindows1252(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size());
  for (char c : bytes) {
    const unsigned char byte = c;
    if (byte < 0x80) {
      out.push_back(c);
    } else if (byte < 0xA0) {
      utf8::AppendChar(kHighControls[byte - 0x80], &out);
    } else {
      utf8::AppendChar(byte, &out);
    }
  }
  return out;
}

std::string EncodeWindows1252(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  size_t pos = 0;
  while (pos < utf8.size()) {
    const unsigned char byte = utf8[pos];
    if (byte < 0x80) {
      out.push_back(static_cast<char>(byte));
      ++pos;
    } else {
      out.push_back(EncodeChar(utf8::NextChar(utf8, &pos)));
    }
  }
  return out;
}

}  // namespace rz
