// Copyright 2026 The Veltmark authors.

#include "run/input_dialog.h"

#include "core/error.h"
#include "platform/app_file.h"
#include "platform/platform.h"
#include "platform/toolkit.h"
#include "ui/input_dialog_form.h"
#include "view/view_state.h"

namespace rz {
namespace {

const DispatchTable<InputDialog>& Members() {
  using D = InputDialog;
  using A = DispatchArgs;
  static const auto* table = [] {
    auto* t = new DispatchTable<D>;
    t->Property(
         "Variable", [](D& d, A&) -> Variant { return d.Variable(); },
         [](D& d, const Variant& v, A&) { d.SetVariable(v.ToLong()); })
        .Property(
            "RZFile",
            [](D& d, A&) -> Variant {
              return std::shared_ptr<Dispatch>(d.RZFile());
            },
            [](D& d, const Variant& v, A&) {
              d.SetRZFile(std::dynamic_pointer_cast<AppFile>(v.ToObject()));
            })
        .Property(
            "RecentFilters",
            [](D& d, A&) -> Variant {
              return std::shared_ptr<Dispatch>(d.RecentFilters());
            },
            [](D& d, const Variant& v, A&) {
              d.SetRecentFilters(
                  std::dynamic_pointer_cast<RecentFilters>(v.ToObject()));
            })
        .Property(
            "InputText", [](D& d, A&) -> Variant { return d.InputText(); },
            [](D& d, const Variant& v, A&) { d.SetInputText(v.ToString()); })
        .Property(
            "DefaultText", [](D& d, A&) -> Variant { return d.DefaultText(); },
            [](D& d, const Variant& v, A&) { d.SetDefaultText(v.ToString()); })
        .Property("Cancel", [](D& d, A&) -> Variant { return d.Cancel(); })
        .Property(
            "Prompt", [](D& d, A&) -> Variant { return d.Prompt(); },
            [](D& d, const Variant& v, A&) { d.SetPrompt(v.ToString()); })
        .Property(
            "Title", [](D& d, A&) -> Variant { return d.Title(); },
            [](D& d, const Variant& v, A&) { d.SetTitle(v.ToString()); })
        .Method(
            "ShowDialog",
            [](D& d, A& a) -> Variant {
              d.ShowDialog(static_cast<float>(a[0].ToDouble()),
                           static_cast<float>(a[1].ToDouble()));
              return Variant();
            },
            2, 2)
        .Property(
            "ShowOptions", [](D& d, A&) -> Variant { return d.ShowOptions(); },
            [](D& d, const Variant& v, A&) { d.SetShowOptions(v.ToBool()); })
        .Property(
            "Excluded", [](D& d, A&) -> Variant { return d.Excluded(); },
            [](D& d, const Variant& v, A&) { d.SetExcluded(v.ToBool()); })
        .Property("Width", [](D& d, A&) -> Variant { return d.Width(); })
        .Property("Height", [](D& d, A&) -> Variant { return d.Height(); })
        .Property(
            "ShowCancel", [](D& d, A&) -> Variant { return d.ShowCancel(); },
            [](D& d, const Variant& v, A&) { d.SetShowCancel(v.ToBool()); });
    return t;
  }();
  return *table;
}

}  // namespace

void InputDialog::SetRecentFilters(std::shared_ptr<rz::RecentFilters> list) {
  if (!list) throw Error::ObjectNotSet("RecentFilters");
  recent_filters_ = std::move(list);
}

Variant InputDialog::Invoke(std::string_view name, InvokeKind kind,
                            DispatchArgs& args) {
  return Members().Invoke(*this, name, kind, args);
}

std::vector<std::string> InputDialog::MemberNames() const {
  return Members().Names();
}

int32_t InputDialog::Width() const { return InputDialogForm::kWidth; }

int32_t InputDialog::Height() const {
  return show_options_ ? InputDialogForm::kHeightWithOptions
                       : InputDialogForm::kHeightWithoutOptions;
}

void InputDialog::ShowDialog(float x, float y) {
  (void)x;  // the toolkit places the form; the model keeps no position
  (void)y;
  InputDialogSettings settings;
  settings.title = title_;
  settings.prompt = prompt_;
  settings.default_text = default_text_;
  settings.show_options = show_options_;
  settings.excluded = excluded_;
  settings.show_cancel = show_cancel_;
  settings.app_file = rz_file_.get();
  settings.variable = variable_;
  InputDialogForm form(settings);
  toolkit_.ShowModal(form);
  input_text_ = form.InputText();
  cancel_ = form.Cancelled();
  excluded_ = form.optExcluded();
}

std::string PromptValue(ViewState& state, int32_t variable,
                        const std::string& message, const std::string& title) {
  Toolkit& toolkit = state.platform->UserInterface();
  InputDialog dialog(toolkit);
  dialog.SetRZFile(state.AppFile);
  dialog.SetVariable(variable);
  dialog.SetShowCancel(false);
  dialog.SetPrompt(message);
  dialog.SetTitle(title);
  const TwipSize screen = toolkit.ScreenSize();
  dialog.ShowDialog(static_cast<float>(screen.width - dialog.Width()) / 2,
                    static_cast<float>(screen.height - dialog.Height()) / 2);
  return dialog.InputText().empty() ? "NULL" : dialog.InputText();
}

}  // namespace rz
