#include "form/form.h"

namespace corvane {

Form::Form() {
  Chk_Trace[0].SetTicked(true);
  chk_AutoTrace[0].SetTicked(true);
  Txt_OstrelHost.SetText("localhost");
  Txt_OstrelPort.SetText("4000");
  for (Label& answer : Lbl_NoAnswer) answer.SetVisible(false);
  Frm_Main.SetTitle("Corvane");
}

}  // namespace corvane
