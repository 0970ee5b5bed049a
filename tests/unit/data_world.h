#pragma once

#include <cstdint>

#include "data/calibrated_converter.h"
#include "data/file_listbox.h"
#include "data/local_files.h"
#include "data/lookup.h"
#include "state/app_info.h"
#include "state/command_states.h"
#include "state/file_names.h"
#include "state/operation_slot.h"
#include "support/fake_loop.h"
#include "support/recorders.h"
#include "support/temp_folder.h"

namespace corvane::test {

/// The data classes over real files in a temporary application folder.
struct DataWorld : TempFolder {
  DataWorld() {
    flags.loading = false;
    form.Txt_RawFileExtension.SetText("epd");
    form.Txt_CalibratedFileExtension.SetText("txt");
    form.Txt_DateFormat.SetText("d mmm yyyy HH:MM");
    trace.SetLogFile(Name("corvane.log"));
    bars.Unit.SetBar(form.Bar_Unit);
    bars.Download.SetBar(form.Bar_Download);
  }

  /// Adds a unit and its row in the unit list.
  Unit& AddUnit(std::int32_t id, std::int32_t client_id = 0) {
    registry.Units.Append({.Name = "Site", .ID = id, .Active = 1, .ClientID = client_id});
    form.Lst_Units.Add("Site");
    return registry.Units[registry.Units.count()];
  }

  Form form;
  RunFlags flags;
  LinkState link;
  DownloadState download;
  Registry registry;
  FakeLoop loop;
  RecordingDialogs dialogs;
  FakeShell shell;
  Trace trace{form, link, loop, shell};
  Messages messages{{form, flags, loop, dialogs, trace}};
  ProgressBars bars;
  AppInfo app{path()};
  CommandStates states{form};
  OperationSlot slot{link, states};
  FileNames names{form, registry, app};
  CFileListbox file_list{form, messages};
  LocalFiles files{{form, flags, slot, app, names, file_list, loop, dialogs, shell, messages}};
  Lookups lookups{messages};
  CalibratedConverter converter{{form, flags, download, registry, lookups, loop, bars, messages, trace}};
};

}  // namespace corvane::test
