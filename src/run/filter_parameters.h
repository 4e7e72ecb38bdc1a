// Copyright 2026 The Veltmark authors.
//
// The run-time values of a view's filter rows and the filter the
// application file receives (run stages 7 and 8).
//
// SetupForPrompting resolves every row's value into ViewState::PromptValues
// (one entry per row, existing entries kept): a fixed value as written; an
// "@name" value read through the platform's input-file reader (silent,
// three retries; the empty text when it cannot be read); a "?" value asked
// through PromptValue (input_dialog.h) unless PromptValues already holds an
// answer (a host, the command line or an earlier run put it there).
// BuildFilter gives the application the range BegText..EndText as two
// conditions and then every row with its resolved value, tracing each
// condition.
//
// Errors: a row or question naming a variable the application does not
// have raises error 9 naming the view and the row; the errors of the
// application file and the input-file reader reach the caller.

#ifndef RZ_RUN_FILTER_PARAMETERS_H_
#define RZ_RUN_FILTER_PARAMETERS_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace rz {

struct ViewState;

void SetupForPrompting(ViewState& state);
void BuildFilter(ViewState& state);

// The message the question of filter row `row` (1-based) shows: the
// application's title, the view's name, a blank line and the question
// ("Where  [Weight]  Is Greater Than ..."). Error 9 as above.
std::string PromptMessage(ViewState& state, int32_t row);

// The wording of an operator in a question ("Is Greater Than"); "" for an
// operator the question has no words for.
std::string_view OperatorWording(std::string_view condition);

}  // namespace rz

#endif  // RZ_RUN_FILTER_PARAMETERS_H_
