#pragma once

#include "app/operations.h"
#include "app/run_at_startup.h"
#include "data/local_files.h"
#include "form/form.h"
#include "link/schedule.h"
#include "platform/event_loop.h"
#include "state/command_states.h"
#include "state/operation_slot.h"
#include "trace/trace.h"

namespace corvane {

/// What a change of a field, and a key, does at once.
class FieldBindings {
 public:
  /// The controls and what they work on; all must outlive this object.
  struct Parts {
    Form& form;
    const OperationSlot& slot;
    CommandStates& states;
    LocalFiles& files;
    Schedule& schedule;
    RunAtStartup& run_at_startup;
    Operations& operations;
    EventLoop& loop;
    Trace& trace;
  };
  explicit FieldBindings(const Parts& av_Parts) : p_(av_Parts) {}

  void Bind();

 private:
  void BindFileFields();
  void BindOtherFields();
  void BindKeys();

  Parts p_;
};

}  // namespace corvane
