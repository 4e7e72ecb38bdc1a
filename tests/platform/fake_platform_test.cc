// Copyright 2026 The Veltmark authors.

#include "support/fake_platform.h"

#include <gtest/gtest.h>

namespace rz {
namespace {

TEST(FakePlatformTest, AppFilesOpenTheApplicationsOnItsDisk) {
  FakePlatform platform;
  FakeApplication& app = platform.AddApplication("/apps/a.rzt");
  app.app_title = "A";
  auto file = platform.CreateAppFile();
  file->SetOpenMode(kOpenExisting);
  file->OpenApplication("/apps/a.rzt");
  EXPECT_TRUE(file->ApplicationExists());
  EXPECT_EQ(file->AppTitle(), "A");
  auto second = platform.CreateAppFile();
  ASSERT_EQ(platform.AppFiles().size(), 2u);
  EXPECT_EQ(platform.AppFiles()[1], second);
}

TEST(FakePlatformTest, TraceSinkIsFoundOnlyWhileRunningAndCounted) {
  FakePlatform platform;
  EXPECT_EQ(platform.FindTraceSink(), nullptr);
  platform.SetTraceSinkRunning(true);
  auto sink = platform.FindTraceSink();
  ASSERT_NE(sink, nullptr);
  sink->Send("rzselect", "RZselectClass", "Initialize", "Started");
  EXPECT_EQ(platform.FindTraceSinkCalls(), 2);
  ASSERT_EQ(platform.TraceRecords().size(), 1u);
  EXPECT_EQ(platform.TraceRecords()[0],
            (FakePlatform::TraceRecord{"rzselect", "RZselectClass",
                                       "Initialize", "Started"}));
}

TEST(FakePlatformTest, InputFilesSucceedOnlyForKnownNames) {
  FakePlatform platform;
  platform.SetInputFile("batch.txt", "B-17");
  auto reader = platform.CreateInputFileReader();
  reader->SetSilent(true);
  reader->SetRetries(3);
  EXPECT_EQ(reader->ReadInputFile("batch.txt"), "B-17");
  EXPECT_TRUE(reader->Success());
  EXPECT_EQ(reader->ReadInputFile("missing.txt"), "");
  EXPECT_FALSE(reader->Success());
  const auto& fake = *platform.InputFileReaders().back();
  EXPECT_EQ(fake.Requests(),
            (std::vector<std::string>{"batch.txt", "missing.txt"}));
  EXPECT_EQ(fake.Attempts(), 1 + 4);  // one hit, then one try and 3 retries
}

TEST(FakePlatformTest, NoScriptEngineUnlessAFactoryIsSet) {
  FakePlatform platform;
  EXPECT_EQ(platform.CreateScriptEngine(), nullptr);
}

TEST(FakePlatformTest, ClockAndToolkitAreTheTests) {
  FakePlatform platform;
  platform.SetNow(39000.5);
  EXPECT_EQ(platform.Now(), 39000.5);
  platform.Headless().QueueMessageAnswer(MessageAnswer::kNo);
  EXPECT_EQ(platform.UserInterface().MessageBox("t", "x", MessageIcon::kNone,
                                                MessageButtons::kYesNo),
            MessageAnswer::kNo);
}

}  // namespace
}  // namespace rz
