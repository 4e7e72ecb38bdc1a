// Copyright 2026 The Veltmark authors.
//
// The syntax tree the parser builds and the interpreter walks. Every node
// owns its children (std::unique_ptr); a Program owns its statements and
// shares its procedures with the interpreter (they outlive the program
// text they were compiled from). Names are kept upper-cased in `key` for
// lookups and as written in `spelling` for messages. The parser bounds the
// depth of every tree, so walking one recursively is safe.

#ifndef RZ_VBSCRIPT_VB_AST_H_
#define RZ_VBSCRIPT_VB_AST_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/variant.h"

namespace rz::vb {

// ORDER BINARY OP: the interpreter's operator table follows this order.
enum class BinaryOp : uint8_t {
  kPow,
  kMul,
  kDiv,
  kIntDiv,
  kMod,
  kAdd,
  kSub,
  kConcat,
  kEq,
  kNe,
  kLt,
  kGt,
  kLe,
  kGe,
  kIs,
  kAnd,
  kOr,
  kXor,
  kEqv,
  kImp,
};

enum class ExprKind : uint8_t {
  kLiteral,  // value
  kNothing,  // the Nothing keyword
  kName,     // key/spelling
  kMember,   // left.key; left null: the object of the innermost With
  kCall,     // left(args): a call, an index or a default member
  kNegate,   // -left
  kNot,      // Not left
  kBinary,   // left op right
};

struct Expr {
  ExprKind kind = ExprKind::kLiteral;
  BinaryOp op = BinaryOp::kAdd;
  Variant value;
  std::string key;
  std::string spelling;
  std::unique_ptr<Expr> left;
  std::unique_ptr<Expr> right;
  std::vector<std::unique_ptr<Expr>> args;
  bool parenthesized = false;  // written in (): passed by value
  int depth = 1;               // height of this subtree
};
using ExprPtr = std::unique_ptr<Expr>;

struct Stmt;
using Block = std::vector<std::unique_ptr<Stmt>>;

enum class StmtKind : uint8_t {
  kAssign,   // target = value
  kSet,      // Set target = value
  kCall,     // target is the call (kName, kMember or kCall)
  kDim,      // dims
  kReDim,    // dims, preserve
  kConst,    // dims[i].name = consts[i]
  kIf,       // branches, else_block
  kSelect,   // value, cases
  kFor,      // name = from To to Step step: body
  kForEach,  // For Each name In value: body
  kDo,       // loop_kind with value as condition
  kExit,     // exit_kind
  kOnErrorResumeNext,
  kOnErrorGotoZero,
  kWith,   // value: body
  kErase,  // name
};

enum class LoopTest : uint8_t {
  kNone,       // Do ... Loop
  kPreWhile,   // Do While c ... Loop / While c ... Wend
  kPreUntil,   // Do Until c ... Loop
  kPostWhile,  // Do ... Loop While c
  kPostUntil,  // Do ... Loop Until c
};

enum class ExitKind : uint8_t { kFor, kDo, kSub, kFunction };

struct DimItem {
  std::string key;
  std::string spelling;
  bool is_array = false;        // declared with ()
  std::vector<ExprPtr> bounds;  // upper bounds; empty: dynamic array
};

struct IfBranch {
  ExprPtr condition;
  Block body;
};

struct CaseTest {
  enum class Kind : uint8_t { kValue, kRange, kIs } kind = Kind::kValue;
  BinaryOp op = BinaryOp::kEq;  // for kIs
  ExprPtr first;
  ExprPtr last;  // for kRange
};

struct SelectCase {
  bool is_else = false;
  std::vector<CaseTest> tests;
  Block body;
};

struct Stmt {
  StmtKind kind = StmtKind::kCall;
  int32_t line = 0;
  ExprPtr target;
  ExprPtr value;
  ExprPtr from, to, step;  // For
  std::string key;         // For/ForEach/Erase variable
  std::string spelling;
  std::vector<DimItem> dims;
  std::vector<ExprPtr> consts;
  bool preserve = false;
  std::vector<IfBranch> branches;
  Block else_block;
  std::vector<SelectCase> cases;
  Block body;
  LoopTest loop_test = LoopTest::kNone;
  ExitKind exit_kind = ExitKind::kSub;
};

// The text of the code a procedure came from, one entry per line.
using SourceLines = std::vector<std::string>;

struct Parameter {
  std::string key;
  std::string spelling;
  bool by_value = false;  // ByRef is the default
};

struct Procedure {
  std::string key;
  std::string spelling;
  bool is_function = false;
  int32_t line = 0;
  std::vector<Parameter> params;
  Block body;
  std::shared_ptr<const SourceLines> lines;
};

struct Program {
  Block statements;
  std::vector<std::shared_ptr<Procedure>> procedures;
  bool option_explicit = false;
  std::shared_ptr<const SourceLines> lines;
};

}  // namespace rz::vb

#endif  // RZ_VBSCRIPT_VB_AST_H_
