// Copyright 2026 The Veltmark authors.
//
// The shape of a filter condition list: how its conditions group and join,
// as a tree whose leaves are condition indexes. The filter
// (condition_filter.h) compiles each leaf and evaluates the tree.
//
// Rules:
//   - each condition contributes its opening brackets (Par1, any number of
//     "("), its own test, then its closing brackets (Par2, any number of
//     ")"); blanks in the bracket texts are ignored;
//   - between two conditions stands the later one's connective: 1 And, 0
//     ("none") And as well, 2 Or, and any other value Or, as the trace
//     writes it; the first condition's connective is not used;
//   - And binds tighter than Or; brackets group;
//   - when the first condition opens a bracket that closes before the last
//     condition, that leading group is joined with And to one group made of
//     everything after it, whatever the connective after the group says:
//     (leading group) And (rest). The run puts its date range there, so no
//     row joined with Or can bring in records outside the range.
//
// Errors: 5 "Filter brackets do not balance" when the brackets do not pair
// up (a ")" before its "(", or a "(" never closed); 5 naming the text when a
// bracket field holds anything but brackets and blanks.

#ifndef RZ_APPFILE_CONDITION_PARSER_H_
#define RZ_APPFILE_CONDITION_PARSER_H_

#include <cstdint>
#include <vector>

#include "platform/app_file.h"

namespace rz {

struct FilterNode {
  enum class Kind : uint8_t { kLeaf, kAnd, kOr };
  Kind kind = Kind::kLeaf;
  int32_t condition = 0;    // kLeaf: 0-based index into the list
  int32_t first_child = 0;  // kAnd/kOr: FilterTree::children range
  int32_t child_count = 0;
};

struct FilterTree {
  std::vector<FilterNode> nodes;
  std::vector<int32_t> children;  // node indexes, grouped per parent
  int32_t root = -1;              // -1 for an empty list
};

FilterTree ParseConditionShape(const std::vector<Condition>& conditions);

}  // namespace rz

#endif  // RZ_APPFILE_CONDITION_PARSER_H_
