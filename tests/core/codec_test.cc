// Copyright 2026 The Veltmark authors.

#include "core/codec.h"

#include <gtest/gtest.h>

#include <string>

#include "core/text.h"

namespace rz {
namespace {

TEST(CodecTest, EveryByteSurvivesDecodeThenEncode) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) {
    const std::string one(1, static_cast<char>(byte));
    EXPECT_EQ(EncodeWindows1252(DecodeWindows1252(one)), one) << byte;
    all.push_back(static_cast<char>(byte));
  }
  EXPECT_EQ(EncodeWindows1252(DecodeWindows1252(all)), all);
}

TEST(CodecTest, DecodedTextIsValidUtf8) {
  for (int byte = 0x80; byte < 256; ++byte) {
    const std::string text = DecodeWindows1252(std::string(1, byte));
    size_t pos = 0;
    const uint32_t ch = utf8::NextChar(text, &pos);
    EXPECT_FALSE(utf8::IsInvalidByte(ch)) << byte;
    EXPECT_EQ(pos, text.size()) << byte << " decodes to one character";
  }
}

TEST(CodecTest, DecodesTheCodePage) {
  struct Row {
    unsigned char byte;
    const char* utf8;
  } rows[] = {
      {'A', "A"},       {0x80, "€"},      {0x8A, "Š"},      {0x8C, "Œ"},
      {0x91, "‘"},      {0x93, "“"},      {0x96, "–"},      {0x99, "™"},
      {0x9F, "Ÿ"},      {0xA0, "\u00A0"}, {0xE9, "é"},      {0xFF, "ÿ"},
      {0x81, "\u0081"}, {0x8D, "\u008D"}, {0x8F, "\u008F"}, {0x90, "\u0090"},
      {0x9D, "\u009D"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(DecodeWindows1252(std::string(1, row.byte)), row.utf8)
        << static_cast<int>(row.byte);
  }
  EXPECT_EQ(DecodeWindows1252("Caf\xE9 \x80 5"), "Café € 5");
}

TEST(CodecTest, EncodesUnrepresentableCharactersAsQuestionMarks) {
  struct Row {
    const char* utf8;
    const char* bytes;
  } rows[] = {
      {"Café €5",
       "Caf\xE9 \x80"
       "5"},
      {"中文", "??"},
      {"a😀b", "a?b"},
      {"\u0080\u0085\u009F", "???"},  // C1 controls whose bytes are letters.
      {"\u0081", "\x81"},
      {"a\xE9z", "a?z"},  // An invalid UTF-8 byte.
      {"\xC3", "?"},      // A truncated sequence.
      {"ŸŽž", "\x9F\x8E\x9E"},
      {"", ""},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(EncodeWindows1252(row.utf8), row.bytes) << row.utf8;
  }
}

}  // namespace
}  // namespace rz
