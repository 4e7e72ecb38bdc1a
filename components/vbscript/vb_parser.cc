// Copyright 2026 The Veltmark authors.
//
// The program, procedure and statement rules of the parser.

#include <set>

#include "vbscript/vb_parser_internal.h"

namespace rz::vb {
namespace {

SourceLines SplitLines(std::string_view source) {
  SourceLines lines;
  size_t start = 0;
  while (true) {
    const size_t end = source.find('\n', start);
    std::string_view line = source.substr(start, end == std::string_view::npos
                                                     ? std::string_view::npos
                                                     : end - start);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    lines.emplace_back(line);
    if (end == std::string_view::npos) break;
    start = end + 1;
  }
  return lines;
}

}  // namespace

bool IsReserved(const std::string& key) {
  static const std::set<std::string, std::less<>> kReserved = {
      "AND",     "BYREF",  "BYVAL",   "CALL",   "CASE",   "CLASS",    "CONST",
      "DIM",     "DO",     "EACH",    "ELSE",   "ELSEIF", "EMPTY",    "END",
      "EQV",     "ERASE",  "EXIT",    "FALSE",  "FOR",    "FUNCTION", "GOTO",
      "IF",      "IMP",    "IN",      "IS",     "LOOP",   "MOD",      "NEW",
      "NEXT",    "NOT",    "NOTHING", "NULL",   "ON",     "OPTION",   "OR",
      "PRIVATE", "PUBLIC", "REDIM",   "SELECT", "SET",    "SUB",      "THEN",
      "TO",      "TRUE",   "UNTIL",   "WEND",   "WHILE",  "WITH",     "XOR"};
  return kReserved.count(key) > 0;
}

// program -> { OPTION EXPLICIT | procedure | statement } END
Program Parser::ParseProgram() {
  Program program;
  SkipSeparators();
  while (Peek().kind != TokenKind::kEnd) {
    if (IsKeyword("OPTION")) {
      ParseOption(&program);
    } else if (StartsProcedure()) {
      AddProcedure(&program, ParseProcedure());
    } else {
      program.statements.push_back(ParseStatement());
    }
    EndStatement();
    SkipSeparators();
  }
  return program;
}

// option -> OPTION EXPLICIT
void Parser::ParseOption(Program* program) {
  Advance();
  ExpectKeyword("EXPLICIT", kExpectedIdentifier);
  program->option_explicit = true;
}

bool Parser::StartsProcedure() const {
  const size_t at = IsKeyword("PUBLIC") || IsKeyword("PRIVATE") ? 1 : 0;
  return IsKeyword("SUB", at) || IsKeyword("FUNCTION", at);
}

void Parser::AddProcedure(Program* program,
                          std::shared_ptr<Procedure> procedure) {
  for (const auto& existing : program->procedures) {
    if (existing->key == procedure->key) {
      throw MakeCompileError(kNameRedefined, procedure->line);
    }
  }
  program->procedures.push_back(std::move(procedure));
}

// procedure -> [PUBLIC|PRIVATE] (SUB|FUNCTION) name [params] body
//              END (SUB|FUNCTION)
std::shared_ptr<Procedure> Parser::ParseProcedure() {
  auto procedure = std::make_shared<Procedure>();
  procedure->line = Line();
  if (!AcceptKeyword("PUBLIC")) AcceptKeyword("PRIVATE");
  procedure->is_function = IsKeyword("FUNCTION");
  Advance();
  std::tie(procedure->key, procedure->spelling) = ExpectName();
  if (AcceptOp("(")) ParseParameters(procedure.get());
  const char* kind = procedure->is_function ? "FUNCTION" : "SUB";
  in_procedure_ = procedure->is_function ? ExitKind::kFunction : ExitKind::kSub;
  ParseBlock(&procedure->body);
  in_procedure_.reset();
  ExpectKeyword("END", kExpectedEnd);
  ExpectKeyword(kind,
                procedure->is_function ? kExpectedFunction : kExpectedSub);
  return procedure;
}

// params -> "(" [ [BYVAL|BYREF] name ["()"] {"," ...} ] ")"
void Parser::ParseParameters(Procedure* procedure) {
  if (AcceptOp(")")) return;
  do {
    Parameter param;
    if (AcceptKeyword("BYVAL")) {
      param.by_value = true;
    } else {
      AcceptKeyword("BYREF");
    }
    std::tie(param.key, param.spelling) = ExpectName();
    if (AcceptOp("(")) ExpectOp(")", kExpectedRParen);
    for (const Parameter& other : procedure->params) {
      if (other.key == param.key) Fail(kNameRedefined);
    }
    procedure->params.push_back(std::move(param));
  } while (AcceptOp(","));
  ExpectOp(")", kExpectedRParen);
}

// block -> { statement separator } until ELSE/ELSEIF/END/NEXT/LOOP/WEND/CASE
void Parser::ParseBlock(Block* block) {
  DepthGuard guard(this);
  SkipSeparators();
  while (!AtBlockEnd()) {
    block->push_back(ParseStatement());
    EndStatement();
    SkipSeparators();
  }
}

bool Parser::AtBlockEnd() const {
  static constexpr std::string_view kEnders[] = {
      "ELSE", "ELSEIF", "END", "NEXT", "LOOP", "WEND", "CASE"};
  if (Peek().kind == TokenKind::kEnd) return true;
  if (Peek().kind != TokenKind::kIdentifier) return false;
  return std::find(std::begin(kEnders), std::end(kEnders), Peek().key) !=
         std::end(kEnders);
}

// ---- statements ----
std::unique_ptr<Stmt> Parser::ParseStatement() {
  const Token& token = Peek();
  if (token.kind == TokenKind::kOperator && token.key == ".") {
    return ParseAssignOrCall();
  }
  if (token.kind != TokenKind::kIdentifier) Fail(kExpectedStatement);
  const std::string& key = token.key;
  if (key == "DIM") return ParseDim();
  if (key == "PUBLIC" || key == "PRIVATE") {
    if (IsKeyword("CONST", 1)) Advance();
    if (!IsKeyword("CONST")) return ParseDim();
  }
  if (key == "CONST" || IsKeyword("CONST")) return ParseConst();
  if (key == "REDIM") return ParseReDim();
  if (key == "IF") return ParseIf();
  if (key == "SELECT") return ParseSelect();
  if (key == "FOR") return ParseFor();
  if (key == "DO") return ParseDo();
  if (key == "WHILE") return ParseWhile();
  if (key == "EXIT") return ParseExit();
  if (key == "ON") return ParseOnError();
  if (key == "WITH") return ParseWith();
  if (key == "SET") return ParseSet();
  if (key == "CALL") return ParseCall();
  if (key == "ERASE") return ParseErase();
  if (IsReserved(key)) Fail(kExpectedStatement);
  return ParseAssignOrCall();
}

// dim -> DIM item {"," item};  item -> name ["(" [bounds] ")"]
std::unique_ptr<Stmt> Parser::ParseDim() {
  auto stmt = NewStmt(StmtKind::kDim, Line());
  Advance();
  do {
    stmt->dims.push_back(ParseDimItem(false));
  } while (AcceptOp(","));
  return stmt;
}

DimItem Parser::ParseDimItem(bool bounds_required) {
  DimItem item;
  std::tie(item.key, item.spelling) = ExpectName();
  if (AcceptOp("(")) {
    item.is_array = true;
    if (!IsOp(")")) {
      do {
        item.bounds.push_back(ParseExpr());
      } while (AcceptOp(","));
    }
    ExpectOp(")", kExpectedRParen);
  }
  if (bounds_required && item.bounds.empty()) Fail(kExpectedLParen);
  return item;
}

// redim -> REDIM [PRESERVE] name "(" bounds ")" {"," ...}
std::unique_ptr<Stmt> Parser::ParseReDim() {
  auto stmt = NewStmt(StmtKind::kReDim, Line());
  Advance();
  stmt->preserve = AcceptKeyword("PRESERVE");
  do {
    stmt->dims.push_back(ParseDimItem(true));
  } while (AcceptOp(","));
  return stmt;
}

// const -> CONST name "=" expr {"," name "=" expr}
std::unique_ptr<Stmt> Parser::ParseConst() {
  auto stmt = NewStmt(StmtKind::kConst, Line());
  Advance();
  do {
    DimItem item;
    std::tie(item.key, item.spelling) = ExpectName();
    ExpectOp("=", kExpectedEquals);
    stmt->dims.push_back(std::move(item));
    stmt->consts.push_back(ParseExpr());
  } while (AcceptOp(","));
  return stmt;
}

// if -> IF expr THEN (newline block {ELSEIF expr THEN block}
//       [ELSE block] END IF | statements [ELSE statements])
std::unique_ptr<Stmt> Parser::ParseIf() {
  auto stmt = NewStmt(StmtKind::kIf, Line());
  Advance();
  IfBranch branch;
  branch.condition = ParseExpr();
  ExpectKeyword("THEN", kExpectedThen);
  const bool block_form =
      Peek().kind == TokenKind::kNewLine || Peek().kind == TokenKind::kEnd;
  if (!block_form) {
    ParseOneLineIf(stmt.get(), std::move(branch));
    return stmt;
  }
  ParseBlock(&branch.body);
  stmt->branches.push_back(std::move(branch));
  while (AcceptKeyword("ELSEIF")) {
    IfBranch next;
    next.condition = ParseExpr();
    ExpectKeyword("THEN", kExpectedThen);
    ParseBlock(&next.body);
    stmt->branches.push_back(std::move(next));
  }
  if (AcceptKeyword("ELSE")) ParseBlock(&stmt->else_block);
  ExpectKeyword("END", kExpectedEnd);
  ExpectKeyword("IF", kExpectedIf);
  return stmt;
}

void Parser::ParseOneLineIf(Stmt* stmt, IfBranch branch) {
  DepthGuard guard(this);
  ++one_line_if_;
  ParseInlineStatements(&branch.body);
  stmt->branches.push_back(std::move(branch));
  if (AcceptKeyword("ELSE")) ParseInlineStatements(&stmt->else_block);
  --one_line_if_;
}

// Statements separated by ":" up to the line end or ELSE.
void Parser::ParseInlineStatements(Block* block) {
  while (true) {
    while (Peek().kind == TokenKind::kColon) Advance();
    if (Peek().kind == TokenKind::kNewLine || Peek().kind == TokenKind::kEnd ||
        IsKeyword("ELSE")) {
      break;
    }
    block->push_back(ParseStatement());
    if (Peek().kind == TokenKind::kColon) continue;
    if (!AtEndOfStatement()) Fail(kExpectedEndOfStatement);
  }
  if (AcceptKeyword("END")) ExpectKeyword("IF", kExpectedIf);
}

// select -> SELECT CASE expr { CASE (ELSE | test {"," test}) block }
//           END SELECT;  test -> IS op expr | expr [TO expr]
std::unique_ptr<Stmt> Parser::ParseSelect() {
  auto stmt = NewStmt(StmtKind::kSelect, Line());
  Advance();
  ExpectKeyword("CASE", kExpectedCase);
  stmt->value = ParseExpr();
  EndStatement();
  SkipSeparators();
  while (AcceptKeyword("CASE")) {
    SelectCase select_case;
    if (AcceptKeyword("ELSE")) {
      select_case.is_else = true;
    } else {
      do {
        select_case.tests.push_back(ParseCaseTest());
      } while (AcceptOp(","));
    }
    ParseBlock(&select_case.body);
    stmt->cases.push_back(std::move(select_case));
  }
  if (!IsKeyword("END")) Fail(kExpectedCase);
  Advance();
  ExpectKeyword("SELECT", kExpectedSelect);
  return stmt;
}

CaseTest Parser::ParseCaseTest() {
  CaseTest test;
  if (AcceptKeyword("IS")) {
    test.kind = CaseTest::Kind::kIs;
    test.op = ParseComparisonOp();
    test.first = ParseExpr();
    return test;
  }
  test.first = ParseExpr();
  if (AcceptKeyword("TO")) {
    test.kind = CaseTest::Kind::kRange;
    test.last = ParseExpr();
  }
  return test;
}

BinaryOp Parser::ParseComparisonOp() {
  static constexpr std::pair<std::string_view, BinaryOp> kOps[] = {
      {"=", BinaryOp::kEq}, {"<>", BinaryOp::kNe}, {"<", BinaryOp::kLt},
      {">", BinaryOp::kGt}, {"<=", BinaryOp::kLe}, {">=", BinaryOp::kGe}};
  for (const auto& [symbol, op] : kOps) {
    if (AcceptOp(symbol)) return op;
  }
  Fail(kSyntaxError);
}

// for -> FOR name "=" expr TO expr [STEP expr] block NEXT [name]
//      | FOR EACH name IN expr block NEXT [name]
std::unique_ptr<Stmt> Parser::ParseFor() {
  auto stmt = NewStmt(StmtKind::kFor, Line());
  Advance();
  const bool each = AcceptKeyword("EACH");
  if (Peek().kind != TokenKind::kIdentifier || IsReserved(Peek().key)) {
    Fail(kInvalidForVariable);
  }
  std::tie(stmt->key, stmt->spelling) = ExpectName();
  if (each) {
    stmt->kind = StmtKind::kForEach;
    ExpectKeyword("IN", kExpectedIn);
    stmt->value = ParseExpr();
  } else {
    ExpectOp("=", kExpectedEquals);
    stmt->from = ParseExpr();
    ExpectKeyword("TO", kExpectedTo);
    stmt->to = ParseExpr();
    if (AcceptKeyword("STEP")) stmt->step = ParseExpr();
  }
  ++for_depth_;
  ParseBlock(&stmt->body);
  --for_depth_;
  ExpectKeyword("NEXT", kExpectedNext);
  if (Peek().kind == TokenKind::kIdentifier && !IsReserved(Peek().key)) {
    Advance();
  }
  return stmt;
}

// do -> DO [(WHILE|UNTIL) expr] block LOOP [(WHILE|UNTIL) expr]
std::unique_ptr<Stmt> Parser::ParseDo() {
  auto stmt = NewStmt(StmtKind::kDo, Line());
  Advance();
  if (IsKeyword("WHILE") || IsKeyword("UNTIL")) {
    stmt->loop_test =
        IsKeyword("WHILE") ? LoopTest::kPreWhile : LoopTest::kPreUntil;
    Advance();
    stmt->value = ParseExpr();
  }
  ++do_depth_;
  ParseBlock(&stmt->body);
  --do_depth_;
  ExpectKeyword("LOOP", kExpectedLoop);
  if (IsKeyword("WHILE") || IsKeyword("UNTIL")) {
    if (stmt->value) Fail(kExpectedEndOfStatement);
    stmt->loop_test =
        IsKeyword("WHILE") ? LoopTest::kPostWhile : LoopTest::kPostUntil;
    Advance();
    stmt->value = ParseExpr();
  }
  return stmt;
}

// while -> WHILE expr block WEND
std::unique_ptr<Stmt> Parser::ParseWhile() {
  auto stmt = NewStmt(StmtKind::kDo, Line());
  Advance();
  stmt->loop_test = LoopTest::kPreWhile;
  stmt->value = ParseExpr();
  ParseBlock(&stmt->body);
  ExpectKeyword("WEND", kExpectedWend);
  return stmt;
}

// exit -> EXIT (FOR | DO | SUB | FUNCTION)
std::unique_ptr<Stmt> Parser::ParseExit() {
  auto stmt = NewStmt(StmtKind::kExit, Line());
  Advance();
  if (AcceptKeyword("FOR") && for_depth_ > 0) {
    stmt->exit_kind = ExitKind::kFor;
  } else if (AcceptKeyword("DO") && do_depth_ > 0) {
    stmt->exit_kind = ExitKind::kDo;
  } else if (AcceptKeyword("SUB") && in_procedure_ == ExitKind::kSub) {
    stmt->exit_kind = ExitKind::kSub;
  } else if (AcceptKeyword("FUNCTION") &&
             in_procedure_ == ExitKind::kFunction) {
    stmt->exit_kind = ExitKind::kFunction;
  } else {
    throw MakeCompileError(kInvalidExit, stmt->line);
  }
  return stmt;
}

// on_error -> ON ERROR (RESUME NEXT | GOTO 0)
std::unique_ptr<Stmt> Parser::ParseOnError() {
  auto stmt = NewStmt(StmtKind::kOnErrorResumeNext, Line());
  Advance();
  ExpectKeyword("ERROR", kSyntaxError);
  if (AcceptKeyword("RESUME")) {
    ExpectKeyword("NEXT", kExpectedNext);
    return stmt;
  }
  ExpectKeyword("GOTO", kSyntaxError);
  if (Peek().kind != TokenKind::kLiteral || !Peek().value.IsNumber() ||
      Peek().value.ToDouble() != 0) {
    Fail(kSyntaxError);
  }
  Advance();
  stmt->kind = StmtKind::kOnErrorGotoZero;
  return stmt;
}

// with -> WITH expr block END WITH
std::unique_ptr<Stmt> Parser::ParseWith() {
  auto stmt = NewStmt(StmtKind::kWith, Line());
  Advance();
  stmt->value = ParseExpr();
  ParseBlock(&stmt->body);
  ExpectKeyword("END", kExpectedEnd);
  ExpectKeyword("WITH", kExpectedWith);
  return stmt;
}

// set -> SET target "=" expr
std::unique_ptr<Stmt> Parser::ParseSet() {
  auto stmt = NewStmt(StmtKind::kSet, Line());
  Advance();
  stmt->target = ParsePostfix();
  ExpectOp("=", kExpectedEquals);
  stmt->value = ParseExpr();
  return stmt;
}

// call -> CALL target
std::unique_ptr<Stmt> Parser::ParseCall() {
  auto stmt = NewStmt(StmtKind::kCall, Line());
  Advance();
  stmt->target = ParsePostfix();
  return stmt;
}

// erase -> ERASE name
std::unique_ptr<Stmt> Parser::ParseErase() {
  auto stmt = NewStmt(StmtKind::kErase, Line());
  Advance();
  std::tie(stmt->key, stmt->spelling) = ExpectName();
  return stmt;
}

// assign_or_call -> target "=" expr | target [expr {"," expr}]
std::unique_ptr<Stmt> Parser::ParseAssignOrCall() {
  auto stmt = NewStmt(StmtKind::kCall, Line());
  stmt->target = ParsePostfix();
  if (AcceptOp("=")) {
    stmt->kind = StmtKind::kAssign;
    stmt->value = ParseExpr();
    return stmt;
  }
  if (AtEndOfStatement()) {
    // "Name (x)" as a statement passes x by value, as "Name x" with x in
    // parentheses would.
    Expr& target = *stmt->target;
    if (target.kind == ExprKind::kCall && target.args.size() == 1) {
      target.args[0]->parenthesized = true;
    }
    return stmt;
  }
  if (stmt->target->kind == ExprKind::kCall) Fail(kExpectedEndOfStatement);
  auto call = std::make_unique<Expr>();
  call->kind = ExprKind::kCall;
  call->left = std::move(stmt->target);
  do {
    call->args.push_back(ParseExpr());
  } while (AcceptOp(","));
  stmt->target = Finish(std::move(call));
  return stmt;
}

Program Parse(std::string_view source) {
  Program program = Parser(Tokenize(source)).ParseProgram();
  auto lines = std::make_shared<const SourceLines>(SplitLines(source));
  program.lines = lines;
  for (auto& procedure : program.procedures) procedure->lines = lines;
  return program;
}

}  // namespace rz::vb
