// The registry and its editors on a Form, with fakes around them.
#pragma once

#include <string>
#include <vector>

#include "form/form.h"
#include "registry/editors.h"
#include "state/command_states.h"
#include "state/link_state.h"
#include "state/operation_slot.h"
#include "state/run_flags.h"
#include "support/fake_loop.h"
#include "support/recorders.h"
#include "trace/trace.h"
#include "ui/messages.h"

namespace corvane::test {

inline std::vector<std::string> Rows(const List& list) {
  std::vector<std::string> rows;
  for (std::int64_t row = 0; row < list.count(); ++row) rows.push_back(list.text(row));
  return rows;
}

inline std::vector<std::string> Rows(const Selector& selector) {
  std::vector<std::string> rows;
  for (std::int64_t row = 0; row < selector.count(); ++row) {
    rows.push_back(selector.text(row) + "=" + std::to_string(selector.number(row)));
  }
  return rows;
}

struct RegistryWorld {
  Form form;
  LinkState link;
  RunFlags flags;
  FakeLoop loop;
  RecordingDialogs dialogs;
  FakeShell shell;
  Trace trace{form, link, loop, shell};
  Messages messages{{form, flags, loop, dialogs, trace}};
  CommandStates states{form};
  OperationSlot slot{link, states};
  Registry registry;
  RegistryEditors editors{{form, registry, states, slot, messages}};
  UnitEditor& units = editors.units;
  RelayEditor& relays = editors.relays;
  ClientEditor& clients = editors.clients;

  RegistryWorld() {
    for (const int number : {1, 0, 2, 3}) form.Cmb_GetFrom.Add("source " + std::to_string(number), number);
    for (const int number : {0, 1}) form.Cmb_SendTo.Add("target " + std::to_string(number), number);
  }

  /// Units, relays and clients of these names, numbered from 1 (relays from 0), the first of each shown.
  void Fill(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      const std::int32_t id = registry.Units.count() + 1;
      Unit unit;
      unit.Name = name;
      unit.ID = id;
      unit.Active = 1;
      registry.Units.Append(unit);
      registry.Relays.Append({name, id - 1, 0});
      registry.Clients.Append({name, id, "F" + std::to_string(id), "", ""});
    }
    relays.FillRelaySelector();
    clients.FillClientSelector();
    for (RecordEditor* editor : {static_cast<RecordEditor*>(&units), static_cast<RecordEditor*>(&relays),
                                 static_cast<RecordEditor*>(&clients)}) {
      editor->FillList();
      editor->Select(1);
    }
  }
};

}  // namespace corvane::test
