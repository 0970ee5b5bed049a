// What an event loop offers to adapters that read and write file descriptors.
#pragma once

#include <functional>

namespace corvane {

/// Calls a handler whenever a descriptor is ready (level-triggered), inside the loop's `Yield` and `Poll`.
///
/// A handler may watch and unwatch any descriptor, its own included, and may wait in a nested `Yield`; it is then
/// called again while it still runs if the descriptor is ready again. Whether that is allowed is for the handler's
/// owner to say.
class DescriptorWatcher {
 public:
  virtual ~DescriptorWatcher() = default;
  DescriptorWatcher() = default;
  DescriptorWatcher(const DescriptorWatcher&) = delete;
  DescriptorWatcher& operator=(const DescriptorWatcher&) = delete;

  /// Calls `handler` while the descriptor has input, a hang-up or an error; replaces the earlier one, empty ends it.
  virtual void WatchRead(int descriptor, std::function<void()> handler) = 0;
  /// Calls `handler` while the descriptor takes output or has an error; replaces the earlier one, empty ends it.
  virtual void WatchWrite(int descriptor, std::function<void()> handler) = 0;
  /// Ends both; to be called before the descriptor is closed.
  virtual void Unwatch(int descriptor) = 0;
};

}  // namespace corvane
