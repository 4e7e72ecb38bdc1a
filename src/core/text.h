// Copyright 2026 The Veltmark authors.
//
// Text helpers of the runtime. All text inside the system is UTF-8 held in
// std::string; these functions take std::string_view and return new strings.
//
// Characters: the helpers work on code points. A byte that does not start a
// valid UTF-8 sequence (a stray continuation byte, a truncated or overlong
// sequence, an encoded surrogate, a value above U+10FFFF) counts as one
// character of its own and is copied through unchanged, so no helper ever
// loses or invents bytes.
//
// Case: upper- and lower-casing cover ASCII, the Latin-1 letters (à..þ except
// ÷ <-> À..Þ except ×, ÿ -> Ÿ U+0178) and the Windows-1252 letters š/Š, œ/Œ,
// ž/Ž. ß and every other character are left as they are. The
// case-insensitive helpers compare the upper-case forms ("folded" below), so
// CompareIgnoreCase orders by upper-cased code points: "a" sorts before "_"
// (U+0041 < U+005F) and "ÿ" (folded to U+0178) after every Latin-1 letter.
//
// Numbers: LeadingNumber is the lenient "leading number" reading of a text,
// IsNumericText tests whether a whole text is one number, and
// ShortestNumberText is the text form of a double. Blanks in the number
// readers are spaces and tabs.
//
// Errors: only LeadingNumber throws: Error::Overflow (naming the text) when
// the number it reads is too large for a double, such as "1e999", as the
// automation Val does. Everything else never throws (beyond std::bad_alloc).

#ifndef RZ_CORE_TEXT_H_
#define RZ_CORE_TEXT_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rz {

// Removes spaces (U+0020 only, not tabs or line breaks) at both ends, at the
// start, or at the end.
std::string Trim(std::string_view text);
std::string LTrim(std::string_view text);
std::string RTrim(std::string_view text);
// Trim without copying: the part of `text` between its leading and
// trailing spaces.
std::string_view TrimSpaces(std::string_view text);

// Upper-/lower-cases the letters listed in the file comment.
std::string UpperCase(std::string_view text);
std::string LowerCase(std::string_view text);

// Case-insensitive comparisons on folded code points. FindIgnoreCase returns
// the byte offset in `haystack` of the first match, or std::string_view::npos;
// an empty needle is found at 0. CompareIgnoreCase returns -1, 0 or 1; a text
// that is a prefix of the other sorts first.
bool EqualsIgnoreCase(std::string_view a, std::string_view b);
size_t FindIgnoreCase(std::string_view haystack, std::string_view needle);
bool ContainsIgnoreCase(std::string_view haystack, std::string_view needle);
bool StartsWithIgnoreCase(std::string_view text, std::string_view prefix);
int CompareIgnoreCase(std::string_view a, std::string_view b);

// The leading number of a text. Skips leading blanks, then reads an optional
// sign, digits, an optional "." with digits and an optional exponent (e, E,
// d or D, an optional sign and at least one digit; without a digit the
// exponent letter ends the number) and stops at the first other character.
// A text without a number gives 0; the result is never -0.
//   "12.5abc" -> 12.5, "-.5" -> -0.5, "1e3x" -> 1000, "1ex" -> 1,
//   "12,5x" -> 12, "abc" -> 0, "- 5" -> 0.
// "&H" and "&O" (any case) after the blanks read hexadecimal and octal digits
// up to the first other one. As with the automation Val, a value up to
// 0xFFFF is taken as a 16-bit two's-complement number and a value up to
// 0xFFFFFFFF as a 32-bit one: "&H1F" -> 31, "&HFFFF" -> -1,
// "&H10000" -> 65536, "&HFFFFFFFF" -> -1. No sign is read before "&".
// Throws Error::Overflow for a decimal number beyond the double range
// ("1e999"; "1e-999" reads as 0) and for hex/octal values above 0xFFFFFFFF.
double LeadingNumber(std::string_view text);

// True when the whole text, after removing blanks at both ends, is one
// decimal number in the form LeadingNumber reads (no hex or octal) and
// within the double range. Empty or blank text is not numeric.
//   " 3.25 " -> true, "1e5" -> true, "12,5x" -> false, "." -> false.
bool IsNumericText(std::string_view text);

// The text of a double: the shortest decimal text that reads back as the
// same double. Plain decimal for 1e-5 <= |value| < 1e15 ("0.1", "-3",
// "100000000000000"), otherwise exponent form with a capital E, a sign and
// at least two exponent digits ("1E+15", "1.5E-07", "-2.5E+20"). Zero (and
// -0) gives "0". REQUIRES: value is finite (NaN and infinities never reach
// this; they would be written "nan"/"inf").
std::string ShortestNumberText(double value);

// Splits at every `separator`. An empty text gives an empty list (as the
// automation Split does); otherwise n separators give n + 1 items, empty ones
// included ("a,,b," -> "a", "", "b", "").
std::vector<std::string> Split(std::string_view text, char separator);

// Replaces every occurrence of `from`, scanning left to right without
// overlaps. An empty `from` leaves the text unchanged.
std::string Replace(std::string_view text, std::string_view from,
                    std::string_view to);

// Code-point level helpers used by the case functions, the pattern matcher
// and the Windows-1252 codec.
namespace utf8 {

// Invalid bytes are reported as kInvalidByteBase + byte, a value above every
// code point, so they never equal a real character.
inline constexpr uint32_t kInvalidByteBase = 0x110000;

// Decodes the character at byte offset *pos and advances *pos past it.
// REQUIRES: *pos < text.size().
uint32_t NextChar(std::string_view text, size_t* pos);

// Appends the UTF-8 form of `ch`; an invalid-byte value appends the byte.
void AppendChar(uint32_t ch, std::string* out);

// True for an invalid-byte value returned by NextChar.
inline bool IsInvalidByte(uint32_t ch) { return ch >= kInvalidByteBase; }

// The number of characters of `text` (an invalid byte counts as one).
size_t CharacterCount(std::string_view text);

// Case mapping of one character (see the file comment).
uint32_t UpperChar(uint32_t ch);
uint32_t LowerChar(uint32_t ch);

}  // namespace utf8
}  // namespace rz

#endif  // RZ_CORE_TEXT_H_
