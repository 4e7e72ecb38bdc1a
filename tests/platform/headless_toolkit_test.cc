// Copyright 2026 The Veltmark authors.

#include "platform/headless_toolkit.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "support/error_number.h"

namespace rz {
namespace {

using Kind = HeadlessToolkit::ShownKind;

class NamedModel : public DialogModel {
 public:
  explicit NamedModel(std::string name) : name_(std::move(name)) {}
  std::string_view Name() const override { return name_; }

 private:
  std::string name_;
};

TEST(IsAnswerOfTest, EachAnswerBelongsOnlyToItsButtons) {
  struct Row {
    MessageAnswer answer;
    MessageButtons buttons;
    bool belongs;
  };
  const Row rows[] = {
      {MessageAnswer::kOk, MessageButtons::kOk, true},
      {MessageAnswer::kCancel, MessageButtons::kOk, false},
      {MessageAnswer::kYes, MessageButtons::kOk, false},
      {MessageAnswer::kNo, MessageButtons::kOk, false},
      {MessageAnswer::kOk, MessageButtons::kOkCancel, true},
      {MessageAnswer::kCancel, MessageButtons::kOkCancel, true},
      {MessageAnswer::kYes, MessageButtons::kOkCancel, false},
      {MessageAnswer::kNo, MessageButtons::kOkCancel, false},
      {MessageAnswer::kOk, MessageButtons::kYesNo, false},
      {MessageAnswer::kCancel, MessageButtons::kYesNo, false},
      {MessageAnswer::kYes, MessageButtons::kYesNo, true},
      {MessageAnswer::kNo, MessageButtons::kYesNo, true},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(IsAnswerOf(row.answer, row.buttons), row.belongs)
        << AnswerName(row.answer) << " for buttons "
        << static_cast<int>(row.buttons);
  }
}

TEST(MessageFlagsTest, ScriptFlagsChooseButtonsAndIcon) {
  const struct {
    int32_t flags;
    MessageButtons buttons;
    MessageIcon icon;
  } cases[] = {
      {0, MessageButtons::kOk, MessageIcon::kNone},
      {1, MessageButtons::kOkCancel, MessageIcon::kNone},
      {2, MessageButtons::kOkCancel, MessageIcon::kNone},  // abort/retry/ignore
      {3, MessageButtons::kYesNo, MessageIcon::kNone},     // yes/no/cancel
      {4 + 32, MessageButtons::kYesNo, MessageIcon::kQuestion},
      {5 + 16, MessageButtons::kOkCancel, MessageIcon::kCritical},
      {6 + 48, MessageButtons::kOk, MessageIcon::kExclamation},
      {7 + 64 + 256, MessageButtons::kOk, MessageIcon::kInformation},
      {80, MessageButtons::kOk, MessageIcon::kNone},  // 0x50: no icon
  };
  for (const auto& c : cases) {
    EXPECT_EQ(MessageButtonsOfFlags(c.flags), c.buttons) << c.flags;
    EXPECT_EQ(MessageIconOfFlags(c.flags), c.icon) << c.flags;
  }
  EXPECT_EQ(MessageAnswerCode(MessageAnswer::kOk), 1);
  EXPECT_EQ(MessageAnswerCode(MessageAnswer::kCancel), 2);
  EXPECT_EQ(MessageAnswerCode(MessageAnswer::kYes), 6);
  EXPECT_EQ(MessageAnswerCode(MessageAnswer::kNo), 7);
}

TEST(HeadlessToolkitTest, EmptyQueueAnswersTheFirstButton) {
  struct Row {
    MessageButtons buttons;
    MessageAnswer expected;
  };
  const Row rows[] = {{MessageButtons::kOk, MessageAnswer::kOk},
                      {MessageButtons::kOkCancel, MessageAnswer::kOk},
                      {MessageButtons::kYesNo, MessageAnswer::kYes}};
  for (const Row& row : rows) {
    HeadlessToolkit toolkit;
    EXPECT_EQ(toolkit.MessageBox("t", "x", MessageIcon::kNone, row.buttons),
              row.expected)
        << static_cast<int>(row.buttons);
  }
}

TEST(HeadlessToolkitTest, ScriptedAnswersAreUsedInOrderThenTheDefault) {
  HeadlessToolkit toolkit;
  toolkit.QueueMessageAnswer(MessageAnswer::kNo);
  toolkit.QueueMessageAnswer(MessageAnswer::kCancel);
  EXPECT_EQ(toolkit.PendingAnswers(), 2u);

  EXPECT_EQ(toolkit.MessageBox("Delete View", "Are you sure? ",
                               MessageIcon::kQuestion, MessageButtons::kYesNo),
            MessageAnswer::kNo);
  EXPECT_EQ(toolkit.MessageBox("Run", "Go on?", MessageIcon::kQuestion,
                               MessageButtons::kOkCancel),
            MessageAnswer::kCancel);
  EXPECT_EQ(toolkit.PendingAnswers(), 0u);
  EXPECT_EQ(toolkit.MessageBox("Again", "?", MessageIcon::kQuestion,
                               MessageButtons::kYesNo),
            MessageAnswer::kYes);
}

TEST(HeadlessToolkitTest, AnswerThatIsNotAButtonIsRefusedAndKept) {
  HeadlessToolkit toolkit;
  toolkit.QueueMessageAnswer(MessageAnswer::kYes);
  EXPECT_EQ(ErrorNumber([&] {
              toolkit.MessageBox(
                  "Save View", "Error - Please enter a View Name.",
                  MessageIcon::kExclamation, MessageButtons::kOk);
            }),
            5);
  EXPECT_TRUE(toolkit.Log().empty());
  EXPECT_EQ(toolkit.PendingAnswers(), 1u);
  EXPECT_EQ(toolkit.MessageBox("q", "?", MessageIcon::kQuestion,
                               MessageButtons::kYesNo),
            MessageAnswer::kYes);
}

TEST(HeadlessToolkitTest, EachKindOfQuestionHasItsOwnQueue) {
  HeadlessToolkit toolkit;
  toolkit.QueueInputAnswer("42");
  toolkit.QueueFileAnswer(std::nullopt);
  toolkit.QueueFileAnswer("/data/other.rzt");

  // The queued input and file answers do not answer a message box.
  EXPECT_EQ(
      toolkit.MessageBox("t", "x", MessageIcon::kNone, MessageButtons::kYesNo),
      MessageAnswer::kYes);
  EXPECT_EQ(toolkit.OpenFileDialog("Import", "/data", "*.rzt"), std::nullopt);
  EXPECT_EQ(toolkit.InputBox("Value?", "Enter", "7"), "42");
  EXPECT_EQ(toolkit.OpenFileDialog("Import", "/data", "*.rzt"),
            "/data/other.rzt");
  // Queues empty: input cancelled, no file.
  EXPECT_EQ(toolkit.InputBox("Value?", "Enter", "7"), "");
  EXPECT_EQ(toolkit.OpenFileDialog("Import", "/data", "*.rzt"), std::nullopt);
}

TEST(HeadlessToolkitTest, LogKeepsEverythingShownInOrder) {
  HeadlessToolkit toolkit;
  toolkit.QueueMessageAnswer(MessageAnswer::kNo);
  toolkit.QueueFileAnswer("/a/b.rzt");
  toolkit.MessageBox("Delete View", "Are you sure? ", MessageIcon::kQuestion,
                     MessageButtons::kYesNo);
  toolkit.InputBox("Where [Weight]", "Enter Run Time Parameters", "NULL");
  toolkit.OpenFileDialog("Import View", "/a/", "Apps|*.rzt");

  const auto& log = toolkit.Log();
  ASSERT_EQ(log.size(), 3u);
  EXPECT_EQ(log[0].kind, Kind::kMessageBox);
  EXPECT_EQ(log[0].title, "Delete View");
  EXPECT_EQ(log[0].text, "Are you sure? ");
  EXPECT_EQ(log[0].icon, MessageIcon::kQuestion);
  EXPECT_EQ(log[0].buttons, MessageButtons::kYesNo);
  EXPECT_EQ(log[0].answer, "No");

  EXPECT_EQ(log[1].kind, Kind::kInputBox);
  EXPECT_EQ(log[1].title, "Enter Run Time Parameters");
  EXPECT_EQ(log[1].text, "Where [Weight]");
  EXPECT_EQ(log[1].detail, "NULL");
  EXPECT_EQ(log[1].answer, "");

  EXPECT_EQ(log[2].kind, Kind::kOpenFileDialog);
  EXPECT_EQ(log[2].text, "/a/");
  EXPECT_EQ(log[2].detail, "Apps|*.rzt");
  EXPECT_EQ(log[2].answer, "/a/b.rzt");

  EXPECT_EQ(toolkit.LogOf(Kind::kInputBox).size(), 1u);
  toolkit.ClearLog();
  EXPECT_TRUE(toolkit.Log().empty());
}

TEST(HeadlessToolkitTest, ShowModalRunsTheHandlerWhileTheModelIsShown) {
  HeadlessToolkit toolkit;
  NamedModel wizard("frmSelect");
  NamedModel picker("frmPickView");
  bool wizard_shown_in_handler = false;
  bool picker_shown_in_nested = false;
  toolkit.SetModalHandler([&](DialogModel& model) {
    if (&model == &wizard) {
      wizard_shown_in_handler = toolkit.IsShown(wizard);
      toolkit.ShowModal(picker);  // a dialog over the wizard
      toolkit.Close(wizard);      // the user presses Run
    } else {
      picker_shown_in_nested =
          toolkit.IsShown(picker) && toolkit.IsShown(wizard);
    }
  });

  toolkit.ShowModal(wizard);

  EXPECT_TRUE(wizard_shown_in_handler);
  EXPECT_TRUE(picker_shown_in_nested);
  EXPECT_FALSE(toolkit.IsShown(wizard));
  EXPECT_FALSE(toolkit.IsShown(picker));
  const auto& log = toolkit.Log();
  ASSERT_EQ(log.size(), 3u);
  EXPECT_EQ(log[0].kind, Kind::kModal);
  EXPECT_EQ(log[0].title, "frmSelect");
  EXPECT_EQ(log[1].kind, Kind::kModal);
  EXPECT_EQ(log[1].title, "frmPickView");
  EXPECT_EQ(log[2].kind, Kind::kClose);
  EXPECT_EQ(log[2].title, "frmSelect");
}

TEST(HeadlessToolkitTest, HandlerFailureLeavesTheModelClosed) {
  HeadlessToolkit toolkit;
  NamedModel dialog("frmInputDialog");
  toolkit.SetModalHandler(
      [](DialogModel&) { throw std::runtime_error("pressed nothing"); });
  EXPECT_THROW(toolkit.ShowModal(dialog), std::runtime_error);
  EXPECT_FALSE(toolkit.IsShown(dialog));
}

TEST(HeadlessToolkitTest, ModelessModelStaysShownUntilClosed) {
  HeadlessToolkit toolkit;
  NamedModel splash("frmSplash");
  NamedModel other("frmPopCal");
  toolkit.ShowModeless(splash);
  EXPECT_TRUE(toolkit.IsShown(splash));
  toolkit.Close(other);  // never shown: nothing happens, nothing logged
  EXPECT_EQ(toolkit.Log().size(), 1u);
  toolkit.Close(splash);
  EXPECT_FALSE(toolkit.IsShown(splash));
  toolkit.Close(splash);  // already closed
  ASSERT_EQ(toolkit.Log().size(), 2u);
  EXPECT_EQ(toolkit.Log()[1].kind, Kind::kClose);
}

TEST(HeadlessToolkitTest, CountsEventsAndBusyPointerAndKeepsScreenSize) {
  HeadlessToolkit toolkit;
  EXPECT_EQ(toolkit.ScreenSize(), HeadlessToolkit::kDefaultScreen);
  toolkit.SetScreenSize({15360, 11520});
  EXPECT_EQ(toolkit.ScreenSize(), (TwipSize{15360, 11520}));

  toolkit.DoEvents();
  toolkit.DoEvents();
  EXPECT_EQ(toolkit.DoEventsCount(), 2);

  toolkit.SetBusy(true);
  toolkit.SetBusy(true);  // still on: not a second switch
  EXPECT_TRUE(toolkit.Busy());
  toolkit.SetBusy(false);
  EXPECT_FALSE(toolkit.Busy());
  toolkit.SetBusy(true);
  EXPECT_EQ(toolkit.BusyCount(), 2);
}

}  // namespace
}  // namespace rz
