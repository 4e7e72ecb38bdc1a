// Copyright 2026 The Veltmark authors.

#include "appfile/condition_parser.h"

#include <string>
#include <string_view>
#include <utility>

#include "core/error.h"

namespace rz {
namespace {

struct Token {
  enum class Kind : uint8_t { kOpen, kClose, kLeaf, kAnd, kOr, kEnd };
  Kind kind;
  int32_t condition;
};

// The number of `bracket` characters in a bracket field.
int CountBrackets(std::string_view text, char bracket) {
  int count = 0;
  for (char c : text) {
    if (c == bracket) {
      ++count;
    } else if (c != ' ' && c != '\t') {
      throw Error::InvalidArgument("'" + std::string(text) +
                                   "' is not a filter bracket");
    }
  }
  return count;
}

// The index of the condition whose closing bracket ends the group opened
// by the first condition; -1 when the first opens none.
int32_t LeadingGroupEnd(const std::vector<Condition>& conditions) {
  int depth = 0;
  for (size_t i = 0; i < conditions.size(); ++i) {
    depth += CountBrackets(conditions[i].par1, '(');
    if (i == 0 && depth == 0) return -1;
    depth -= CountBrackets(conditions[i].par2, ')');
    if (depth <= 0) return static_cast<int32_t>(i);
  }
  return -1;
}

void CheckBalance(const std::vector<Condition>& conditions) {
  int depth = 0;
  for (const Condition& condition : conditions) {
    depth += CountBrackets(condition.par1, '(');
    depth -= CountBrackets(condition.par2, ')');
    if (depth < 0) throw Error::FilterBracketsUnbalanced();
  }
  if (depth != 0) throw Error::FilterBracketsUnbalanced();
}

// The tokens of conditions [begin, end); the connective of `begin` is left
// out.
std::vector<Token> Tokenize(const std::vector<Condition>& conditions,
                            int32_t begin, int32_t end) {
  std::vector<Token> tokens;
  for (int32_t i = begin; i < end; ++i) {
    const Condition& condition = conditions[static_cast<size_t>(i)];
    if (i > begin) {
      const bool is_and = condition.and_or == 0 || condition.and_or == 1;
      tokens.push_back({is_and ? Token::Kind::kAnd : Token::Kind::kOr, 0});
    }
    for (int n = CountBrackets(condition.par1, '('); n > 0; --n) {
      tokens.push_back({Token::Kind::kOpen, 0});
    }
    tokens.push_back({Token::Kind::kLeaf, i});
    for (int n = CountBrackets(condition.par2, ')'); n > 0; --n) {
      tokens.push_back({Token::Kind::kClose, 0});
    }
  }
  tokens.push_back({Token::Kind::kEnd, 0});
  return tokens;
}

// Recursive descent over balanced tokens:
//   or     := and { Or and }
//   and    := factor { And factor }
//   factor := "(" or ")" | leaf
class ShapeParser {
 public:
  ShapeParser(std::vector<Token> tokens, FilterTree& tree)
      : tokens_(std::move(tokens)), tree_(tree) {}

  int32_t Parse() {
    const int32_t node = ParseJoined(FilterNode::Kind::kOr);
    if (Peek() != Token::Kind::kEnd) throw Error::FilterBracketsUnbalanced();
    return node;
  }

 private:
  Token::Kind Peek() const { return tokens_[position_].kind; }

  // kOr: or-expression; kAnd: and-expression.
  int32_t ParseJoined(FilterNode::Kind kind) {
    const bool is_or = kind == FilterNode::Kind::kOr;
    const Token::Kind joiner = is_or ? Token::Kind::kOr : Token::Kind::kAnd;
    std::vector<int32_t> parts;
    parts.push_back(is_or ? ParseJoined(FilterNode::Kind::kAnd)
                          : ParseFactor());
    while (Peek() == joiner) {
      ++position_;
      parts.push_back(is_or ? ParseJoined(FilterNode::Kind::kAnd)
                            : ParseFactor());
    }
    if (parts.size() == 1) return parts[0];
    return AddJoin(kind, parts);
  }

  int32_t ParseFactor() {
    const Token token = tokens_[position_];
    if (token.kind == Token::Kind::kOpen) {
      ++position_;
      const int32_t node = ParseJoined(FilterNode::Kind::kOr);
      if (Peek() != Token::Kind::kClose) {
        throw Error::FilterBracketsUnbalanced();
      }
      ++position_;
      return node;
    }
    if (token.kind != Token::Kind::kLeaf) {
      throw Error::FilterBracketsUnbalanced();
    }
    ++position_;
    FilterNode leaf;
    leaf.condition = token.condition;
    tree_.nodes.push_back(leaf);
    return static_cast<int32_t>(tree_.nodes.size() - 1);
  }

  int32_t AddJoin(FilterNode::Kind kind, const std::vector<int32_t>& parts) {
    FilterNode node;
    node.kind = kind;
    node.first_child = static_cast<int32_t>(tree_.children.size());
    node.child_count = static_cast<int32_t>(parts.size());
    tree_.children.insert(tree_.children.end(), parts.begin(), parts.end());
    tree_.nodes.push_back(node);
    return static_cast<int32_t>(tree_.nodes.size() - 1);
  }

  std::vector<Token> tokens_;
  size_t position_ = 0;
  FilterTree& tree_;
};

}  // namespace

FilterTree ParseConditionShape(const std::vector<Condition>& conditions) {
  FilterTree tree;
  if (conditions.empty()) return tree;
  CheckBalance(conditions);
  const int32_t count = static_cast<int32_t>(conditions.size());
  const int32_t group_end = LeadingGroupEnd(conditions);
  if (group_end < 0 || group_end == count - 1) {
    tree.root = ShapeParser(Tokenize(conditions, 0, count), tree).Parse();
    return tree;
  }
  const int32_t range =
      ShapeParser(Tokenize(conditions, 0, group_end + 1), tree).Parse();
  const int32_t rest =
      ShapeParser(Tokenize(conditions, group_end + 1, count), tree).Parse();
  FilterNode both;
  both.kind = FilterNode::Kind::kAnd;
  both.first_child = static_cast<int32_t>(tree.children.size());
  both.child_count = 2;
  tree.children.push_back(range);
  tree.children.push_back(rest);
  tree.nodes.push_back(both);
  tree.root = static_cast<int32_t>(tree.nodes.size() - 1);
  return tree;
}

}  // namespace rz
