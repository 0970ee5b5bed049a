#include "rounds/transfer_round.h"

#include "ui/mouse_pointer.h"

namespace corvane {

void TransferRound::BeginRun(std::string_view as_Status, std::int64_t al_Count) {
  p_.trace.Status(as_Status);
  p_.port.ClearBeforeCommand(as_Status);
  p_.bars.Unit.SetProcessText(as_Status);
  p_.bars.Unit.Initialise(al_Count);
}

void TransferRound::EndRun(std::int64_t al_Selected) {
  p_.units.Select(al_Selected);
  p_.port.ClearEverything();
}

void TransferRound::ftpAllUnits(bool ab_All, std::int32_t al_GetFrom, std::int16_t ai_Destination) {
  const std::int64_t selected = p_.units.Selected();
  const UnitSpan units = p_.registry.UnitRange(ab_All, selected);
  const std::int64_t marked = MarkUnits(units, al_GetFrom, ai_Destination);
  if (marked > 0 && ai_Destination == kToFtp && !p_.browser.ConfigureFTP()) return;
  if (marked > 0) {
    SendMarked(units, marked, ai_Destination);
  } else if (!Cancelled(p_.link, p_.flags)) {
    p_.trace.Status("Finished...");
  }
  EndRun(selected);
}

std::int64_t TransferRound::MarkUnits(UnitSpan av_Units, std::int32_t al_GetFrom, std::int16_t ai_Destination) {
  std::int64_t marked = 0;
  for (std::int64_t i = av_Units.first; i <= av_Units.last; ++i) {
    Unit& unit = p_.registry.Units[i];
    unit.ToSend =
        unit.Active != 0 && unit.ftpFile == ai_Destination && (al_GetFrom == kAny || unit.GetFrom == al_GetFrom);
    if (unit.ToSend) ++marked;
  }
  return marked;
}

void TransferRound::SendMarked(UnitSpan av_Units, std::int64_t al_Count, std::int16_t ai_Destination) {
  const BusyPointer busy(p_.form.Frm_Main);
  // A close that was asked for stays asked for.
  p_.link.UserCancel = p_.flags.closing;
  BeginRun("Send files...", al_Count);
  const std::size_t first = p_.results.All().size();
  const Messages::OneBox one_box = p_.transfer.OneBox();
  p_.transfer.BeginStep();
  const bool went_on = SendEach(av_Units, ai_Destination);
  if (!Cancelled(p_.link, p_.flags)) p_.trace.Status("Finished...");
  // A server that is out of reach, or a person in a hurry, is not asked once more.
  if (went_on && ai_Destination == kToFtp && p_.transfer.Connected()) p_.browser.RefreshRemoteList();
  p_.results.LogMoved("Files sent: ", first);
  // What the listing wiped off.
  if (!Cancelled(p_.link, p_.flags)) p_.form.Lbl_Status.SetText("Finished...");
  if (went_on && p_.link.UserCancel) p_.results.ShowLastProblem();
}

bool TransferRound::SendEach(UnitSpan av_Units, std::int16_t ai_Destination) {
  for (std::int64_t i = av_Units.first; i <= av_Units.last && p_.registry.Units.Has(i); ++i) {
    p_.units.Select(i);
    if (p_.registry.Units[i].ToSend) {
      if (!p_.transfer.ZipAndSend(i, ai_Destination)) {
        if (Cancelled(p_.link, p_.flags)) return false;
        // Intended: the first failed send ends the batch, and what follows it, as if Cancel had been pressed.
        p_.link.UserCancel = !GoesOn(p_.form, p_.flags);
        if (p_.link.UserCancel) return true;
      }
      p_.bars.Unit.Increment();
    }
    if (Cancelled(p_.link, p_.flags)) return false;
    p_.loop.Poll();
  }
  return true;
}

bool TransferRound::FetchAllUnits(bool ab_All, std::int32_t al_Source) {
  const std::int64_t selected = p_.units.Selected();
  const UnitSpan units = p_.registry.UnitRange(ab_All, selected);
  std::vector<std::int64_t> wanted;
  for (std::int64_t i = units.first; i <= units.last; ++i) {
    const Unit& unit = p_.registry.Units[i];
    if (unit.Active != 0 && unit.GetFrom == al_Source) wanted.push_back(i);
  }
  if (wanted.empty() || al_Source != kFromFtp) return false;
  if (!p_.browser.ConfigureFTP()) return false;
  const BusyPointer busy(p_.form.Frm_Main);
  BeginRun("Get files...", static_cast<std::int64_t>(wanted.size()));
  const std::size_t first = p_.results.All().size();
  const Messages::OneBox one_box = p_.transfer.OneBox();
  p_.transfer.BeginStep();
  const bool arrived = FetchEach(wanted, al_Source);
  if (!Cancelled(p_.link, p_.flags)) p_.trace.Status("Finished...");
  if (!Cancelled(p_.link, p_.flags) && !arrived) p_.results.ShowLastProblem();
  p_.results.LogMoved("Files fetched: ", first);
  EndRun(selected);
  return arrived;
}

bool TransferRound::FetchEach(const std::vector<std::int64_t>& av_Units, std::int32_t al_Source) {
  bool arrived = false;
  for (const std::int64_t unit : av_Units) {
    if (Cancelled(p_.link, p_.flags) || !p_.registry.Units.Has(unit)) break;
    p_.units.Select(unit);
    // A round that goes on meets a server out of reach at each file, and counts its tries there.
    if (!GoesOn(p_.form, p_.flags) && !p_.transfer.ReachServer(unit)) break;
    if (Cancelled(p_.link, p_.flags)) break;
    if (!p_.transfer.MayFetch(unit)) continue;
    arrived = p_.transfer.GetAndUnZip(unit, al_Source) || arrived;
    p_.bars.Unit.Increment();
    p_.loop.Poll();
  }
  return arrived;
}

}  // namespace corvane
