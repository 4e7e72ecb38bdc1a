// Copyright 2026 The Veltmark authors.
//
// The Dispatch surface of ApplicationFile ("RZfile" for scripts): every
// AppFile operation under its own name, without regard to case.
// Properties are get/put pairs (the summary settings, which AppFile only
// sets, are write-only); the lists are objects with Count and a 1-based
// Item as their default member, so RZfile.Variables(3).NAME and
// RZfile.Views.Count work. FindDateRange and RestrictStatistics write their
// by-reference arguments back. A script may reopen only its own
// application (RefuseOtherApplicationToScripts).

#include "appfile/application_file.h"
#include "core/error.h"

namespace rz {
namespace {

using Table = DispatchTable<ApplicationFile>;

Variant Done() { return Variant(); }

// A list the object owns, as an object that keeps the ApplicationFile
// alive while a script holds it (when the file itself is shared).
Variant ListObject(ApplicationFile& file, Dispatch& list) {
  return std::shared_ptr<Dispatch>(file.weak_from_this().lock(), &list);
}

// The application file a script passes in (SameStructure).
AppFile& OtherFile(const Variant& value) {
  const std::shared_ptr<Dispatch> object = value.ToObject();
  auto* other = dynamic_cast<AppFile*>(object.get());
  if (other == nullptr) throw Error::TypeMismatch(object->ClassName());
  return *other;
}

void AddOpening(Table& t) {
  t.Property(
       "OpenMode",
       [](ApplicationFile& f, DispatchArgs&) -> Variant {
         return f.OpenMode();
       },
       [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
         f.SetOpenMode(v.ToInteger());
       })
      .Method(
          "OpenApplication",
          [](ApplicationFile& f, DispatchArgs& a) {
            const std::string path = a[0].ToString();
            f.RefuseOtherApplicationToScripts(path);
            f.OpenApplication(path);
            return Done();
          },
          1, 1)
      .Property("ApplicationExists",
                [](ApplicationFile& f, DispatchArgs&) -> Variant {
                  return f.ApplicationExists();
                })
      .Method("CloseApplication", [](ApplicationFile& f, DispatchArgs&) {
        f.CloseApplication();
        return Done();
      });
}

void AddTexts(Table& t) {
  const Table::Getter title = [](ApplicationFile& f, DispatchArgs&) -> Variant {
    return f.AppTitle();
  };
  const Table::Setter set_title = [](ApplicationFile& f, const Variant& v,
                                     DispatchArgs&) {
    f.SetAppTitle(v.ToString());
  };
  t.Property("AppTitle", title, set_title)
      .Property("Title", title, set_title)
      .Property("BasePath",
                [](ApplicationFile& f, DispatchArgs&) -> Variant {
                  return f.BasePath();
                })
      .Property("AppFolder",
                [](ApplicationFile& f, DispatchArgs&) -> Variant {
                  return f.AppFolder();
                })
      .Property("TemplateDateTime",
                [](ApplicationFile& f, DispatchArgs&) -> Variant {
                  return Variant::Date(f.TemplateDateTime());
                })
      .Property("DataDateTime",
                [](ApplicationFile& f, DispatchArgs&) -> Variant {
                  return Variant::Date(f.DataDateTime());
                })
      .Property(
          "ShiftStartText",
          [](ApplicationFile& f, DispatchArgs&) -> Variant {
            return f.ShiftStartText();
          },
          [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
            f.SetShiftStartText(v.ToString());
          })
      .Property(
          "SecuredFunctions",
          [](ApplicationFile& f, DispatchArgs&) -> Variant {
            return f.SecuredFunctions();
          },
          [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
            f.SetSecuredFunctions(v.ToString());
          })
      .Property("TemplateWritable",
                [](ApplicationFile& f, DispatchArgs&) -> Variant {
                  return f.TemplateWritable();
                })
      .Property("TemplateQueries",
                [](ApplicationFile& f, DispatchArgs&) -> Variant {
                  const auto queries = f.TemplateQueries();
                  return VariantArray(queries.begin(), queries.end());
                });
}

void AddNumbers(Table& t) {
  t.Property(
       "DefaultLookBack",
       [](ApplicationFile& f, DispatchArgs&) -> Variant {
         return f.DefaultLookBack();
       },
       [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
         f.SetDefaultLookBack(v.ToInteger());
       })
      .Property(
          "ShiftHours",
          [](ApplicationFile& f, DispatchArgs&) -> Variant {
            return f.ShiftHours();
          },
          [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
            f.SetShiftHours(v.ToDouble());
          })
      .Property(
          "LeadingVariableCount",
          [](ApplicationFile& f, DispatchArgs&) -> Variant {
            return f.LeadingVariableCount();
          },
          [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
            f.SetLeadingVariableCount(v.ToInteger());
          })
      .Property(
          "SpecialVariable1",
          [](ApplicationFile& f, DispatchArgs&) -> Variant {
            return f.SpecialVariable1();
          },
          [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
            f.SetSpecialVariable1(v.ToInteger());
          })
      .Property(
          "SpecialVariable2",
          [](ApplicationFile& f, DispatchArgs&) -> Variant {
            return f.SpecialVariable2();
          },
          [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
            f.SetSpecialVariable2(v.ToInteger());
          })
      .Property(
          "SpecialVariable3",
          [](ApplicationFile& f, DispatchArgs&) -> Variant {
            return f.SpecialVariable3();
          },
          [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
            f.SetSpecialVariable3(v.ToInteger());
          })
      .Property(
          "FileSetting1",
          [](ApplicationFile& f, DispatchArgs&) { return f.FileSetting1(); },
          [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
            f.SetFileSetting1(v);
          })
      .Property(
          "FileSetting2",
          [](ApplicationFile& f, DispatchArgs&) { return f.FileSetting2(); },
          [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
            f.SetFileSetting2(v);
          })
      .Property(
          "FileSetting3",
          [](ApplicationFile& f, DispatchArgs&) { return f.FileSetting3(); },
          [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
            f.SetFileSetting3(v);
          })
      .Property(
          "HeaderItem",
          [](ApplicationFile& f, DispatchArgs& a) {
            return f.HeaderItem(a[0].ToString());
          },
          [](ApplicationFile& f, const Variant& v, DispatchArgs& a) {
            f.SetHeaderItem(a[0].ToString(), v);
          },
          1);
}

void AddLists(Table& t) {
  t.Property("Variables",
             [](ApplicationFile& f, DispatchArgs&) {
               return ListObject(f, dynamic_cast<Dispatch&>(f.Variables()));
             })
      .Property("Rules",
                [](ApplicationFile& f, DispatchArgs&) {
                  return ListObject(f, dynamic_cast<Dispatch&>(f.Rules()));
                })
      .Property("Views",
                [](ApplicationFile& f, DispatchArgs&) {
                  return ListObject(f, dynamic_cast<Dispatch&>(f.Views()));
                })
      .Method(
          "AddRule",
          [](ApplicationFile& f, DispatchArgs& a) {
            // key, name, six texts, two numbers
            Rule rule{a[0].ToString(), a[1].ToString(), {}};
            for (size_t i = 0; i < rule.attributes.texts.size(); ++i) {
              rule.attributes.texts[i] = a[2 + i].ToString();
            }
            rule.attributes.numbers = {a[8].ToDouble(), a[9].ToDouble()};
            f.AddRule(rule);
            return Done();
          },
          10, 10)
      .Method("RefreshViews",
              [](ApplicationFile& f, DispatchArgs&) {
                f.RefreshViews();
                return Done();
              })
      .Property("Conditions",
                [](ApplicationFile& f, DispatchArgs&) {
                  return ListObject(f, dynamic_cast<Dispatch&>(f.Conditions()));
                })
      .Property("SortKeys",
                [](ApplicationFile& f, DispatchArgs&) {
                  return ListObject(f, dynamic_cast<Dispatch&>(f.SortKeys()));
                })
      .Property("SummaryKeys",
                [](ApplicationFile& f, DispatchArgs&) {
                  return ListObject(f,
                                    dynamic_cast<Dispatch&>(f.SummaryKeys()));
                })
      .Property("SummaryCursor",
                [](ApplicationFile& f, DispatchArgs&) {
                  return ListObject(f,
                                    dynamic_cast<Dispatch&>(f.SummaryCursor()));
                })
      .Property("ColumnStatistics", [](ApplicationFile& f, DispatchArgs&) {
        return ListObject(f, dynamic_cast<Dispatch&>(f.ColumnStatistics()));
      });
}

void AddRecords(Table& t) {
  t.Property("RecordCount",
             [](ApplicationFile& f, DispatchArgs&) -> Variant {
               return f.RecordCount();
             })
      .Method("MoveFirst",
              [](ApplicationFile& f, DispatchArgs&) {
                f.MoveFirst();
                return Done();
              })
      .Method("ReadNext",
              [](ApplicationFile& f, DispatchArgs&) -> Variant {
                return f.ReadNext();
              })
      .Method("MoveLast",
              [](ApplicationFile& f, DispatchArgs&) {
                f.MoveLast();
                return Done();
              })
      .Method("ReadPrevious",
              [](ApplicationFile& f, DispatchArgs&) -> Variant {
                return f.ReadPrevious();
              })
      .Method(
          "GotoRecord",
          [](ApplicationFile& f, DispatchArgs& a) {
            f.GotoRecord(a[0].ToLong());
            return Done();
          },
          1, 1)
      .Property(
          "Value",
          [](ApplicationFile& f, DispatchArgs& a) {
            return f.Value(a[0].ToInteger());
          },
          nullptr, 1)
      .Method(
          "DistinctValues",
          [](ApplicationFile& f, DispatchArgs& a) -> Variant {
            return f.DistinctValues(a[0].ToInteger());
          },
          1, 1)
      .Method(
          "SameStructure",
          [](ApplicationFile& f, DispatchArgs& a) -> Variant {
            return f.SameStructure(OtherFile(a[0]));
          },
          1, 1);
}

void AddFilter(Table& t) {
  t.Property("RecordExcluded",
             [](ApplicationFile& f, DispatchArgs&) -> Variant {
               return f.RecordExcluded();
             })
      .Property("RecordIncluded",
                [](ApplicationFile& f, DispatchArgs&) -> Variant {
                  return f.RecordIncluded();
                })
      .Method(
          "FindDateRange",
          [](ApplicationFile& f, DispatchArgs& a) -> Variant {
            bool found = false;
            f.FindDateRange(a[0].ToString(), a[1].ToString(), found);
            if (a.size() > 2) a[2] = found;
            return found;
          },
          2, 3)
      .Property("RangeFirstRecord",
                [](ApplicationFile& f, DispatchArgs&) -> Variant {
                  return f.RangeFirstRecord();
                })
      .Property("RangeLastRecord",
                [](ApplicationFile& f, DispatchArgs&) -> Variant {
                  return f.RangeLastRecord();
                });
}

void AddSummary(Table& t) {
  t.WriteOnly("Summarize", [](ApplicationFile& f, const Variant& v,
                              DispatchArgs&) { f.SetSummarize(v.ToBool()); })
      .WriteOnly("Interval", [](ApplicationFile& f, const Variant& v,
                                DispatchArgs&) { f.SetInterval(v.ToString()); })
      .WriteOnly("NullIntervals",
                 [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
                   f.SetNullIntervals(v.ToBool());
                 })
      .WriteOnly("ShiftDuration",
                 [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
                   f.SetShiftDuration(v.ToDouble());
                 })
      .WriteOnly("ShiftStart",
                 [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
                   f.SetShiftStart(v.ToString());
                 })
      .WriteOnly("PlusMinus",
                 [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
                   f.SetPlusMinus(v.ToInteger());
                 })
      .WriteOnly("WeekDays",
                 [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
                   f.SetWeekDays(v.ToInteger());
                 })
      .WriteOnly("YearBegins",
                 [](ApplicationFile& f, const Variant& v, DispatchArgs&) {
                   f.SetYearBegins(v.ToInteger());
                 })
      .Method("SortFile",
              [](ApplicationFile& f, DispatchArgs&) {
                f.SortFile();
                return Done();
              })
      .Property("EndOfSummary",
                [](ApplicationFile& f, DispatchArgs&) -> Variant {
                  return f.EndOfSummary();
                })
      .Method("NextSummary",
              [](ApplicationFile& f, DispatchArgs&) {
                f.NextSummary();
                return Done();
              })
      .Property("SummaryPosition",
                [](ApplicationFile& f, DispatchArgs&) -> Variant {
                  return f.SummaryPosition();
                })
      .Property("SummaryExtent",
                [](ApplicationFile& f, DispatchArgs&) -> Variant {
                  return f.SummaryExtent();
                })
      .Method(
          "RestrictStatistics",
          [](ApplicationFile& f, DispatchArgs& a) {
            std::string text = a[2].ToString();
            double work = a[5].ToDouble();
            f.RestrictStatistics(a[0].ToLong(), a[1].ToLong(), text,
                                 a[3].ToInteger(), a[4].ToString(), work);
            a[2] = text;
            a[5] = work;
            return Done();
          },
          6, 6);
}

void AddWriting(Table& t) {
  t.Method("AddRecord",
           [](ApplicationFile& f, DispatchArgs&) {
             f.AddRecord();
             return Done();
           })
      .Method(
          "SetValue",
          [](ApplicationFile& f, DispatchArgs& a) {
            f.SetValue(a[0].ToInteger(), a[1]);
            return Done();
          },
          2, 2)
      .Method(
          "SaveRecord",
          [](ApplicationFile& f, DispatchArgs& a) {
            f.SaveRecord(a.empty() ? 0 : a[0].ToLong());
            return Done();
          },
          0, 1);
}

const Table& MemberTable() {
  static const Table table = [] {
    Table t;
    AddOpening(t);
    AddTexts(t);
    AddNumbers(t);
    AddLists(t);
    AddRecords(t);
    AddFilter(t);
    AddSummary(t);
    AddWriting(t);
    return t;
  }();
  return table;
}

}  // namespace

Variant ApplicationFile::Invoke(std::string_view name, InvokeKind kind,
                                DispatchArgs& args) {
  return MemberTable().Invoke(*this, name, kind, args);
}

std::vector<std::string> ApplicationFile::MemberNames() const {
  return MemberTable().Names();
}

}  // namespace rz
