// Copyright 2026 The Veltmark authors.
//
// Every member an object lists for scripts (MemberNames, which JScript
// enumerates and `rzselect scripts` users read about) can be reached by
// that name: the engine, the real application file and repository with
// their lists, and the run's dialog. Reaching a member may fail for its
// arguments or its state, never with 438 (no such member).

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/error.h"
#include "engine/rzselect.h"
#include "platform/repository.h"
#include "run/input_dialog.h"
#include "support/component_platform.h"
#include "support/temp_folder.h"

namespace rz {
namespace {

int InvokeError(Dispatch& object, const std::string& member, InvokeKind kind,
                DispatchArgs args) {
  try {
    object.Invoke(member, kind, args);
  } catch (const Error& error) {
    return error.Number();
  }
  return 0;
}

// A member is reached by reading or calling it, or (write-only) writing it.
int ReachError(Dispatch& object, const std::string& member) {
  const int read = InvokeError(object, member, InvokeKind::kGet, {});
  if (read != 438) return read;
  return InvokeError(object, member, InvokeKind::kPut, {Variant()});
}

TEST(DispatchMembersTest, EveryListedMemberIsReachable) {
  TempFolder folder;
  auto platform = std::make_shared<ComponentPlatform>();
  MakeApplication(*platform, folder.File("a.rzt"),
                  {{"Date"}, {"Time"}, {"Weight", "N", 5, 1}},
                  {{"2024-03-01", "06:00:00", 1.5}});
  auto engine = RZselect::Create(platform);
  engine->SetFilename(folder.File("a.rzt"));
  engine->Initialize();
  std::shared_ptr<Repository> repository = platform->CreateRepository();
  engine->Refresh(repository, false);
  const std::shared_ptr<AppFile> app = engine->RZaccess();
  InputDialog dialog(platform->Toolkit());

  std::vector<std::shared_ptr<Dispatch>> objects = {
      engine,
      app,
      repository,
      repository->Fields().Item(3),
      app->Variables().Item(3),
      dialog.RecentFilters(),
  };
  for (const char* list :
       {"Variables", "Rules", "Views", "Conditions", "SortKeys", "SummaryKeys",
        "SummaryCursor", "ColumnStatistics"}) {
    objects.push_back(app->Get(list).ToObject());
  }
  for (const char* list : {"Fields", "RuleCatalogue", "StatisticsCatalogue"}) {
    objects.push_back(repository->Get(list).ToObject());
  }
  for (const std::shared_ptr<Dispatch>& object : objects) {
    ASSERT_TRUE(object);
    for (const std::string& member : object->MemberNames()) {
      // Methods that would end the objects' use are not called.
      if (member == "ReleaseObject" || member == "CloseApplication" ||
          member == "ResetRepository" || member == "Reset" ||
          member == "Clear" || member == "Initialize") {
        continue;
      }
      EXPECT_NE(ReachError(*object, member), 438)
          << object->ClassName() << "." << member;
    }
  }
  for (const std::string& member : dialog.MemberNames()) {
    if (member == "ShowDialog") continue;
    EXPECT_NE(ReachError(dialog, member), 438) << "InputDialog." << member;
  }
}

}  // namespace
}  // namespace rz
