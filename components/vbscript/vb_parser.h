// Copyright 2026 The Veltmark authors.
//
// The VBScript parser: builds a Program (top-level statements, procedures,
// Option Explicit) from source text. Each grammar rule is one member
// function of the parser in vb_parser.cc, headed by its rule.
//
// Throws VbCompileError with VBScript's compile error number and the
// 1-based line where the problem was found. Nesting deeper than
// kMaxNesting (blocks, parentheses, operators) is a compile error too, so a
// hostile text cannot exhaust the stack, here or when the tree is run.

#ifndef RZ_VBSCRIPT_VB_PARSER_H_
#define RZ_VBSCRIPT_VB_PARSER_H_

#include <string_view>

#include "vbscript/vb_ast.h"

namespace rz::vb {

// How deeply statements and expressions may nest.
inline constexpr int kMaxNesting = 200;

Program Parse(std::string_view source);

}  // namespace rz::vb

#endif  // RZ_VBSCRIPT_VB_PARSER_H_
