// Copyright 2026 The Veltmark authors.
//
// Text built-ins. Positions and lengths count characters (code points of
// the UTF-8 text), 1-based as in VBScript.

#include <string>

#include "core/codec.h"
#include "core/error.h"
#include "core/text.h"
#include "vbscript/vb_builtins.h"
#include "vbscript/vb_errors.h"
#include "vbscript/vb_operators.h"

namespace rz::vb {
namespace {

// The byte offset of character `index` (0-based), or the size past the end.
size_t ByteOffset(std::string_view text, int64_t index) {
  size_t pos = 0;
  for (int64_t i = 0; i < index && pos < text.size(); ++i) {
    utf8::NextChar(text, &pos);
  }
  return pos;
}

int32_t CharIndex(std::string_view text, size_t byte_offset) {
  return static_cast<int32_t>(
      utf8::CharacterCount(text.substr(0, byte_offset)));
}

int32_t NonNegative(const Variant& value, const char* what) {
  const int32_t number = value.ToLong();
  if (number < 0) throw Error::InvalidArgument(what);
  return number;
}

bool TextCompare(const DispatchArgs& args, size_t index) {
  return ArgOr(args, index, Variant(int16_t{0})).ToLong() == 1;
}

Variant LenFn(BuiltinContext&, DispatchArgs& args) {
  if (args[0].IsNull()) return Variant::Null();
  return Variant(
      static_cast<int32_t>(utf8::CharacterCount(args[0].ToString())));
}

Variant LeftFn(BuiltinContext&, DispatchArgs& args) {
  if (args[0].IsNull()) return Variant::Null();
  const std::string text = args[0].ToString();
  const int32_t count = NonNegative(args[1], "Left");
  return Variant(text.substr(0, ByteOffset(text, count)));
}

Variant RightFn(BuiltinContext&, DispatchArgs& args) {
  if (args[0].IsNull()) return Variant::Null();
  const std::string text = args[0].ToString();
  const int64_t count = NonNegative(args[1], "Right");
  const int64_t length = static_cast<int64_t>(utf8::CharacterCount(text));
  if (count >= length) return Variant(text);
  return Variant(text.substr(ByteOffset(text, length - count)));
}

Variant MidFn(BuiltinContext&, DispatchArgs& args) {
  if (args[0].IsNull()) return Variant::Null();
  const std::string text = args[0].ToString();
  const int32_t start = args[1].ToLong();
  if (start < 1) throw Error::InvalidArgument("Mid");
  const size_t begin = ByteOffset(text, start - 1);
  if (args.size() < 3) return Variant(text.substr(begin));
  const int32_t count = NonNegative(args[2], "Mid");
  const std::string_view rest = std::string_view(text).substr(begin);
  return Variant(std::string(rest.substr(0, ByteOffset(rest, count))));
}

// A text searched repeatedly for one needle, without regard to case when
// `text_compare`. Both are folded once, not at every search: folding at
// every search made Replace and Split quadratic in the text's length.
// Folding keeps byte offsets (it maps letters to letters of the same
// encoded length), so offsets found apply to the original text.
class Searcher {
 public:
  Searcher(std::string_view haystack, std::string_view needle,
           bool text_compare)
      : haystack_(haystack), needle_(needle) {
    if (!text_compare) return;
    folded_haystack_ = UpperCase(haystack);
    folded_needle_ = UpperCase(needle);
    haystack_ = folded_haystack_;
    needle_ = folded_needle_;
  }
  Searcher(const Searcher&) = delete;
  Searcher& operator=(const Searcher&) = delete;

  // The byte offset of the needle at or after `from`; npos when absent.
  size_t Find(size_t from) const { return haystack_.find(needle_, from); }

 private:
  std::string folded_haystack_;
  std::string folded_needle_;
  std::string_view haystack_;  // the text searched: original or folded
  std::string_view needle_;
};

Variant InStrFn(BuiltinContext&, DispatchArgs& args) {
  const bool has_start = args.size() >= 3;
  const size_t first = has_start ? 1 : 0;
  if (AnyNull(args, first + 2)) return Variant::Null();
  const int32_t start = has_start ? args[0].ToLong() : 1;
  if (start < 1) throw Error::InvalidArgument("InStr");
  const std::string haystack = args[first].ToString();
  const std::string needle = args[first + 1].ToString();
  const size_t from = ByteOffset(haystack, start - 1);
  if (from >= haystack.size() && !(needle.empty() && from == haystack.size())) {
    return Variant(int32_t{0});
  }
  const size_t found =
      Searcher(haystack, needle, TextCompare(args, 3)).Find(from);
  if (found == std::string::npos) return Variant(int32_t{0});
  return Variant(CharIndex(haystack, found) + 1);
}

Variant InStrRevFn(BuiltinContext&, DispatchArgs& args) {
  if (AnyNull(args, 2)) return Variant::Null();
  std::string haystack = args[0].ToString();
  std::string needle = args[1].ToString();
  const int32_t start = ArgOr(args, 2, Variant(int32_t{-1})).ToLong();
  if (start == 0 || start < -1) throw Error::InvalidArgument("InStrRev");
  if (TextCompare(args, 3)) {
    haystack = UpperCase(haystack);
    needle = UpperCase(needle);
  }
  const int32_t length = static_cast<int32_t>(utf8::CharacterCount(haystack));
  if (start > length) return Variant(int32_t{0});
  const size_t end =
      start == -1 ? haystack.size() : ByteOffset(haystack, start);
  const size_t found = haystack.substr(0, end).rfind(needle);
  if (found == std::string::npos) return Variant(int32_t{0});
  return Variant(CharIndex(haystack, found) + 1);
}

Variant ReplaceFn(BuiltinContext&, DispatchArgs& args) {
  if (AnyNull(args, 3)) return Variant::Null();
  const std::string text = args[0].ToString();
  const std::string from = args[1].ToString();
  const std::string to = args[2].ToString();
  const int32_t start = ArgOr(args, 3, Variant(int32_t{1})).ToLong();
  int32_t count = ArgOr(args, 4, Variant(int32_t{-1})).ToLong();
  if (start < 1 || count < -1) throw Error::InvalidArgument("Replace");
  const std::string rest = text.substr(ByteOffset(text, start - 1));
  if (from.empty()) return Variant(rest);
  const Searcher searcher(rest, from, TextCompare(args, 5));
  std::string result;
  size_t pos = 0;
  while (count != 0) {
    const size_t found = searcher.Find(pos);
    if (found == std::string::npos) break;
    result.append(rest, pos, found - pos).append(to);
    if (result.size() > kMaxTextLength) throw OutOfStringSpace();
    pos = found + from.size();
    if (count > 0) --count;
  }
  result.append(rest, pos);
  return Variant(std::move(result));
}

template <std::string (*Fn)(std::string_view)>
Variant TextMap(BuiltinContext&, DispatchArgs& args) {
  if (args[0].IsNull()) return Variant::Null();
  return Variant(Fn(args[0].ToString()));
}

std::string Repeated(int32_t count, std::string_view unit) {
  if (static_cast<size_t>(count) * unit.size() > kMaxTextLength) {
    throw OutOfStringSpace();
  }
  std::string text;
  text.reserve(static_cast<size_t>(count) * unit.size());
  for (int32_t i = 0; i < count; ++i) text.append(unit);
  return text;
}

Variant SpaceFn(BuiltinContext&, DispatchArgs& args) {
  return Variant(Repeated(NonNegative(args[0], "Space"), " "));
}

std::string ChrText(int32_t code) {
  if (code < 0 || code > 0xFFFF || (code >= 0xD800 && code <= 0xDFFF)) {
    throw Error::InvalidArgument("Chr");
  }
  if (code < 256)
    return DecodeWindows1252(std::string(1, static_cast<char>(code)));
  std::string text;
  utf8::AppendChar(static_cast<uint32_t>(code), &text);
  return text;
}

Variant StringFn(BuiltinContext&, DispatchArgs& args) {
  if (args[1].IsNull()) return Variant::Null();
  const int32_t count = NonNegative(args[0], "String");
  std::string unit;
  if (args[1].IsString()) {
    const std::string text = args[1].ToString();
    if (text.empty()) throw Error::InvalidArgument("String");
    unit = text.substr(0, ByteOffset(text, 1));
  } else {
    unit = ChrText(args[1].ToLong() & 0xFF);
  }
  return Variant(Repeated(count, unit));
}

Variant StrCompFn(BuiltinContext&, DispatchArgs& args) {
  if (AnyNull(args, 2)) return Variant::Null();
  const std::string a = args[0].ToString();
  const std::string b = args[1].ToString();
  const int result = TextCompare(args, 2) ? CompareIgnoreCase(a, b)
                                          : (a < b ? -1 : (a == b ? 0 : 1));
  return Variant(static_cast<int16_t>(result));
}

Variant SplitFn(BuiltinContext&, DispatchArgs& args) {
  if (args[0].IsNull()) return Variant::Null();
  const std::string text = args[0].ToString();
  const std::string delimiter = ArgOr(args, 1, Variant(" ")).ToString();
  int32_t limit = ArgOr(args, 2, Variant(int32_t{-1})).ToLong();
  if (limit < -1) throw Error::InvalidArgument("Split");
  VariantArray items;
  if (text.empty() || limit == 0) return Variant(std::move(items));
  if (delimiter.empty()) return Variant(VariantArray{Variant(text)});
  const Searcher searcher(text, delimiter, TextCompare(args, 3));
  size_t pos = 0;
  while (limit == -1 || static_cast<int32_t>(items.size()) < limit - 1) {
    const size_t found = searcher.Find(pos);
    if (found == std::string::npos) break;
    items.emplace_back(text.substr(pos, found - pos));
    if (static_cast<int64_t>(items.size()) >= kMaxArrayElements) {
      throw OutOfMemory();
    }
    pos = found + delimiter.size();
  }
  items.emplace_back(text.substr(pos));
  return Variant(std::move(items));
}

Variant JoinFn(BuiltinContext&, DispatchArgs& args) {
  const VariantArray& items = args[0].ToArray();
  const std::string delimiter = ArgOr(args, 1, Variant(" ")).ToString();
  std::string text;
  for (size_t i = 0; i < items.size(); ++i) {
    if (i > 0) text += delimiter;
    if (!items[i].IsNull()) text += items[i].ToString();
    if (text.size() > kMaxTextLength) throw OutOfStringSpace();
  }
  return Variant(std::move(text));
}

Variant AscFn(BuiltinContext&, DispatchArgs& args) {
  if (args[0].IsNull()) throw Error::InvalidUseOfNull();
  const std::string text = args[0].ToString();
  if (text.empty()) throw Error::InvalidArgument("Asc");
  size_t pos = 0;
  const uint32_t code = utf8::NextChar(text, &pos);
  if (utf8::IsInvalidByte(code)) {
    return Variant(static_cast<int32_t>(code - utf8::kInvalidByteBase));
  }
  if (code >= 128) {
    const std::string ansi = EncodeWindows1252(text.substr(0, pos));
    if (ansi.size() == 1 && ansi != "?") {
      return Variant(static_cast<int32_t>(static_cast<unsigned char>(ansi[0])));
    }
  }
  return Variant(static_cast<int32_t>(code));
}

Variant ChrFn(BuiltinContext&, DispatchArgs& args) {
  return Variant(ChrText(args[0].ToLong()));
}

Variant StrReverseFn(BuiltinContext&, DispatchArgs& args) {
  const std::string text = args[0].ToString();
  // Each character's bytes go, in their order, to the mirrored place.
  std::string reversed(text.size(), '\0');
  for (size_t pos = 0; pos < text.size();) {
    const size_t start = pos;
    utf8::NextChar(text, &pos);
    text.copy(reversed.data() + (text.size() - pos), pos - start, start);
  }
  return Variant(std::move(reversed));
}

}  // namespace

void AddTextBuiltins(std::vector<Builtin>* table) {
  table->insert(table->end(), {
                                  {"LEN", 1, 1, LenFn},
                                  {"LEFT", 2, 2, LeftFn},
                                  {"RIGHT", 2, 2, RightFn},
                                  {"MID", 2, 3, MidFn},
                                  {"INSTR", 2, 4, InStrFn},
                                  {"INSTRREV", 2, 4, InStrRevFn},
                                  {"REPLACE", 3, 6, ReplaceFn},
                                  {"TRIM", 1, 1, TextMap<Trim>},
                                  {"LTRIM", 1, 1, TextMap<LTrim>},
                                  {"RTRIM", 1, 1, TextMap<RTrim>},
                                  {"UCASE", 1, 1, TextMap<UpperCase>},
                                  {"LCASE", 1, 1, TextMap<LowerCase>},
                                  {"SPACE", 1, 1, SpaceFn},
                                  {"STRING", 2, 2, StringFn},
                                  {"STRCOMP", 2, 3, StrCompFn},
                                  {"SPLIT", 1, 4, SplitFn},
                                  {"JOIN", 1, 2, JoinFn},
                                  {"ASC", 1, 1, AscFn},
                                  {"ASCW", 1, 1, AscFn},
                                  {"CHR", 1, 1, ChrFn},
                                  {"CHRW", 1, 1, ChrFn},
                                  {"STRREVERSE", 1, 1, StrReverseFn},
                              });
}

}  // namespace rz::vb
