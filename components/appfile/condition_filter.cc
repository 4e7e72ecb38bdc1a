// Copyright 2026 The Veltmark authors.
//
// The filter compiles every condition into a typed leaf test (its literal
// read once: a date-time, a number, a folded text or a LIKE pattern) and
// the list's shape into a tree (condition_parser.h); Matches walks the tree
// with short-circuit And/Or and never allocates.
//
// Decisions beyond the rules in condition_filter.h:
//   - date-times compare with a tolerance of half a second (record
//     date-times and literals are whole seconds; the tolerance absorbs the
//     rounding of the day fraction), and FindDateRange uses the same
//     comparisons, so it and the filter agree on every bound;
//   - a record whose date text builds no date has no date-time: for
//     variable 0 it counts as a record without a value;
//   - with the literal NULL, "=" and LIKE hold for records without a value,
//     "<>" for records with one, and the orderings never hold;
//   - LIKE on variable 0 matches the record's "yyyy-mm-dd hh:mm:ss" text;
//   - an operator is read trimmed and without regard to case ("like").

#include "appfile/condition_filter.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <numeric>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "appfile/condition_parser.h"
#include "appfile/data_store.h"
#include "appfile/record_columns.h"
#include "core/date_time.h"
#include "core/error.h"
#include "core/like.h"
#include "core/text.h"

namespace rz {
namespace {

constexpr double kHalfSecond = 0.5 / 86400;

enum class Operator : uint8_t {
  kEqual,
  kNotEqual,
  kGreater,
  kLess,
  kGreaterEqual,
  kLessEqual,
  kLike,
};

enum class Subject : uint8_t { kDateTime, kNumber, kText };

struct Leaf {
  Subject subject = Subject::kText;
  Operator op = Operator::kEqual;
  int variable = 0;
  bool literal_is_null = false;
  double number = 0;  // kDateTime and kNumber literals
  std::string text;   // kText literal, trimmed and upper-cased
  std::optional<LikePattern> pattern;
};

Operator ParseOperator(std::string_view text) {
  const std::string op = UpperCase(Trim(text));
  if (op == "=") return Operator::kEqual;
  if (op == "<>") return Operator::kNotEqual;
  if (op == ">") return Operator::kGreater;
  if (op == "<") return Operator::kLess;
  if (op == ">=") return Operator::kGreaterEqual;
  if (op == "<=") return Operator::kLessEqual;
  if (op == "LIKE") return Operator::kLike;
  throw Error::InvalidArgument("unknown filter operator '" + std::string(text) +
                               "'");
}

Leaf CompileLeaf(const Condition& condition, const DataStore& store) {
  Leaf leaf;
  leaf.variable = condition.variable;
  if (leaf.variable < 0 || leaf.variable > store.VariableCount()) {
    throw Error::SubscriptOutOfRange("filter variable " +
                                     std::to_string(leaf.variable) + " of " +
                                     std::to_string(store.VariableCount()));
  }
  leaf.op = ParseOperator(condition.condition);
  leaf.subject = leaf.variable == 0               ? Subject::kDateTime
                 : store.IsNumeric(leaf.variable) ? Subject::kNumber
                                                  : Subject::kText;
  const std::string literal = Trim(condition.value);
  leaf.literal_is_null = literal.empty() || EqualsIgnoreCase(literal, "NULL");
  if (leaf.literal_is_null) return leaf;
  if (leaf.op == Operator::kLike) {
    leaf.pattern = LikePattern::Compile(
        literal, LikeOptions{.ignore_case = true, .sql_wildcards = true});
  } else if (leaf.subject == Subject::kDateTime) {
    const std::optional<double> when = ParseDateTime(literal);
    if (!when) throw Error::TypeMismatch(condition.value);
    leaf.number = *when;
  } else if (leaf.subject == Subject::kNumber) {
    leaf.number = LeadingNumber(literal);
  } else {
    leaf.text = UpperCase(literal);
  }
  return leaf;
}

// The result of an ordering from a three-way comparison.
bool Holds(Operator op, int order) {
  switch (op) {
    case Operator::kEqual:
      return order == 0;
    case Operator::kNotEqual:
      return order != 0;
    case Operator::kGreater:
      return order > 0;
    case Operator::kLess:
      return order < 0;
    case Operator::kGreaterEqual:
      return order >= 0;
    case Operator::kLessEqual:
      return order <= 0;
    case Operator::kLike:
      break;
  }
  return false;
}

// Date-times within half a second of each other are equal.
int CompareDateTimes(double value, double literal) {
  const double difference = value - literal;
  if (difference <= -kHalfSecond) return -1;
  if (difference >= kHalfSecond) return 1;
  return 0;
}

int CompareNumbers(double value, double literal) {
  return value < literal ? -1 : (value > literal ? 1 : 0);
}

// The text of ShortestNumberText, written into `buffer` without allocating.
std::string_view NumberText(double value, char (&buffer)[48]) {
  if (value == 0) return "0";
  const double magnitude = std::fabs(value);
  char* const last = buffer + sizeof buffer - 4;  // room for inserted "+0"
  if (magnitude >= 1e-5 && magnitude < 1e15) {
    char* end =
        std::to_chars(buffer, last, value, std::chars_format::fixed).ptr;
    return std::string_view(buffer, static_cast<size_t>(end - buffer));
  }
  char* end =
      std::to_chars(buffer, last, value, std::chars_format::scientific).ptr;
  char* e = static_cast<char*>(std::memchr(buffer, 'e', end - buffer));
  if (e == nullptr) return std::string_view(buffer, end - buffer);
  *e = 'E';
  if (e + 1 < end && *(e + 1) >= '0' && *(e + 1) <= '9') {
    std::memmove(e + 2, e + 1, static_cast<size_t>(end - (e + 1)));
    *(e + 1) = '+';
    ++end;
  }
  if (end - (e + 2) < 2) {
    std::memmove(e + 3, e + 2, static_cast<size_t>(end - (e + 2)));
    *(e + 2) = '0';
    ++end;
  }
  return std::string_view(buffer, static_cast<size_t>(end - buffer));
}

void WriteDigits(int value, int width, char* out) {
  for (int i = width - 1; i >= 0; --i) {
    out[i] = static_cast<char>('0' + value % 10);
    value /= 10;
  }
}

// "yyyy-mm-dd hh:mm:ss" of a date-time, written into `buffer`.
std::string_view DateTimeText(double date_time, char (&buffer)[48]) {
  DateTimeParts parts;
  try {
    parts = SplitDateTime(date_time);
  } catch (const Error&) {
    return {};
  }
  std::memcpy(buffer, "0000-00-00 00:00:00", 19);
  WriteDigits(parts.year, 4, buffer);
  WriteDigits(parts.month, 2, buffer + 5);
  WriteDigits(parts.day, 2, buffer + 8);
  WriteDigits(parts.hour, 2, buffer + 11);
  WriteDigits(parts.minute, 2, buffer + 14);
  WriteDigits(parts.second, 2, buffer + 17);
  return std::string_view(buffer, 19);
}

bool MatchesLeaf(const Leaf& leaf, const DataStore& store, int32_t record) {
  bool has_value = false;
  double number = 0;
  std::string_view text;
  switch (leaf.subject) {
    case Subject::kDateTime:
      number = store.DateTime(record);
      has_value = !std::isnan(number);
      break;
    case Subject::kNumber:
      has_value = !store.IsNull(record, leaf.variable);
      if (has_value) number = store.Number(record, leaf.variable);
      break;
    case Subject::kText:
      if (!store.IsNull(record, leaf.variable)) {
        text = TrimSpaces(store.Text(record, leaf.variable));
      }
      has_value = !text.empty();
      break;
  }
  if (!has_value) {
    if (leaf.literal_is_null) {
      return leaf.op == Operator::kEqual || leaf.op == Operator::kLike;
    }
    return leaf.op == Operator::kNotEqual;
  }
  if (leaf.literal_is_null) return leaf.op == Operator::kNotEqual;
  char buffer[48];
  switch (leaf.subject) {
    case Subject::kDateTime:
      if (leaf.op == Operator::kLike) {
        return leaf.pattern->Matches(DateTimeText(number, buffer));
      }
      return Holds(leaf.op, CompareDateTimes(number, leaf.number));
    case Subject::kNumber:
      if (leaf.op == Operator::kLike) {
        return leaf.pattern->Matches(NumberText(number, buffer));
      }
      return Holds(leaf.op, CompareNumbers(number, leaf.number));
    case Subject::kText:
      if (leaf.op == Operator::kLike) return leaf.pattern->Matches(text);
      return Holds(leaf.op, CompareIgnoreCase(text, leaf.text));
  }
  return false;
}

class CompiledFilter : public ConditionFilter {
 public:
  CompiledFilter(std::vector<Leaf> leaves, FilterTree tree)
      : leaves_(std::move(leaves)), tree_(std::move(tree)) {}

  bool Matches(const DataStore& store, int32_t record) const override {
    return tree_.root < 0 || MatchesNode(tree_.root, store, record);
  }

  void Select(const DataStore& store, RecordList* selected) const override {
    selected->clear();
    int32_t begin = 1;
    int32_t end = store.RecordCount() + 1;
    std::vector<int32_t> rest;  // nodes still to test, joined with And
    if (tree_.root >= 0) {
      for (int32_t part : AndParts(tree_.root)) {
        if (!store.InTimeOrder() || !NarrowByTime(part, store, &begin, &end)) {
          rest.push_back(part);
        }
      }
    }
    if (begin >= end) return;
    if (rest.empty()) {  // the date range alone: every record in it
      selected->resize(static_cast<size_t>(end - begin));
      std::iota(selected->begin(), selected->end(), begin - 1);
      return;
    }
    selected->reserve(static_cast<size_t>(end - begin));
    for (int32_t record = begin; record < end; ++record) {
      bool passes = true;
      for (int32_t part : rest) {
        if (!MatchesNode(part, store, record)) {
          passes = false;
          break;
        }
      }
      if (passes) selected->push_back(record - 1);
    }
  }

 private:
  const FilterNode& Node(int32_t index) const {
    return tree_.nodes[static_cast<size_t>(index)];
  }
  int32_t Child(const FilterNode& node, int32_t i) const {
    return tree_.children[static_cast<size_t>(node.first_child + i)];
  }

  // The parts a node joins with And: its children, or the node itself.
  std::vector<int32_t> AndParts(int32_t index) const {
    const FilterNode& node = Node(index);
    if (node.kind != FilterNode::Kind::kAnd) return {index};
    std::vector<int32_t> parts;
    for (int32_t i = 0; i < node.child_count; ++i) {
      parts.push_back(Child(node, i));
    }
    return parts;
  }

  // A leaf that bounds the record's date-time by a literal.
  const Leaf* TimeBound(int32_t index) const {
    const FilterNode& node = Node(index);
    if (node.kind != FilterNode::Kind::kLeaf) return nullptr;
    const Leaf& leaf = leaves_[static_cast<size_t>(node.condition)];
    const bool bound =
        leaf.op == Operator::kGreater || leaf.op == Operator::kGreaterEqual ||
        leaf.op == Operator::kLess || leaf.op == Operator::kLessEqual;
    return leaf.subject == Subject::kDateTime && bound && !leaf.literal_is_null
               ? &leaf
               : nullptr;
  }

  // When `index` is a time bound, or an And of time bounds only, narrows
  // the records [begin, end) (1-based, in time order) to those it passes
  // and returns true.
  bool NarrowByTime(int32_t index, const DataStore& store, int32_t* begin,
                    int32_t* end) const {
    std::vector<const Leaf*> bounds;
    for (int32_t part : AndParts(index)) {
      const Leaf* bound = TimeBound(part);
      if (bound == nullptr) return false;
      bounds.push_back(bound);
    }
    for (const Leaf* bound : bounds) {
      // The first record past which the bound no longer holds (upper
      // bounds) or from which it holds (lower bounds).
      const double literal = bound->number;
      auto first_where = [&](auto holds) {
        int32_t low = 1;
        int32_t high = store.RecordCount() + 1;
        while (low < high) {
          const int32_t middle = low + (high - low) / 2;
          if (holds(store.DateTime(middle))) {
            high = middle;
          } else {
            low = middle + 1;
          }
        }
        return low;
      };
      switch (bound->op) {
        case Operator::kGreaterEqual:
          *begin = std::max(
              *begin, first_where([&](double t) { return t >= literal; }));
          break;
        case Operator::kGreater:
          *begin = std::max(*begin,
                            first_where([&](double t) { return t > literal; }));
          break;
        case Operator::kLessEqual:
          *end = std::min(*end,
                          first_where([&](double t) { return t > literal; }));
          break;
        default:  // kLess
          *end = std::min(*end,
                          first_where([&](double t) { return t >= literal; }));
          break;
      }
    }
    return true;
  }

  bool MatchesNode(int32_t index, const DataStore& store,
                   int32_t record) const {
    const FilterNode& node = tree_.nodes[static_cast<size_t>(index)];
    if (node.kind == FilterNode::Kind::kLeaf) {
      return MatchesLeaf(leaves_[static_cast<size_t>(node.condition)], store,
                         record);
    }
    // And stops at the first failing part, Or at the first passing one.
    const bool stop_on = node.kind == FilterNode::Kind::kOr;
    for (int32_t i = 0; i < node.child_count; ++i) {
      const int32_t child =
          tree_.children[static_cast<size_t>(node.first_child + i)];
      if (MatchesNode(child, store, record) == stop_on) return stop_on;
    }
    return !stop_on;
  }

  std::vector<Leaf> leaves_;
  FilterTree tree_;
};

}  // namespace

std::unique_ptr<ConditionFilter> ConditionFilter::Compile(
    const std::vector<Condition>& conditions, const DataStore& store) {
  FilterTree tree = ParseConditionShape(conditions);
  std::vector<Leaf> leaves;
  leaves.reserve(conditions.size());
  for (const Condition& condition : conditions) {
    leaves.push_back(CompileLeaf(condition, store));
  }
  return std::make_unique<CompiledFilter>(std::move(leaves), std::move(tree));
}

bool FindDateRange(const DataStore& store, std::string_view begin,
                   std::string_view end, int32_t& first, int32_t& last) {
  const std::optional<double> from = ParseDateTime(begin);
  if (!from) throw Error::TypeMismatch(begin);
  const std::optional<double> to = ParseDateTime(end);
  if (!to) throw Error::TypeMismatch(end);
  first = 0;
  last = 0;
  // The same tests as ">= begin" and "<= end" in a filter.
  auto after_begin = [&](double when) {
    return CompareDateTimes(when, *from) >= 0;
  };
  auto before_end = [&](double when) {
    return CompareDateTimes(when, *to) <= 0;
  };
  const int32_t count = store.RecordCount();
  if (store.InTimeOrder()) {
    // The first record at or after begin, and the last at or before end.
    int32_t low = 1;
    int32_t high = count + 1;
    while (low < high) {
      const int32_t middle = low + (high - low) / 2;
      if (after_begin(store.DateTime(middle))) {
        high = middle;
      } else {
        low = middle + 1;
      }
    }
    const int32_t first_in = low;
    high = count + 1;
    while (low < high) {
      const int32_t middle = low + (high - low) / 2;
      if (before_end(store.DateTime(middle))) {
        low = middle + 1;
      } else {
        high = middle;
      }
    }
    const int32_t last_in = low - 1;
    if (first_in > last_in) return false;
    first = first_in;
    last = last_in;
    return true;
  }
  for (int32_t record = 1; record <= count; ++record) {
    const double when = store.DateTime(record);
    if (std::isnan(when) || !after_begin(when) || !before_end(when)) continue;
    if (first == 0) first = record;
    last = record;
  }
  return first != 0;
}

}  // namespace rz
