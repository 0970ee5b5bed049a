#pragma once

#include <string>

#include "form/control.h"

namespace corvane {

/// Gives a control the value `text` as a person does who types, ticks or chooses it, change handlers included: a text,
/// 0 or 1 for a tick, the index of an option, the text or the number of an entry. The field is not left.
///
/// Throws `RunTimeError` for what cannot be chosen, behind the control's name "takes ..." or "has no entry ..."; the
/// control is unchanged then.
void EnterValue(Control& control, const std::string& text);

}  // namespace corvane
