#pragma once

#include "form/control.h"

namespace corvane {

/// Shows a pointer shape for a scope and restores the former one at its end.
class CMousePointer {
 public:
  explicit CMousePointer(Window& av_Window) : window_(av_Window) {}
  ~CMousePointer() {
    if (saved_ != PointerShape::None) window_.SetPointer(saved_);
  }
  CMousePointer(const CMousePointer&) = delete;
  CMousePointer& operator=(const CMousePointer&) = delete;

  /// Saves the present shape at the first call, then shows `av_Shape`.
  void SetPointer(PointerShape av_Shape) {
    if (saved_ == PointerShape::None) saved_ = window_.pointer();
    window_.SetPointer(av_Shape);
  }

 private:
  Window& window_;
  PointerShape saved_ = PointerShape::None;
};

/// The busy pointer for a scope.
class BusyPointer : public CMousePointer {
 public:
  explicit BusyPointer(Window& av_Window) : CMousePointer(av_Window) { SetPointer(PointerShape::Busy); }
};

}  // namespace corvane
