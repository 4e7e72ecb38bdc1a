// Copyright 2026 The Veltmark authors.
//
// The VBScript lexer: turns source text into tokens. Comments (' and Rem)
// are dropped, " _" at the end of a line joins it with the next, ":" and
// line ends separate statements. Identifiers keep their spelling and carry
// an upper-cased key (VBScript names ignore case). Literals carry their
// value: numbers as Integer, Long or Double, strings, #dates#.
//
// Throws VbCompileError (1030, 1031, 1032, 1033, 1002) with the 1-based line
// for text that cannot be a token. Any byte sequence is safe input.

#ifndef RZ_VBSCRIPT_VB_LEXER_H_
#define RZ_VBSCRIPT_VB_LEXER_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"

namespace rz::vb {

enum class TokenKind : uint8_t {
  kEnd,         // end of the text
  kNewLine,     // a line end
  kColon,       // ":" statement separator
  kIdentifier,  // a name or keyword; `key` is upper-cased
  kLiteral,     // a number, string or date; `value` holds it
  kOperator,    // punctuation and operator symbols; `key` holds it
};

struct Token {
  TokenKind kind = TokenKind::kEnd;
  std::string key;       // upper-cased identifier or operator symbol
  std::string spelling;  // identifier as written
  Variant value;         // literal value
  int32_t line = 1;
  bool space_before = false;  // blank before the token (for ".x" in With)
};

// The longest identifier accepted.
inline constexpr size_t kMaxIdentifierLength = 255;

std::vector<Token> Tokenize(std::string_view source);

// Reads a date literal's text (no '#'): yyyy-mm-dd [hh:mm[:ss]],
// m/d/yyyy [h:mm[:ss] [AM|PM]] or a time alone. False when it is not one.
bool ParseDateText(std::string_view text, double* serial);

}  // namespace rz::vb

#endif  // RZ_VBSCRIPT_VB_LEXER_H_
