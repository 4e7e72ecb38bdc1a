// Copyright 2026 The Veltmark authors.

#include "view/view_state.h"

#include "core/date_time.h"
#include "platform/app_file.h"

namespace rz {

std::shared_ptr<ViewState> NewViewState(std::shared_ptr<Platform> platform) {
  auto state = std::make_shared<ViewState>();
  state->platform = std::move(platform);
  // The lists may outlive the record (a host keeps them): they ask for
  // the rule count through a weak reference.
  ResultFieldTypes::RuleCount rule_count =
      [weak = std::weak_ptr<const ViewState>(state)] {
        auto locked = weak.lock();
        return locked ? ApplicationRuleCount(*locked) : 0;
      };
  state->Where = std::make_shared<WhereTypes>();
  state->ResultField = std::make_shared<ResultFieldTypes>(rule_count);
  state->ReportStatistics = std::make_shared<StatTypes>();
  state->WorkFields = std::make_shared<ResultFieldTypes>(rule_count);
  state->WorkWhere = std::make_shared<WhereTypes>();
  return state;
}

void SetRangeText(ViewState& state) {
  state.BegDate = state.FromDateTime;
  state.EndDate = state.ToDateTime;
  state.BegText = FormatDateTime(state.BegDate);
  state.EndText = FormatDateTime(state.EndDate);
}

int ApplicationRuleCount(const ViewState& state) {
  if (!state.AppFile) return 0;
  return static_cast<int>(state.AppFile->Rules().Count());
}

std::string ViewNameForMessages(const ViewState& state) {
  return state.CurrentViewName.empty() ? "(default settings)"
                                       : state.CurrentViewName;
}

}  // namespace rz
