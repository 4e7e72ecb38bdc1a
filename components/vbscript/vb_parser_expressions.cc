// Copyright 2026 The Veltmark authors.
//
// The expression rules of the parser, by operator precedence.

#include "vbscript/vb_parser_internal.h"

namespace rz::vb {
namespace {

struct BinaryLevel {
  const char* symbols[4];
  BinaryOp ops[4];
};

// Binary operators from the loosest to the tightest binding. Not sits
// between And and the comparisons; unary minus between * / and ^.
constexpr BinaryLevel kLevels[] = {
    {{"IMP"}, {BinaryOp::kImp}},
    {{"EQV"}, {BinaryOp::kEqv}},
    {{"XOR"}, {BinaryOp::kXor}},
    {{"OR"}, {BinaryOp::kOr}},
    {{"AND"}, {BinaryOp::kAnd}},
    {{}, {}},  // Not
    {{"=", "<>", "<", ">"},
     {BinaryOp::kEq, BinaryOp::kNe, BinaryOp::kLt, BinaryOp::kGt}},
    {{"&"}, {BinaryOp::kConcat}},
    {{"+", "-"}, {BinaryOp::kAdd, BinaryOp::kSub}},
    {{"MOD"}, {BinaryOp::kMod}},
    {{"\\"}, {BinaryOp::kIntDiv}},
    {{"*", "/"}, {BinaryOp::kMul, BinaryOp::kDiv}},
};
constexpr int kNotLevel = 5;
constexpr int kCompareLevel = 6;
constexpr int kUnaryLevel = static_cast<int>(std::size(kLevels));

}  // namespace

ExprPtr Parser::ParseExpr() {
  DepthGuard guard(this);
  return ParseLevel(0);
}

// level -> level op level-1, for the operator levels of kLevels.
ExprPtr Parser::ParseLevel(int level) {
  if (level == kNotLevel) return ParseNot();
  if (level == kUnaryLevel) return ParseUnary();
  ExprPtr left = ParseLevel(level + 1);
  while (true) {
    std::optional<BinaryOp> op = MatchBinary(level);
    if (!op) return left;
    ExprPtr right = ParseLevel(level + 1);
    ExprPtr node = Node(ExprKind::kBinary, std::move(left), std::move(right));
    node->op = *op;
    left = std::move(node);
  }
}

std::optional<BinaryOp> Parser::MatchBinary(int level) {
  if (level == kCompareLevel) {
    if (AcceptKeyword("IS")) return BinaryOp::kIs;
    static constexpr std::pair<std::string_view, BinaryOp> kTwo[] = {
        {"<=", BinaryOp::kLe}, {">=", BinaryOp::kGe}};
    for (const auto& [symbol, op] : kTwo) {
      if (AcceptOp(symbol)) return op;
    }
  }
  const BinaryLevel& entry = kLevels[level];
  for (int i = 0; i < 4 && entry.symbols[i] != nullptr; ++i) {
    const std::string_view symbol = entry.symbols[i];
    const bool word = symbol[0] >= 'A' && symbol[0] <= 'Z';
    if (word ? AcceptKeyword(symbol) : AcceptOp(symbol)) return entry.ops[i];
  }
  return std::nullopt;
}

// not -> NOT not | compare
ExprPtr Parser::ParseNot() {
  if (!AcceptKeyword("NOT")) return ParseLevel(kNotLevel + 1);
  DepthGuard guard(this);
  return Node(ExprKind::kNot, ParseNot());
}

// unary -> ("-" | "+") unary | power
ExprPtr Parser::ParseUnary() {
  if (AcceptOp("-")) {
    DepthGuard guard(this);
    return Node(ExprKind::kNegate, ParseUnary());
  }
  if (AcceptOp("+")) {
    DepthGuard guard(this);
    return ParseUnary();
  }
  return ParsePower();
}

// power -> primary {"^" ["-"] primary}
ExprPtr Parser::ParsePower() {
  ExprPtr left = ParsePrimary();
  while (AcceptOp("^")) {
    ExprPtr right;
    if (AcceptOp("-")) {
      right = Node(ExprKind::kNegate, ParsePrimary());
    } else {
      right = ParsePrimary();
    }
    left = Node(ExprKind::kBinary, std::move(left), std::move(right));
    left->op = BinaryOp::kPow;
  }
  return left;
}

// primary -> literal | TRUE | FALSE | EMPTY | NULL | NOTHING
//          | "(" expr ")" | postfix
ExprPtr Parser::ParsePrimary() {
  const Token& token = Peek();
  if (token.kind == TokenKind::kLiteral) {
    ExprPtr expr = Node(ExprKind::kLiteral);
    expr->value = token.value;
    Advance();
    return expr;
  }
  if (AcceptOp("(")) {
    ExprPtr inner = ParseExpr();
    ExpectOp(")", kExpectedRParen);
    inner->parenthesized = true;
    return inner;
  }
  if (token.kind == TokenKind::kIdentifier) {
    if (auto constant = KeywordConstant(token.key)) {
      ExprPtr expr = Node(ExprKind::kLiteral);
      expr->value = *constant;
      Advance();
      return expr;
    }
    if (token.key == "NOTHING") {
      Advance();
      return Node(ExprKind::kNothing);
    }
    if (!IsReserved(token.key)) return ParsePostfix();
  }
  if (IsOp(".")) return ParsePostfix();
  Fail(kExpectedExpression);
}

std::optional<Variant> Parser::KeywordConstant(const std::string& key) {
  if (key == "TRUE") return Variant(true);
  if (key == "FALSE") return Variant(false);
  if (key == "EMPTY") return Variant();
  if (key == "NULL") return Variant::Null();
  return std::nullopt;
}

// postfix -> (name | "." name) { "." name | "(" [expr {"," expr}] ")" }
ExprPtr Parser::ParsePostfix() {
  ExprPtr expr;
  if (AcceptOp(".")) {
    expr = Node(ExprKind::kMember);
    std::tie(expr->key, expr->spelling) = ExpectMemberName();
  } else {
    expr = Node(ExprKind::kName);
    std::tie(expr->key, expr->spelling) = ExpectName();
  }
  while (true) {
    if (IsOp(".") && !Peek().space_before) {
      Advance();
      ExprPtr member = Node(ExprKind::kMember, std::move(expr));
      std::tie(member->key, member->spelling) = ExpectMemberName();
      expr = std::move(member);
    } else if (AcceptOp("(")) {
      auto call = std::make_unique<Expr>();
      call->kind = ExprKind::kCall;
      call->left = std::move(expr);
      ParseArguments(call.get());
      expr = Finish(std::move(call));
    } else {
      return expr;
    }
  }
}

void Parser::ParseArguments(Expr* call) {
  if (AcceptOp(")")) return;
  do {
    call->args.push_back(ParseExpr());
  } while (AcceptOp(","));
  ExpectOp(")", kExpectedRParen);
}

}  // namespace rz::vb
