#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "form/form.h"

namespace corvane {

/// Adds a row to the list of the direct terminal; a list that has grown too long starts anew.
inline void AddDirectRow(Form& av_Form, std::string as_Row) {
  constexpr std::int64_t kMostRows = 30000;
  if (av_Form.Lst_Direct.count() > kMostRows) av_Form.Lst_Direct.Clear();
  av_Form.Lst_Direct.Add(std::move(as_Row));
}

}  // namespace corvane
