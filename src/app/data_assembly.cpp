#include "app/data_assembly.h"

namespace corvane {

DataAssembly::DataAssembly(const Platform& av_Platform, SharedState& av_State, ReportAssembly& av_Report)
    : file_list(av_State.form, av_Report.messages),
      files({av_State.form, av_State.flags, av_State.slot, av_State.app, av_State.names, file_list, av_Platform.loop,
             av_Platform.dialogs, av_Platform.shell, av_Report.messages}),
      lookups(av_Report.messages),
      converter({av_State.form, av_State.flags, av_State.download, av_State.registry, lookups, av_Platform.loop,
                 av_Report.bars, av_Report.messages, av_Report.trace}),
      conversion(av_State.flags, files, lookups, converter),
      hex({av_State.form, av_State.flags, av_State.link, av_Platform.loop, av_Report.messages, av_Report.trace}) {}

}  // namespace corvane
