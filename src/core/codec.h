// Copyright 2026 The Veltmark authors.
//
// The Windows-1252 codec. Every file the system calls "8-bit text" (views,
// templates, scripts, input files) is Windows-1252 on disk and UTF-8 inside;
// these two functions convert between the two.
//
// Decoding is total: the five bytes that have no character in the code page
// (0x81, 0x8D, 0x8F, 0x90, 0x9D) decode to the control characters U+0081,
// U+008D, U+008F, U+0090 and U+009D, and encoding turns those back into the
// same bytes. So any byte string survives decode -> encode byte for byte, and
// files made elsewhere are written back unchanged.
//
// Encoding is lossy for text that came from elsewhere: a character without a
// Windows-1252 form (including the other C1 controls U+0080..U+009F, whose
// bytes stand for other characters) and every invalid UTF-8 byte become "?".
// Neither function throws (beyond std::bad_alloc).

#ifndef RZ_CORE_CODEC_H_
#define RZ_CORE_CODEC_H_

#include <string>
#include <string_view>

namespace rz {

// Windows-1252 bytes -> UTF-8 text.
std::string DecodeWindows1252(std::string_view bytes);

// UTF-8 text -> Windows-1252 bytes; unrepresentable characters become "?".
std::string EncodeWindows1252(std::string_view utf8);

}  // namespace rz

#endif  // RZ_CORE_CODEC_H_
