// Copyright 2026 The Veltmark authors.
//
// The late-bound surface of RZselect: the members in their interface order
// (each property's read and write, then the methods), with the automation
// conversion of each property's row. A value that does not convert raises
// its error before anything is stored. LoadView and SaveView called by a
// script that holds the engine reach only the script's own application.

#include "core/error.h"
#include "engine/rzselect.h"
#include "platform/app_file.h"
#include "platform/repository.h"

namespace rz {
namespace {

using Table = DispatchTable<RZselect>;

// Writes go through the engine's typed setters, as a host's do.
template <void (RZselect::*S)(bool)>
void SetBool(RZselect& e, const Variant& v, DispatchArgs&) {
  (e.*S)(v.ToBool());
}
template <void (RZselect::*S)(std::string)>
void SetString(RZselect& e, const Variant& v, DispatchArgs&) {
  (e.*S)(v.ToString());
}
template <void (RZselect::*S)(int16_t)>
void SetInt16(RZselect& e, const Variant& v, DispatchArgs&) {
  (e.*S)(v.ToInteger());
}
template <void (RZselect::*S)(int32_t)>
void SetInt32(RZselect& e, const Variant& v, DispatchArgs&) {
  (e.*S)(v.ToLong());
}
template <void (RZselect::*S)(double)>
void SetDouble(RZselect& e, const Variant& v, DispatchArgs&) {
  (e.*S)(v.ToDouble());
}
template <void (RZselect::*S)(double)>
void SetDate(RZselect& e, const Variant& v, DispatchArgs&) {
  (e.*S)(v.ToDate());
}
template <void (RZselect::*S)(rzScreenTypes)>
void SetScreen(RZselect& e, const Variant& v, DispatchArgs&) {
  (e.*S)(static_cast<rzScreenTypes>(v.ToLong()));
}

// Accessors of one ViewState field by its conversion kind.
template <int16_t ViewState::*F>
Variant GetInt16(RZselect& e, DispatchArgs&) {
  return e.State().*F;
}
template <int32_t ViewState::*F>
Variant GetInt32(RZselect& e, DispatchArgs&) {
  return e.State().*F;
}
template <double ViewState::*F>
Variant GetDouble(RZselect& e, DispatchArgs&) {
  return e.State().*F;
}
template <double ViewState::*F>
Variant GetDate(RZselect& e, DispatchArgs&) {
  return Variant::Date(e.State().*F);
}
template <std::string ViewState::*F>
Variant GetText(RZselect& e, DispatchArgs&) {
  return e.State().*F;
}
template <bool ViewState::*F>
Variant GetFlag(RZselect& e, DispatchArgs&) {
  return e.State().*F;
}
// A 16-bit field read and written as a flag (true stored as -1).
template <int16_t ViewState::*F>
Variant GetFlag16(RZselect& e, DispatchArgs&) {
  return e.State().*F != 0;
}

// The object of an object-valued argument, cast to the expected class;
// Empty and Nothing give null, anything else raises error 13.
template <typename T>
std::shared_ptr<T> ObjectOf(const Variant& value) {
  if (value.IsEmpty()) return nullptr;
  if (!value.IsObject()) throw Error::TypeMismatch(value.ToString());
  std::shared_ptr<Dispatch> dispatch;
  try {
    dispatch = value.ToObject();
  } catch (const Error& error) {
    if (error.Number() == 91) return nullptr;  // Nothing
    throw;
  }
  auto cast = std::dynamic_pointer_cast<T>(dispatch);
  if (!cast) throw Error::TypeMismatch(dispatch->ClassName());
  return cast;
}

Variant AsObject(std::shared_ptr<Dispatch> object) { return Variant(object); }

void AddProperties(Table& t) {
  t.Property("DisplayPacifier", GetFlag<&ViewState::DisplayPacifier>,
             SetBool<&RZselect::SetDisplayPacifier>)
      .Property(
          "Where",
          [](RZselect& e, DispatchArgs&) { return AsObject(e.Where()); },
          [](RZselect& e, const Variant& v, DispatchArgs&) {
            e.SetWhere(ObjectOf<WhereTypes>(v));
          })
      .Property(
          "ReportStatistics",
          [](RZselect& e, DispatchArgs&) {
            return AsObject(e.ReportStatistics());
          },
          [](RZselect& e, const Variant& v, DispatchArgs&) {
            e.SetReportStatistics(ObjectOf<StatTypes>(v));
          })
      .Property(
          "ResultField",
          [](RZselect& e, DispatchArgs&) { return AsObject(e.ResultField()); },
          [](RZselect& e, const Variant& v, DispatchArgs&) {
            e.SetResultField(ObjectOf<ResultFieldTypes>(v));
          })
      .Property(
          "DataSource",
          [](RZselect& e, DispatchArgs&) { return AsObject(e.DataSource()); },
          [](RZselect& e, const Variant& v, DispatchArgs&) {
            e.SetDataSource(ObjectOf<Repository>(v));
          })
      .Property("Filename", GetText<&ViewState::Filename>,
                SetString<&RZselect::SetFilename>)
      .Property("Cancel", GetFlag<&ViewState::Cancel>,
                SetBool<&RZselect::SetCancel>)
      .Property("PlusMinus", GetInt16<&ViewState::PlusMinus>,
                SetInt16<&RZselect::SetPlusMinus>)
      .Property("SumBy", GetInt16<&ViewState::SumBy>,
                SetInt16<&RZselect::SetSumBy>)
      .Property("NullPivots", GetInt16<&ViewState::NullPivots>,
                SetInt16<&RZselect::SetNullPivots>)
      .Property("NullIntervals", GetInt16<&ViewState::NullIntervals>,
                SetInt16<&RZselect::SetNullIntervals>)
      .Property("ExcludeEmpty", GetInt16<&ViewState::ExcludeEmpty>,
                SetInt16<&RZselect::SetExcludeEmpty>)
      .Property("ShiftDuration", GetDouble<&ViewState::ShiftDuration>,
                SetDouble<&RZselect::SetShiftDuration>)
      .Property("ShiftStart", GetDouble<&ViewState::ShiftStart>,
                SetDouble<&RZselect::SetShiftStart>)
      .Property("YearBegins", GetInt16<&ViewState::YearBegins>,
                SetInt16<&RZselect::SetYearBegins>)
      .Property("WeekDays", GetInt16<&ViewState::WeekDays>,
                SetInt16<&RZselect::SetWeekDays>)
      .Property("Interval", GetDouble<&ViewState::Interval>,
                SetDouble<&RZselect::SetInterval>)
      .Property("ReturnScreen", GetInt32<&ViewState::ReturnScreen>,
                SetScreen<&RZselect::SetReturnScreen>)
      .Property("BegDateTime", GetText<&ViewState::BegText>,
                SetDate<&RZselect::SetBegDateTime>)
      .Property("EndDateTime", GetText<&ViewState::EndText>,
                SetDate<&RZselect::SetEndDateTime>)
      .Property("ReportType", GetInt32<&ViewState::ReportType>,
                SetInt32<&RZselect::SetReportType>)
      .Property("ReportHeader", GetText<&ViewState::ReportHeader>,
                SetString<&RZselect::SetReportHeader>)
      .Property("ReportFooter", GetText<&ViewState::ReportFooter>,
                SetString<&RZselect::SetReportFooter>)
      .Property("ReportNumericOnly", GetFlag16<&ViewState::ReportNumericOnly>,
                SetBool<&RZselect::SetReportNumericOnly>)
      .Property("ReportIncludeDetails",
                GetFlag16<&ViewState::ReportIncludeDetails>,
                SetBool<&RZselect::SetReportIncludeDetails>)
      .Property("ReportIncludeColumns",
                GetFlag16<&ViewState::ReportIncludeColumns>,
                SetBool<&RZselect::SetReportIncludeColumns>)
      .Property("ReportIncludeStatistics",
                GetFlag16<&ViewState::ReportIncludeStatistics>,
                SetBool<&RZselect::SetReportIncludeStatistics>)
      .Property("ReportIncludeFilter",
                GetFlag16<&ViewState::ReportIncludeFilter>,
                SetBool<&RZselect::SetReportIncludeFilter>)
      .Property("ReadOnly", GetFlag<&ViewState::ReadOnly>,
                SetBool<&RZselect::SetReadOnly>)
      .Property("FilterRangeType", GetInt32<&ViewState::FilterRangeType>,
                SetInt32<&RZselect::SetFilterRangeType>)
      .Property("FromType", GetInt32<&ViewState::FromType>,
                SetInt32<&RZselect::SetFromType>)
      .Property("FromDateTime", GetDate<&ViewState::FromDateTime>,
                SetDate<&RZselect::SetFromDateTime>)
      .Property("ForwardAmount", GetInt32<&ViewState::ForwardAmount>,
                SetInt32<&RZselect::SetForwardAmount>)
      .Property("ForwardUnits", GetInt32<&ViewState::ForwardUnits>,
                SetInt32<&RZselect::SetForwardUnits>)
      .Property("ToType", GetInt32<&ViewState::ToType>,
                SetInt32<&RZselect::SetToType>)
      .Property("ToDateTime", GetDate<&ViewState::ToDateTime>,
                SetDate<&RZselect::SetToDateTime>)
      .Property("BackwardAmount", GetInt32<&ViewState::BackwardAmount>,
                SetInt32<&RZselect::SetBackwardAmount>)
      .Property("BackwardUnits", GetInt32<&ViewState::BackwardUnits>,
                SetInt32<&RZselect::SetBackwardUnits>)
      .Property("CurrentViewName", GetText<&ViewState::CurrentViewName>,
                SetString<&RZselect::SetCurrentViewName>)
      .Property("LastRZTdateTime", GetDate<&ViewState::LastRZTdateTime>,
                SetDate<&RZselect::SetLastRZTdateTime>)
      .Property("LastRZDdateTime", GetDate<&ViewState::LastRZDdateTime>,
                SetDate<&RZselect::SetLastRZDdateTime>)
      .Property("UserIdentification", GetText<&ViewState::UserIdentification>,
                SetString<&RZselect::SetUserIdentification>)
      .Property(
          "RZaccess",
          [](RZselect& e, DispatchArgs&) { return AsObject(e.RZaccess()); },
          [](RZselect& e, const Variant& v, DispatchArgs&) {
            e.SetRZaccess(ObjectOf<AppFile>(v));
          })
      .Property("RunCaption", GetText<&ViewState::RunCaption>,
                SetString<&RZselect::SetRunCaption>)
      .Property("RunTooltip", GetText<&ViewState::RunTooltip>,
                SetString<&RZselect::SetRunTooltip>);
}

std::string TextArgument(const DispatchArgs& args, size_t index) {
  return args.size() > index ? args[index].ToString() : std::string();
}

void AddMethods(Table& t) {
  t.Method(
       "Initialize",
       [](RZselect& e, DispatchArgs& a) {
         e.Initialize(!a.empty() && a[0].ToBool());
         return Variant();
       },
       0, 1)
      .Method(
          "LoadView",
          [](RZselect& e, DispatchArgs& a) {
            e.RefuseOtherApplicationToScripts("LoadView", "");
            e.LoadView(a[0].ToString());
            return Variant();
          },
          1, 1)
      .Method(
          "SaveView",
          [](RZselect& e, DispatchArgs& a) {
            const std::string base_path = TextArgument(a, 1);
            e.RefuseOtherApplicationToScripts("SaveView", base_path);
            e.SaveView(a[0].ToString(), base_path);
            return Variant();
          },
          1, 2)
      .Method(
          "Show",
          [](RZselect& e, DispatchArgs& a) {
            const int32_t tab = a.size() > 1 ? a[1].ToLong() : SelectTabViews;
            e.Show(ObjectOf<Repository>(a[0]), static_cast<rzSelectTabs>(tab));
            return Variant();
          },
          1, 2)
      .Method(
          "Refresh",
          [](RZselect& e, DispatchArgs& a) {
            e.Refresh(ObjectOf<Repository>(a[0]),
                      a.size() > 1 && a[1].ToBool());
            return Variant();
          },
          1, 2)
      .Method(
          "SaveRepository",
          [](RZselect& e, DispatchArgs& a) {
            e.SaveRepository(ObjectOf<Repository>(a[0]), a[1].ToString());
            return Variant();
          },
          2, 2)
      .Method(
          "CheckSecurity",
          [](RZselect& e, DispatchArgs& a) -> Variant {
            return e.CheckSecurity(a[0].ToString());
          },
          1, 1)
      .Method("GetScriptModules",
              [](RZselect& e, DispatchArgs&) { return e.GetScriptModules(); })
      .Method(
          "ExecuteScriptModule",
          [](RZselect& e, DispatchArgs& a) {
            e.ExecuteScriptModule(a[0].ToString(), ObjectOf<Dispatch>(a[1]),
                                  ObjectOf<Dispatch>(a[2]));
            return Variant();
          },
          3, 3)
      .Method("ReleaseObject", [](RZselect& e, DispatchArgs&) {
        e.ReleaseObject();
        return Variant();
      });
}

const Table& EngineTable() {
  static const Table* table = [] {
    auto* t = new Table;
    AddProperties(*t);
    AddMethods(*t);
    return t;
  }();
  return *table;
}

}  // namespace

Variant RZselect::Invoke(std::string_view name, InvokeKind kind,
                         DispatchArgs& args) {
  return EngineTable().Invoke(*this, name, kind, args);
}

std::vector<std::string> RZselect::MemberNames() const {
  return EngineTable().Names();
}

}  // namespace rz
