#pragma once

#include <utility>

namespace corvane {

/// Gives a variable a value for a scope and the former one back at its end, however the scope is left.
template <class Value>
class ScopedValue {
 public:
  /// `variable` must outlive this object.
  ScopedValue(Value& variable, Value value) : variable_(variable), former_(std::exchange(variable, std::move(value))) {}
  ~ScopedValue() { variable_ = std::move(former_); }
  ScopedValue(const ScopedValue&) = delete;
  ScopedValue& operator=(const ScopedValue&) = delete;

 private:
  Value& variable_;
  Value former_;
};

}  // namespace corvane
