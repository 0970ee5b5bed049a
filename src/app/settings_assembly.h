#pragma once

#include "app/field_checks.h"
#include "app/platform.h"
#include "app/recovery_copy.h"
#include "app/report_assembly.h"
#include "app/run_at_startup.h"
#include "app/setting_keys.h"
#include "app/settings.h"
#include "app/settings_store.h"
#include "app/shared_state.h"
#include "lang/language.h"
#include "registry/editors.h"

namespace corvane {

/// What is read from the machine at the start and kept there: settings, captions, the start at log-on; for the
/// composition root.
struct SettingsAssembly {
  SettingsAssembly(const Platform& av_Platform, SharedState& av_State, ReportAssembly& av_Report,
                   RegistryEditors& av_Editors)
      : store(av_Report.messages, av_Report.trace),
        settings({av_State.form, av_State.registry, av_State.app, av_State.devices, store, av_Editors,
                  av_Report.messages, av_Report.trace, av_Platform.loop, av_State.flags}),
        recovery({av_State.form, av_State.flags, av_State.slot, settings, store, av_Report.trace, av_Platform.loop}),
        checks(av_State.form, av_State.app, av_State.names),
        keys(av_State.form, av_State.registry, av_State.app, checks),
        language(av_Report.messages),
        run_at_startup(av_Platform.shell, av_Report.messages, av_Report.trace) {}

  SettingsStore store;
  Settings settings;
  RecoveryCopy recovery;
  FieldChecks checks;
  SettingKeys keys;
  CLanguage language;
  RunAtStartup run_at_startup;
};

}  // namespace corvane
