// Copyright 2026 The Veltmark authors.
//
// The parser's class, shared by vb_parser.cc (program, procedures and
// statements) and vb_parser_expressions.cc (expressions). Not part of the
// component's API: use Parse() in vb_parser.h. Each grammar rule is one
// member function, headed by its rule where it is defined. Every failure
// throws VbCompileError with the line of the token where it was found.

#ifndef RZ_VBSCRIPT_VB_PARSER_INTERNAL_H_
#define RZ_VBSCRIPT_VB_PARSER_INTERNAL_H_

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vbscript/vb_ast.h"
#include "vbscript/vb_errors.h"
#include "vbscript/vb_lexer.h"
#include "vbscript/vb_parser.h"

namespace rz::vb {

// True for the words that cannot name a variable or procedure.
bool IsReserved(const std::string& key);

class Parser {
 public:
  explicit Parser(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

  // program -> { OPTION EXPLICIT | procedure | statement } END
  Program ParseProgram();

 private:
  class DepthGuard {
   public:
    explicit DepthGuard(Parser* parser) : parser_(parser) {
      if (++parser_->depth_ > kMaxNesting) parser_->Fail(kTooDeep);
    }
    ~DepthGuard() { --parser_->depth_; }

   private:
    Parser* parser_;
  };

  // ---- token helpers ----
  const Token& Peek(size_t ahead = 0) const {
    return tokens_[std::min(pos_ + ahead, tokens_.size() - 1)];
  }
  void Advance() {
    if (pos_ + 1 < tokens_.size()) ++pos_;
  }
  int32_t Line() const { return Peek().line; }
  [[noreturn]] void Fail(int32_t number) const {
    throw MakeCompileError(number, Line());
  }
  bool IsKeyword(std::string_view key, size_t ahead = 0) const {
    return Peek(ahead).kind == TokenKind::kIdentifier && Peek(ahead).key == key;
  }
  bool IsOp(std::string_view op) const {
    return Peek().kind == TokenKind::kOperator && Peek().key == op;
  }
  bool AcceptKeyword(std::string_view key) {
    if (!IsKeyword(key)) return false;
    Advance();
    return true;
  }
  bool AcceptOp(std::string_view op) {
    if (!IsOp(op)) return false;
    Advance();
    return true;
  }
  void ExpectKeyword(std::string_view key, int32_t error) {
    if (!AcceptKeyword(key)) Fail(error);
  }
  void ExpectOp(std::string_view op, int32_t error) {
    if (!AcceptOp(op)) Fail(error);
  }
  bool AtEndOfStatement() const {
    const TokenKind kind = Peek().kind;
    return kind == TokenKind::kNewLine || kind == TokenKind::kColon ||
           kind == TokenKind::kEnd || (one_line_if_ > 0 && IsKeyword("ELSE"));
  }
  void EndStatement() {
    if (!AtEndOfStatement()) Fail(kExpectedEndOfStatement);
    if (Peek().kind != TokenKind::kEnd && !IsKeyword("ELSE")) Advance();
  }
  void SkipSeparators() {
    while (Peek().kind == TokenKind::kNewLine ||
           Peek().kind == TokenKind::kColon) {
      Advance();
    }
  }
  // A name usable for a variable or procedure.
  std::pair<std::string, std::string> ExpectName() {
    if (Peek().kind != TokenKind::kIdentifier || IsReserved(Peek().key)) {
      Fail(kExpectedIdentifier);
    }
    auto name = std::make_pair(Peek().key, Peek().spelling);
    Advance();
    return name;
  }
  // A member name after "."; keywords are allowed there.
  std::pair<std::string, std::string> ExpectMemberName() {
    if (Peek().kind != TokenKind::kIdentifier) Fail(kExpectedIdentifier);
    auto name = std::make_pair(Peek().key, Peek().spelling);
    Advance();
    return name;
  }

  // ---- tree helpers ----
  ExprPtr Node(ExprKind kind, ExprPtr left = nullptr, ExprPtr right = nullptr) {
    auto expr = std::make_unique<Expr>();
    expr->kind = kind;
    expr->left = std::move(left);
    expr->right = std::move(right);
    return Finish(std::move(expr));
  }
  ExprPtr Finish(ExprPtr expr) {
    int depth = 0;
    if (expr->left) depth = std::max(depth, expr->left->depth);
    if (expr->right) depth = std::max(depth, expr->right->depth);
    for (const ExprPtr& arg : expr->args) depth = std::max(depth, arg->depth);
    expr->depth = depth + 1;
    if (expr->depth > kMaxNesting) Fail(kTooDeep);
    return expr;
  }
  std::unique_ptr<Stmt> NewStmt(StmtKind kind, int32_t line) {
    auto stmt = std::make_unique<Stmt>();
    stmt->kind = kind;
    stmt->line = line;
    return stmt;
  }

  // ---- program and statements (vb_parser.cc) ----
  // option -> OPTION EXPLICIT
  void ParseOption(Program* program);
  bool StartsProcedure() const;
  void AddProcedure(Program* program, std::shared_ptr<Procedure> procedure);
  // procedure -> [PUBLIC|PRIVATE] (SUB|FUNCTION) name [params] body
  //              END (SUB|FUNCTION)
  std::shared_ptr<Procedure> ParseProcedure();
  // params -> "(" [ [BYVAL|BYREF] name ["()"] {"," ...} ] ")"
  void ParseParameters(Procedure* procedure);
  // block -> { statement separator } until ELSE/ELSEIF/END/NEXT/LOOP/WEND/CASE
  void ParseBlock(Block* block);
  bool AtBlockEnd() const;
  // ---- statements ----
  std::unique_ptr<Stmt> ParseStatement();
  // dim -> DIM item {"," item};  item -> name ["(" [bounds] ")"]
  std::unique_ptr<Stmt> ParseDim();
  DimItem ParseDimItem(bool bounds_required);
  // redim -> REDIM [PRESERVE] name "(" bounds ")" {"," ...}
  std::unique_ptr<Stmt> ParseReDim();
  // const -> CONST name "=" expr {"," name "=" expr}
  std::unique_ptr<Stmt> ParseConst();
  // if -> IF expr THEN (newline block {ELSEIF expr THEN block}
  //       [ELSE block] END IF | statements [ELSE statements])
  std::unique_ptr<Stmt> ParseIf();
  void ParseOneLineIf(Stmt* stmt, IfBranch branch);
  // Statements separated by ":" up to the line end or ELSE.
  void ParseInlineStatements(Block* block);
  // select -> SELECT CASE expr { CASE (ELSE | test {"," test}) block }
  //           END SELECT;  test -> IS op expr | expr [TO expr]
  std::unique_ptr<Stmt> ParseSelect();
  CaseTest ParseCaseTest();
  BinaryOp ParseComparisonOp();
  // for -> FOR name "=" expr TO expr [STEP expr] block NEXT [name]
  //      | FOR EACH name IN expr block NEXT [name]
  std::unique_ptr<Stmt> ParseFor();
  // do -> DO [(WHILE|UNTIL) expr] block LOOP [(WHILE|UNTIL) expr]
  std::unique_ptr<Stmt> ParseDo();
  // while -> WHILE expr block WEND
  std::unique_ptr<Stmt> ParseWhile();
  // exit -> EXIT (FOR | DO | SUB | FUNCTION)
  std::unique_ptr<Stmt> ParseExit();
  // on_error -> ON ERROR (RESUME NEXT | GOTO 0)
  std::unique_ptr<Stmt> ParseOnError();
  // with -> WITH expr block END WITH
  std::unique_ptr<Stmt> ParseWith();
  // set -> SET target "=" expr
  std::unique_ptr<Stmt> ParseSet();
  // call -> CALL target
  std::unique_ptr<Stmt> ParseCall();
  // erase -> ERASE name
  std::unique_ptr<Stmt> ParseErase();
  // assign_or_call -> target "=" expr | target [expr {"," expr}]
  std::unique_ptr<Stmt> ParseAssignOrCall();

  // ---- expressions (vb_parser_expressions.cc) ----
  ExprPtr ParseExpr();
  // level -> level op level-1, for the operator levels of kLevels.
  ExprPtr ParseLevel(int level);
  std::optional<BinaryOp> MatchBinary(int level);
  // not -> NOT not | compare
  ExprPtr ParseNot();
  // unary -> ("-" | "+") unary | power
  ExprPtr ParseUnary();
  // power -> primary {"^" ["-"] primary}
  ExprPtr ParsePower();
  // primary -> literal | TRUE | FALSE | EMPTY | NULL | NOTHING
  //          | "(" expr ")" | postfix
  ExprPtr ParsePrimary();
  static std::optional<Variant> KeywordConstant(const std::string& key);
  // postfix -> (name | "." name) { "." name | "(" [expr {"," expr}] ")" }
  ExprPtr ParsePostfix();
  void ParseArguments(Expr* call);

  std::vector<Token> tokens_;
  size_t pos_ = 0;
  int depth_ = 0;
  int one_line_if_ = 0;
  int for_depth_ = 0;
  int do_depth_ = 0;
  std::optional<ExitKind> in_procedure_;
};

}  // namespace rz::vb

#endif  // RZ_VBSCRIPT_VB_PARSER_INTERNAL_H_
