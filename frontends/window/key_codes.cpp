#include "window/key_codes.h"

#include <algorithm>
#include <array>

#include <Qt>

namespace corvane::window {
namespace {

struct KeyRow {
  int toolkit_key;
  int code;
};
constexpr std::array<KeyRow, 19> kNamedKeys = {{
    {Qt::Key_Backspace, 8}, {Qt::Key_Tab, 9},      {Qt::Key_Backtab, 9}, {Qt::Key_Return, 13}, {Qt::Key_Enter, 13},
    {Qt::Key_Shift, 16},    {Qt::Key_Control, 17}, {Qt::Key_Alt, 18},    {Qt::Key_Escape, 27}, {Qt::Key_PageUp, 33},
    {Qt::Key_PageDown, 34}, {Qt::Key_End, 35},     {Qt::Key_Home, 36},   {Qt::Key_Left, 37},   {Qt::Key_Up, 38},
    {Qt::Key_Right, 39},    {Qt::Key_Down, 40},    {Qt::Key_Insert, 45}, {Qt::Key_Delete, 46},
}};
constexpr int kFirstFunctionKey = 112;

}  // namespace

int KeyCode(int toolkit_key) {
  if (toolkit_key >= Qt::Key_F1 && toolkit_key <= Qt::Key_F24) return kFirstFunctionKey + toolkit_key - Qt::Key_F1;
  const auto* named = std::find_if(kNamedKeys.begin(), kNamedKeys.end(),
                                   [toolkit_key](const KeyRow& row) { return row.toolkit_key == toolkit_key; });
  return named == kNamedKeys.end() ? toolkit_key : named->code;
}

}  // namespace corvane::window
