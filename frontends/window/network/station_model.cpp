#include "window/network/station_model.h"

#include <algorithm>
#include <map>
#include <utility>

#include <QFont>

#include "history/status_texts.h"
#include "history/unit_texts.h"
#include "window/network/network_phrases.h"
#include "window/network/station_signs.h"

namespace corvane::window {
namespace {

/// Marks the index of a group; that of a unit holds the place of its group, from 1.
constexpr quintptr kTopLevel = 0;

std::string Percent(const UnitStatus& unit, Moment now, const Phrases& phrases) {
  const std::string text = CompleteText(unit);
  const std::string to = KnownToText(unit, now, phrases);
  return text.empty() ? text : text + " %" + (to.empty() ? "" : ", " + to);
}

/// The shape of what is shown: which units stand where.
bool SameRows(const std::vector<UnitStatus>& before, const std::vector<StationGroup>& rows_before,
              const std::vector<UnitStatus>& now, const std::vector<StationGroup>& rows_now) {
  const auto same_unit = [&](std::size_t one, std::size_t other) { return before[one].key == now[other].key; };
  return std::equal(rows_before.begin(), rows_before.end(), rows_now.begin(), rows_now.end(),
                    [&](const StationGroup& one, const StationGroup& other) {
                      return one.name == other.name && std::equal(one.units.begin(), one.units.end(),
                                                                  other.units.begin(), other.units.end(), same_unit);
                    });
}

}  // namespace

StationModel::StationModel(QObject* parent)
    : QAbstractItemModel(parent),
      groups_(1),
      headings_({"State", "Name", "Client", "Last reading", "Last contact", "Answered", "Battery", "30 days", "Gaps",
                 "Delivered"}) {}

void StationModel::SetPhrases(const Phrases& phrases) {
  phrases_ = phrases;
  SetChoice(StationChoice(choice_));
}

std::vector<UnitStatus> StationModel::Take(StationRows rows, Moment now) {
  now_ = now;
  // Another was made while the status was read.
  if (rows.choice != choice_) rows.groups = Arrange(rows.units, choice_, phrases_);
  const bool same = SameRows(units_, groups_, rows.units, rows.groups);
  if (!same) beginResetModel();
  std::vector<UnitStatus> before = std::exchange(units_, std::move(rows.units));
  groups_ = std::move(rows.groups);
  same ? TellAllChanged() : endResetModel();
  return before;
}

void StationModel::TakeUnit(const UnitStatus& unit) {
  const auto known =
      std::find_if(units_.begin(), units_.end(), [&unit](const UnitStatus& each) { return each.key == unit.key; });
  if (known == units_.end()) return;
  *known = unit;
  const QModelIndex row = IndexOf(unit.key);
  if (!row.isValid()) return;
  TellChanged(row);
  if (row.parent().isValid()) TellChanged(row.parent());
}

void StationModel::TellChanged(const QModelIndex& row) {
  Q_EMIT dataChanged(row, row.siblingAtColumn(kStationColumns - 1));
}

void StationModel::SetRunning(std::int64_t position) {
  const std::int64_t before = std::exchange(running_, position);
  if (before == position) return;
  for (const UnitStatus& unit : units_) {
    if (unit.position != before && unit.position != position) continue;
    const QModelIndex row = IndexOf(unit.key);
    if (row.isValid()) TellChanged(row);
  }
}

void StationModel::SetChoice(const StationChoice& choice) {
  beginResetModel();
  choice_ = choice;
  groups_ = Arrange(units_, choice_, phrases_);
  endResetModel();
}

void StationModel::sort(int column, Qt::SortOrder order) {
  StationChoice choice = choice_;
  choice.sorted_by = static_cast<StationColumn>(std::clamp(column, 0, kStationColumns - 1));
  choice.descending = order == Qt::DescendingOrder;
  SetChoice(choice);
}

void StationModel::TellAllChanged() {
  const auto tell = [this](const QModelIndex& parent) {
    const int rows = rowCount(parent);
    if (rows > 0) Q_EMIT dataChanged(index(0, 0, parent), index(rows - 1, kStationColumns - 1, parent));
  };
  tell({});
  for (int group = 0; Grouped() && group < rowCount(); ++group) tell(index(group, 0));
}

const UnitStatus* StationModel::UnitAt(const QModelIndex& index) const {
  if (!index.isValid() || (Grouped() && index.internalId() == kTopLevel)) return nullptr;
  const StationGroup& group = groups_[Grouped() ? index.internalId() - 1 : 0];
  return &units_[group.units[static_cast<std::size_t>(index.row())]];
}

std::vector<const UnitStatus*> StationModel::UnitsAt(const QModelIndex& index) const {
  if (const UnitStatus* unit = UnitAt(index)) return {unit};
  std::vector<const UnitStatus*> units;
  if (!index.isValid()) return units;
  for (const std::size_t place : groups_[static_cast<std::size_t>(index.row())].units) units.push_back(&units_[place]);
  return units;
}

QString StationModel::GroupName(const QModelIndex& index) const {
  return UnitAt(index) != nullptr ? QString() : groups_[static_cast<std::size_t>(index.row())].name;
}

QModelIndex StationModel::IndexOf(std::int64_t key) const {
  for (std::size_t group = 0; group < groups_.size(); ++group) {
    const auto& places = groups_[group].units;
    const auto found =
        std::find_if(places.begin(), places.end(), [&](std::size_t each) { return units_[each].key == key; });
    if (found == places.end()) continue;
    return createIndex(static_cast<int>(found - places.begin()), 0, Grouped() ? group + 1 : kTopLevel);
  }
  return {};
}

std::size_t StationModel::ShownUnits() const {
  std::size_t count = 0;
  for (const StationGroup& group : groups_) count += group.units.size();
  return count;
}

QModelIndex StationModel::index(int row, int column, const QModelIndex& parent) const {
  if (row < 0 || column < 0 || row >= rowCount(parent) || column >= kStationColumns) return {};
  return createIndex(row, column, parent.isValid() ? static_cast<quintptr>(parent.row()) + 1 : kTopLevel);
}

QModelIndex StationModel::parent(const QModelIndex& child) const {
  if (!child.isValid() || child.internalId() == kTopLevel) return {};
  return createIndex(static_cast<int>(child.internalId() - 1), 0, kTopLevel);
}

int StationModel::rowCount(const QModelIndex& parent) const {
  if (!parent.isValid()) return static_cast<int>(Grouped() ? groups_.size() : groups_.front().units.size());
  if (!Grouped() || parent.internalId() != kTopLevel || parent.column() != 0) return 0;
  return static_cast<int>(groups_[static_cast<std::size_t>(parent.row())].units.size());
}

int StationModel::columnCount(const QModelIndex& /*parent*/) const {
  return kStationColumns;
}

QVariant StationModel::GroupData(const StationGroup& group, int column, int role) const {
  if (role == KeyRole) return QVariant::fromValue<qlonglong>(0);
  if (role == Qt::FontRole) {
    QFont bold;
    bold.setBold(true);
    return bold;
  }
  if (column != 0 || role != Qt::DisplayRole) return {};
  const auto fine = std::count_if(group.units.begin(), group.units.end(),
                                  [this](std::size_t place) { return units_[place].state == UnitState::Fine; });
  return group.name + ": " +
         QString::fromStdString(CountText(std::ssize(group.units), kCommonPhrases.units, phrases_) + ", " +
                                phrases_.Text(kNetworkSays.count_fine, {std::to_string(fine)}));
}

QString StationModel::TextOf(const UnitStatus& unit, StationColumn column) const {
  const auto text = [&]() -> std::string {
    switch (column) {
      case StationColumn::State:
        return unit.position == running_ ? phrases_.Text(kNetworkSays.asked_now) : StateText(unit.state, phrases_);
      case StationColumn::Name:
        return unit.name;
      case StationColumn::Client:
        return unit.client;
      case StationColumn::LastReading:
        return LastReadingText(unit, phrases_);
      case StationColumn::LastContact:
        return LastContactText(unit, now_, phrases_);
      case StationColumn::Answered:
        return unit.asked == 0 ? "" : std::to_string(unit.answered) + "/" + std::to_string(unit.asked);
      case StationColumn::Battery:
        return BatteryText(unit, phrases_);
      case StationColumn::Complete:
        return Percent(unit, now_, phrases_);
      case StationColumn::Gaps:
        return GapsText(unit, phrases_);
      case StationColumn::Delivered:
        return DeliveredText(unit, now_, phrases_);
    }
    return "";
  };
  return QString::fromStdString(text());
}

QString StationModel::ToolTipOf(const UnitStatus& unit, StationColumn column) const {
  QStringList lines;
  const auto add = [&lines](const std::string& text) {
    if (!text.empty() && !lines.contains(QString::fromStdString(text))) lines << QString::fromStdString(text);
  };
  // A column may be too narrow for it.
  add(TextOf(unit, column).toStdString());
  add(unit.name + " (" + std::to_string(unit.id) + "): " + StateText(unit.state, phrases_));
  add(unit.why);
  for (const Trouble& trouble : unit.troubles) add(trouble.text);
  add(unit.delivery_problem);
  if (!unit.relay.empty()) add(phrases_.Text(kNetworkSays.behind_relay, {unit.relay}));
  if (!unit.note.empty()) add(phrases_.Text(kNetworkSays.note, {unit.note}));
  // What comes from units and people is text and never markup.
  for (QString& line : lines) line = line.toHtmlEscaped();
  return "<p>" + lines.join("<br>") + "</p>";
}

QVariant StationModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const UnitStatus* const unit = UnitAt(index);
  if (unit == nullptr) return GroupData(groups_[static_cast<std::size_t>(index.row())], index.column(), role);
  const auto column = static_cast<StationColumn>(index.column());
  switch (role) {
    case Qt::DisplayRole:
      return TextOf(*unit, column);
    case Qt::ToolTipRole:
      return ToolTipOf(*unit, column);
    case Qt::AccessibleDescriptionRole:
      return column == StationColumn::State ? QString::fromStdString(unit->why) : QString();
    case SignRole:
      return static_cast<int>(unit->position == running_ ? StationSign::Running : SignOf(unit->state));
    case AnswersRole: {
      QString answers;
      for (const bool answered : unit->answers) answers += answered ? '1' : '0';
      return answers;
    }
    case KeyRole:
      return QVariant::fromValue<qlonglong>(unit->key);
    default:
      return {};
  }
}

QVariant StationModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return headings_.value(section);
}

bool StationModel::setHeaderData(int section, Qt::Orientation orientation, const QVariant& value, int /*role*/) {
  if (orientation != Qt::Horizontal || section < 0 || section >= headings_.size()) return false;
  headings_[section] = value.toString();
  Q_EMIT headerDataChanged(orientation, section, section);
  return true;
}

}  // namespace corvane::window
