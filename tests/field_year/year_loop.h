#pragma once

#include <functional>

#include "support/fake_loop.h"

namespace corvane::test {

/// What a wait throws when the program has died; nothing handles it but the year itself.
struct Killed {};

/// Virtual time in which the program can die at every wait. Work aside is done at once.
class YearLoop : public FakeLoop {
 public:
  void Yield() override {
    Check();
    FakeLoop::Yield();
    Check();
  }
  void Poll() override {
    Check();
    FakeLoop::Poll();
    Check();
  }
  void Aside(const std::function<void()>& work, const std::function<void()>& /*on_turn*/) override {
    Check();
    work();
  }
  void Check() const {
    if (is_dead && is_dead()) throw Killed();
  }

  std::function<bool()> is_dead;
};

}  // namespace corvane::test
