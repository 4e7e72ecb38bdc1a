// Copyright 2026 The Veltmark authors.
//
// The run's dialog models: the parameter dialog's list of values and its
// answers, and the progress window a user cannot close.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/app_file.h"
#include "platform/headless_toolkit.h"
#include "run/input_dialog.h"
#include "run/recent_filters.h"
#include "support/component_platform.h"
#include "support/error_number.h"
#include "support/temp_folder.h"
#include "ui/input_dialog_form.h"
#include "ui/splash_model.h"

namespace rz {
namespace {

TEST(InputDialogFormTest, TheListHoldsNullAndEachValueOnce) {
  TempFolder folder;
  ComponentPlatform platform;
  MakeApplication(platform, folder.File("a.rzt"),
                  {{"Date"}, {"Time"}, {"Line"}, {"Weight", "N", 5, 1}},
                  {{"2024-03-01", "06:00:00", " B ", 2.5},
                   {"2024-03-01", "07:00:00", "A", Variant::Null()},
                   {"2024-03-01", "08:00:00", Variant::Null(), 2.5},
                   {"2024-03-01", "09:00:00", "B", 1.0}});
  std::shared_ptr<AppFile> file = platform.CreateAppFile();
  file->SetOpenMode(kOpenExisting);
  file->OpenApplication(folder.File("a.rzt"));
  file->Conditions().Add(0, "", 3, "=", "A", "");
  InputDialogSettings settings;
  settings.app_file = file.get();
  settings.variable = 3;
  InputDialogForm lines(settings);
  lines.DropDown();
  lines.DropDown();  // the list is filled once
  std::vector<std::string> texts;
  for (const Variant& item : lines.cboInputList()) {
    texts.push_back(item.ToString());
  }
  // Each value once over every record (the filter emptied), trimmed; the
  // records without a value add nothing.
  EXPECT_EQ(texts, (std::vector<std::string>{"NULL", "A", "B"}));
  EXPECT_EQ(file->Conditions().Count(), 0);
  settings.variable = 4;
  InputDialogForm weights(settings);
  weights.DropDown();
  ASSERT_EQ(weights.cboInputList().size(), 3u);
  EXPECT_EQ(weights.cboInputList()[1].ToDouble(), 1.0);
  EXPECT_EQ(weights.cboInputList()[2].ToDouble(), 2.5);
}

TEST(InputDialogTest, OptionsCancelAndHeights) {
  HeadlessToolkit toolkit;
  InputDialog dialog(toolkit);
  EXPECT_EQ(dialog.Height(), 2130);
  dialog.SetShowOptions(true);
  dialog.SetShowCancel(true);
  EXPECT_EQ(dialog.Height(), 3105);
  dialog.SetDefaultText("typed");
  toolkit.SetModalHandler([](DialogModel& model) {
    auto& form = dynamic_cast<InputDialogForm&>(model);
    EXPECT_TRUE(form.fraOptionsVisible());
    EXPECT_TRUE(form.cmdCancelVisible());
    EXPECT_EQ(form.cboInputText(), "typed");
    form.SelectExcluded(true);
    form.Cancel();
  });
  dialog.ShowDialog(0, 0);
  EXPECT_TRUE(dialog.Cancel());
  EXPECT_EQ(dialog.InputText(), "");
  EXPECT_TRUE(dialog.Excluded());
  toolkit.SetModalHandler(
      [](DialogModel& model) { dynamic_cast<InputDialogForm&>(model).Ok(); });
  dialog.ShowDialog(0, 0);
  EXPECT_FALSE(dialog.Cancel());
  EXPECT_EQ(dialog.InputText(), "typed");
}

TEST(RecentFiltersTest, ItemsByPositionOrKey) {
  RecentFilters list;
  list.Add("Operator", "K. Okafor", "op");
  list.Add("Line", "Line 4");
  EXPECT_EQ(list.Count(), 2);
  EXPECT_EQ(list.Item(Variant("OP"))->FilterText(), "K. Okafor");
  EXPECT_EQ(list.Item(Variant(int16_t{2}))->Key(), "Line");
  EXPECT_EQ(ErrorNumber([&] { list.Item(Variant("none")); }), 5);
  EXPECT_EQ(ErrorNumber([&] { list.Item(Variant(int16_t{3})); }), 5);
  EXPECT_EQ(ErrorNumber([&] { list.Add("x", "y", "Op"); }), 457);
  list.Remove(Variant("op"));
  EXPECT_EQ(list.Count(), 1);
  EXPECT_EQ(list.Enumerate().size(), 1u);
  list.Clear();
  EXPECT_EQ(list.Count(), 0);
}

// The dialog as a host's script reaches it: every member by name, the
// read-only ones refused a value.
TEST(InputDialogTest, EveryMemberIsReachableByName) {
  HeadlessToolkit toolkit;
  InputDialog dialog(toolkit);
  dialog.Put("Title", Variant("Pick"));
  dialog.Put("ShowOptions", Variant(true));
  EXPECT_EQ(dialog.Get("Title"), Variant("Pick"));
  EXPECT_EQ(dialog.Get("Height"), Variant(int32_t{3105}));
  EXPECT_EQ(ErrorNumber([&] { dialog.Put("Cancel", Variant(true)); }), 438);
  EXPECT_EQ(ErrorNumber([&] { dialog.Put("RecentFilters", Variant()); }), 91);
  const Variant list = dialog.Get("RecentFilters");
  ASSERT_TRUE(list.IsObject());
  EXPECT_EQ(list.ToObject(), dialog.Get("RecentFilters").ToObject());
  for (const std::string& member : dialog.MemberNames()) {
    EXPECT_NE(ErrorNumber([&] { dialog.Get(member); }), 438) << member;
  }
}

TEST(SplashModelTest, CentredNotClosableByTheUserAndClosedWithTheRun) {
  HeadlessToolkit toolkit;
  toolkit.SetScreenSize({20000, 10000});
  {
    SplashModel splash(toolkit);
    EXPECT_FALSE(splash.AllowsUserClose());
    splash.Show();
    EXPECT_TRUE(toolkit.IsShown(splash));
    EXPECT_EQ(splash.Left(), (20000 - SplashModel::kSize.width) / 2);
    EXPECT_EQ(splash.Top(), (10000 - SplashModel::kSize.height) / 2);
    splash.YieldToUser();
    EXPECT_EQ(toolkit.DoEventsCount(), 1);
  }  // a run that ends by an error destroys it
  EXPECT_EQ(toolkit.LogOf(HeadlessToolkit::ShownKind::kClose).size(), 1u);
}

}  // namespace
}  // namespace rz
