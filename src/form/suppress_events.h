#pragma once

namespace corvane {

/// The event-suppression flag of the main window: while it is set, change handlers of lists, check boxes and option
/// groups do nothing. Nests.
class SuppressEvents {
 public:
  /// Sets the flag for a scope.
  class Guard {
   public:
    explicit Guard(SuppressEvents& flag) : flag_(flag) { ++flag_.depth_; }
    ~Guard() { --flag_.depth_; }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

   private:
    SuppressEvents& flag_;
  };

  [[nodiscard]] bool set() const { return depth_ > 0; }

 private:
  int depth_ = 0;
};

}  // namespace corvane
