#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "app/app_info.h"
#include "app/command_states.h"
#include "app/operation_slot.h"
#include "data/calibrated_converter.h"
#include "data/file_listbox.h"
#include "data/file_names.h"
#include "data/local_files.h"
#include "data/lookup.h"
#include "support/fake_loop.h"
#include "support/recorders.h"
#include "support/temp_folder.h"

namespace corvane::test {

/// The data classes over real files in a temporary application folder.
struct DataWorld {
  DataWorld() {
    flags.loading = false;
    form.Txt_RawFileExtension.SetText("epd");
    form.Txt_CalibratedFileExtension.SetText("txt");
    form.Txt_DateFormat.SetText("d mmm yyyy HH:MM");
    trace.SetLogFile(Path("corvane.log"));
    bars.Unit.SetBar(form.Bar_Unit);
    bars.Download.SetBar(form.Bar_Download);
  }

  [[nodiscard]] std::string Path(const std::string& name) const { return folder.Name(name); }
  void Write(const std::string& name, const std::string& text) const { folder.Write(name, text); }
  [[nodiscard]] std::string Read(const std::string& name) const { return folder.Read(name); }
  [[nodiscard]] bool Exists(const std::string& name) const { return std::filesystem::exists(Path(name)); }
  /// Adds a unit and its row in the unit list.
  Unit& AddUnit(std::int32_t id, std::int32_t client_id = 0) {
    Unit unit;
    unit.Name = "Site " + std::to_string(id);
    unit.ID = id;
    unit.Active = 1;
    unit.ClientID = client_id;
    registry.Units.Append(unit);
    form.Lst_Units.Add(unit.Name);
    return registry.Units[registry.Units.count()];
  }

  TempFolder folder;
  Form form;
  RunFlags flags;
  LinkState link;
  DownloadState download;
  Registry registry;
  FakeLoop loop;
  RecordingDialogs dialogs;
  FakeShell shell;
  Trace trace{form, link, loop, shell};
  Messages messages{form, flags, loop, dialogs, trace};
  ProgressBars bars;
  AppInfo app{folder.path()};
  CommandStates states{form};
  OperationSlot slot{link, states};
  FileNames names{form, registry, app};
  CFileListbox file_list{form, messages};
  LocalFiles files{form, flags, slot, app, names, file_list, loop, dialogs, shell, messages};
  Lookups lookups{messages};
  CalibratedConverter converter{form, flags, download, registry, lookups, loop, bars, messages, trace};
};

}  // namespace corvane::test
