// Copyright 2026 The Veltmark authors.
//
// The command line's toolkit with the run's dialogs: the run-time question
// asked on the terminal (or refused without a person to answer), and the
// progress line drawn, redrawn and cleared.

#include "common/console_toolkit.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "core/error.h"
#include "platform/headless_toolkit.h"
#include "ui/input_dialog_form.h"
#include "ui/splash_model.h"

namespace rz {
namespace {

// A toolkit reading `input` and writing to a temporary file.
class Terminal {
 public:
  explicit Terminal(const std::string& input, bool interactive)
      : input_(input),
        in_(fmemopen(input_.data(), input_.size(), "r")),
        out_(std::tmpfile()),
        toolkit_(in_, out_, interactive) {}
  ~Terminal() {
    std::fclose(in_);
    std::fclose(out_);
  }

  ConsoleToolkit& Toolkit() { return toolkit_; }
  std::string Written() {
    std::fflush(out_);
    std::rewind(out_);
    std::string text;
    for (int c; (c = std::fgetc(out_)) != EOF;) text += static_cast<char>(c);
    return text;
  }

 private:
  std::string input_;
  std::FILE* in_;
  std::FILE* out_;
  ConsoleToolkit toolkit_;
};

InputDialogForm Question() {
  InputDialogSettings settings;
  settings.title = "Enter Run Time Parameters";
  settings.prompt =
      "Line 4\r\nOperators\r\n\r\nWhere  [Operator]  Is Equal To ...";
  return InputDialogForm(settings);
}

TEST(ConsoleToolkitTest, AQuestionIsAskedOnTheTerminal) {
  Terminal terminal("  K. Okafor \n", true);
  InputDialogForm question = Question();
  terminal.Toolkit().ShowModal(question);
  EXPECT_EQ(question.InputText(), "K. Okafor");
  EXPECT_EQ(terminal.Written(),
            "Enter Run Time Parameters\nLine 4\nOperators\n\nWhere  [Operator]"
            "  Is Equal To ...\n> ");
  Terminal ended("", true);  // the end of input answers nothing
  InputDialogForm unanswered = Question();
  ended.Toolkit().ShowModal(unanswered);
  EXPECT_EQ(unanswered.InputText(), "");
  EXPECT_FALSE(unanswered.Cancelled());
}

TEST(ConsoleToolkitTest, WithoutAPersonTheQuestionIsAnError) {
  Terminal terminal("A\n", false);
  InputDialogForm question = Question();
  try {
    terminal.Toolkit().ShowModal(question);
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), 5);
    EXPECT_NE(error.Description().find("Where  [Operator]"), std::string::npos);
  }
}

TEST(ConsoleToolkitTest, TheProgressLineIsDrawnOnlyWhenAskedFor) {
  for (bool shown : {false, true}) {
    Terminal terminal("", false);
    terminal.Toolkit().SetShowProgress(shown);
    {
      SplashModel splash(terminal.Toolkit());
      splash.Show();
      splash.SetTotal(250);
      splash.SetPosition(50);
      splash.SetMessage("/data/line4.rzt\r\nLoading Veltmark Data - Record 40");
      splash.YieldToUser();
    }
    EXPECT_EQ(terminal.Written(),
              shown ? "\r\033[KLoading Veltmark Data - Record 40  50/250"
                      "\r\033[K"
                    : "")
        << shown;
  }
}

}  // namespace
}  // namespace rz
