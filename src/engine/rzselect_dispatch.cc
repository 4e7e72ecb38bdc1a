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

// Accessors of one ViewState field by its conversion kind.
template <int16_t ViewState::*F>
Variant GetInt16(RZselect& e, DispatchArgs&) {
  return e.State().*F;
}
template <int16_t ViewState::*F>
void PutInt16(RZselect& e, const Variant& v, DispatchArgs&) {
  e.State().*F = v.ToInteger();
}
template <int32_t ViewState::*F>
Variant GetInt32(RZselect& e, DispatchArgs&) {
  return e.State().*F;
}
template <int32_t ViewState::*F>
void PutInt32(RZselect& e, const Variant& v, DispatchArgs&) {
  e.State().*F = v.ToLong();
}
template <double ViewState::*F>
Variant GetDouble(RZselect& e, DispatchArgs&) {
  return e.State().*F;
}
template <double ViewState::*F>
void PutDouble(RZselect& e, const Variant& v, DispatchArgs&) {
  e.State().*F = v.ToDouble();
}
template <double ViewState::*F>
Variant GetDate(RZselect& e, DispatchArgs&) {
  return Variant::Date(e.State().*F);
}
template <double ViewState::*F>
void PutDate(RZselect& e, const Variant& v, DispatchArgs&) {
  e.State().*F = v.ToDate();
}
template <std::string ViewState::*F>
Variant GetText(RZselect& e, DispatchArgs&) {
  return e.State().*F;
}
template <std::string ViewState::*F>
void PutText(RZselect& e, const Variant& v, DispatchArgs&) {
  e.State().*F = v.ToString();
}
template <bool ViewState::*F>
Variant GetFlag(RZselect& e, DispatchArgs&) {
  return e.State().*F;
}
template <bool ViewState::*F>
void PutFlag(RZselect& e, const Variant& v, DispatchArgs&) {
  e.State().*F = v.ToBool();
}
// A 16-bit field read and written as a flag (true stored as -1).
template <int16_t ViewState::*F>
Variant GetFlag16(RZselect& e, DispatchArgs&) {
  return e.State().*F != 0;
}
template <int16_t ViewState::*F>
void PutFlag16(RZselect& e, const Variant& v, DispatchArgs&) {
  e.State().*F = v.ToBool() ? int16_t{-1} : int16_t{0};
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
             PutFlag<&ViewState::DisplayPacifier>)
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
                PutText<&ViewState::Filename>)
      .Property("Cancel", GetFlag<&ViewState::Cancel>,
                PutFlag<&ViewState::Cancel>)
      .Property("PlusMinus", GetInt16<&ViewState::PlusMinus>,
                PutInt16<&ViewState::PlusMinus>)
      .Property("SumBy", GetInt16<&ViewState::SumBy>,
                PutInt16<&ViewState::SumBy>)
      .Property("NullPivots", GetInt16<&ViewState::NullPivots>,
                PutInt16<&ViewState::NullPivots>)
      .Property("NullIntervals", GetInt16<&ViewState::NullIntervals>,
                PutInt16<&ViewState::NullIntervals>)
      .Property("ExcludeEmpty", GetInt16<&ViewState::ExcludeEmpty>,
                PutInt16<&ViewState::ExcludeEmpty>)
      .Property("ShiftDuration", GetDouble<&ViewState::ShiftDuration>,
                PutDouble<&ViewState::ShiftDuration>)
      .Property("ShiftStart", GetDouble<&ViewState::ShiftStart>,
                PutDouble<&ViewState::ShiftStart>)
      .Property("YearBegins", GetInt16<&ViewState::YearBegins>,
                PutInt16<&ViewState::YearBegins>)
      .Property("WeekDays", GetInt16<&ViewState::WeekDays>,
                PutInt16<&ViewState::WeekDays>)
      .Property("Interval", GetDouble<&ViewState::Interval>,
                PutDouble<&ViewState::Interval>)
      .Property("ReturnScreen", GetInt32<&ViewState::ReturnScreen>,
                PutInt32<&ViewState::ReturnScreen>)
      .Property("BegDateTime", GetText<&ViewState::BegText>,
                PutDate<&ViewState::BegDate>)
      .Property("EndDateTime", GetText<&ViewState::EndText>,
                PutDate<&ViewState::EndDate>)
      .Property("ReportType", GetInt32<&ViewState::ReportType>,
                PutInt32<&ViewState::ReportType>)
      .Property("ReportHeader", GetText<&ViewState::ReportHeader>,
                PutText<&ViewState::ReportHeader>)
      .Property("ReportFooter", GetText<&ViewState::ReportFooter>,
                PutText<&ViewState::ReportFooter>)
      .Property("ReportNumericOnly", GetFlag16<&ViewState::ReportNumericOnly>,
                PutFlag16<&ViewState::ReportNumericOnly>)
      .Property("ReportIncludeDetails",
                GetFlag16<&ViewState::ReportIncludeDetails>,
                PutFlag16<&ViewState::ReportIncludeDetails>)
      .Property("ReportIncludeColumns",
                GetFlag16<&ViewState::ReportIncludeColumns>,
                PutFlag16<&ViewState::ReportIncludeColumns>)
      .Property("ReportIncludeStatistics",
                GetFlag16<&ViewState::ReportIncludeStatistics>,
                PutFlag16<&ViewState::ReportIncludeStatistics>)
      .Property("ReportIncludeFilter",
                GetFlag16<&ViewState::ReportIncludeFilter>,
                PutFlag16<&ViewState::ReportIncludeFilter>)
      .Property("ReadOnly", GetFlag<&ViewState::ReadOnly>,
                PutFlag<&ViewState::ReadOnly>)
      .Property("FilterRangeType", GetInt32<&ViewState::FilterRangeType>,
                PutInt32<&ViewState::FilterRangeType>)
      .Property("FromType", GetInt32<&ViewState::FromType>,
                PutInt32<&ViewState::FromType>)
      .Property("FromDateTime", GetDate<&ViewState::FromDateTime>,
                PutDate<&ViewState::FromDateTime>)
      .Property("ForwardAmount", GetInt32<&ViewState::ForwardAmount>,
                PutInt32<&ViewState::ForwardAmount>)
      .Property("ForwardUnits", GetInt32<&ViewState::ForwardUnits>,
                PutInt32<&ViewState::ForwardUnits>)
      .Property("ToType", GetInt32<&ViewState::ToType>,
                PutInt32<&ViewState::ToType>)
      .Property("ToDateTime", GetDate<&ViewState::ToDateTime>,
                PutDate<&ViewState::ToDateTime>)
      .Property("BackwardAmount", GetInt32<&ViewState::BackwardAmount>,
                PutInt32<&ViewState::BackwardAmount>)
      .Property("BackwardUnits", GetInt32<&ViewState::BackwardUnits>,
                PutInt32<&ViewState::BackwardUnits>)
      .Property("CurrentViewName", GetText<&ViewState::CurrentViewName>,
                PutText<&ViewState::CurrentViewName>)
      .Property("LastRZTdateTime", GetDate<&ViewState::LastRZTdateTime>,
                PutDate<&ViewState::LastRZTdateTime>)
      .Property("LastRZDdateTime", GetDate<&ViewState::LastRZDdateTime>,
                PutDate<&ViewState::LastRZDdateTime>)
      .Property("UserIdentification", GetText<&ViewState::UserIdentification>,
                PutText<&ViewState::UserIdentification>)
      .Property(
          "RZaccess",
          [](RZselect& e, DispatchArgs&) { return AsObject(e.RZaccess()); },
          [](RZselect& e, const Variant& v, DispatchArgs&) {
            e.SetRZaccess(ObjectOf<AppFile>(v));
          })
      .Property("RunCaption", GetText<&ViewState::RunCaption>,
                PutText<&ViewState::RunCaption>)
      .Property("RunTooltip", GetText<&ViewState::RunTooltip>,
                PutText<&ViewState::RunTooltip>);
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
