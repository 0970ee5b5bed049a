#include "app/field_bindings.h"

#include <string>

#include "state/app_info.h"

namespace corvane {
namespace {

constexpr int kSpaceBar = 32;
constexpr int kEscapeKey = 27;
constexpr int kF1Key = 112;

}  // namespace

void FieldBindings::Bind() {
  BindFileFields();
  BindOtherFields();
  BindKeys();
}

void FieldBindings::BindFileFields() {
  Form& form = p_.form;
  for (TextField* field : {&form.Txt_Prefix, &form.Txt_RawFileExtension, &form.Txt_CalibratedFileExtension,
                           &form.Txt_DateFormat, &form.Txt_Folder}) {
    field->on_change = [this] { p_.files.UpdateFileExamples(); };
  }
  for (OptionGroup* group : {&form.Opt_WhichFile, &form.Opt_SortFile, &form.Opt_Direction}) {
    group->on_change = [this] {
      if (!p_.form.Suppress.set()) p_.files.RefreshFileListBox();
    };
  }
}

void FieldBindings::BindOtherFields() {
  Form& form = p_.form;
  form.Chk_Direct.on_change = [this] { p_.states.UpdateDirect(); };
  form.Chk_ShowCorrectionFactors.on_change = [this] {
    for (TextField& field : p_.form.Txt_Correction) field.SetVisible(p_.form.Chk_ShowCorrectionFactors.ticked());
  };
  form.Chk_ShowCorrectionFactors.on_change();
  form.Chk_RunAtStartup.on_change = [this] {
    if (!p_.form.Suppress.set()) p_.run_at_startup.SetRunAtStartup(p_.form.Chk_RunAtStartup.ticked(), "/M");
  };
  form.Opt_HeartBeat.on_change = [this] {
    if (!p_.form.Suppress.set()) p_.schedule.StartHeartbeat();
  };
  form.Frm_Main.on_change = [this] {
    if (!p_.form.Frm_Main.minimised()) p_.form.Frm_Main.SetTitle(kProductName);
  };
  form.Txt_AutomaticInterval.on_leave = [this] { p_.schedule.CalculateNextDownload(); };
  form.Txt_RelayID.on_leave = [this] {
    // A round that begins takes the focus out of the field; what stands there may be half of an ID.
    if (!p_.slot.Taken()) p_.operations.TakeRelayIDs();
  };
  form.Chk_Automatic.on_change = [this] { p_.form.Lbl_NextIsOff.SetVisible(!p_.form.Chk_Automatic.ticked()); };
  form.Chk_Automatic.on_change();
  form.Txt_MaxRetries.on_leave = [this] { p_.schedule.LimitMaxRetries(); };
}

void FieldBindings::BindKeys() {
  p_.form.Cmd_Cancel.on_key = [this](int code, bool key_down) {
    p_.trace.LogWrite(std::string(key_down ? "cmd_Cancel_KeyDown" : "Cmd_Cancel_KeyPress") +
                      " KeyCode: " + std::to_string(code) + " DoingSomething: " + (p_.slot.Taken() ? "True" : "False"));
    if (!p_.form.Cmd_Cancel.enabled() || code != kSpaceBar) return false;
    p_.trace.LogWrite("space, so set ai_KeyAscii = 0");
    return true;
  };
  p_.form.Frm_Main.on_key = [this](int code, bool key_down) {
    p_.trace.LogWrite((key_down ? "Form_KeyDown KeyCode: " : "Form_KeyPress KeyAscii set to zero: ") +
                      std::to_string(code));
    // What these keys start may wait, which a key event must not.
    if (key_down && code == kEscapeKey) p_.loop.Post([this] { p_.form.Cmd_Cancel.Click(); });
    if (key_down && code == kF1Key) p_.loop.Post([this] { p_.form.mnu_Help.Click(0); });
    return !key_down || code == kEscapeKey || code == kF1Key;
  };
}

}  // namespace corvane
