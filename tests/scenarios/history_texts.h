// What a history holds, as short texts: one a record, in the words of `README.md`.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/format.h"
#include "sqlite/sqlite_history_store.h"

namespace corvane::test {

/// A history whose file fails as it is told to.
class FailingStore : public SqliteHistoryStore {
 public:
  Status OpenToWrite(const std::string& file, std::string& set_aside) override {
    return failure.ok() ? SqliteHistoryStore::OpenToWrite(file, set_aside) : failure;
  }
  Status Write(const HistoryContents& changes) override {
    return failure.ok() ? SqliteHistoryStore::Write(changes) : failure;
  }
  Status Read(const HistoryQuery& query, HistoryContents& contents) override {
    return failure.ok() ? SqliteHistoryStore::Read(query, contents) : failure;
  }
  Status Replace(std::int64_t unit, DateTime from, const HistoryContents& changes) override {
    return failure.ok() ? SqliteHistoryStore::Replace(unit, from, changes) : failure;
  }

  Status failure;
};

inline std::string TextOf(DateTime when) {
  return when.IsNone() ? "-" : FormatDate(when, "m-dd hh:nn");
}

inline std::string TextOf(const std::optional<double>& value) {
  if (!value) return "-";
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", *value);
  return text;
}

inline std::string TextOf(const std::optional<std::int64_t>& value) {
  return value ? std::to_string(*value) : "-";
}

inline std::string Numbers(const std::vector<std::int64_t>& numbers) {
  std::string text;
  for (const std::int64_t number : numbers) text += (text.empty() ? "" : " ") + std::to_string(number);
  return text;
}

/// All records of one kind ("units", "rounds" ...) in the file.
inline std::vector<std::string> HistoryTexts(const std::string& file, const std::string& kind) {
  SqliteHistoryStore store;
  HistoryQuery query;
  query.contacts_since = Moment{1, 0};
  query.rounds = 1000;
  query.days_since = DateTime();
  query.gaps = true;
  query.scans = true;
  HistoryContents all;
  Status read = store.OpenToRead(file);
  if (read.ok()) read = store.Read(query, all);
  if (!read.ok()) throw std::runtime_error(read.text());
  const auto text_of = [](bool holds, const char* text) { return std::string(holds ? text : ""); };
  const std::vector<std::string> outcomes = {"answered", "failed", "silent", "not-asked", "no-port"};
  const std::vector<std::string> targets = {"server", "fetched", "backup", "calibrated"};
  const std::vector<std::string> states = {"found", "asked", "filled", "lost", "clock"};
  std::vector<std::string> texts;
  const auto add = [&](const char* of, const std::string& text) {
    if (kind == of) texts.push_back(text);
  };
  for (const UnitRecord& each : all.units) {
    add("units", Numbers({each.key, each.position}) + " " + each.name + " " + each.client + ":" +
                     std::to_string(each.unit_id) + " " + each.file + text_of(each.active, " active"));
  }
  for (const RoundRecord& each : all.rounds) {
    const std::vector<std::string> kinds = {"download", "fetch", "command", "repair"};
    add("rounds", std::to_string(each.key) + " " + kinds.at(static_cast<std::size_t>(each.kind)) +
                      text_of(each.IsUnattended(), " automatic") + text_of(each.all, " all") + " " +
                      Numbers({each.asked, each.answered, each.stored, each.problems}) + " " +
                      (each.ended.IsNone()   ? "runs"
                       : each.ending.empty() ? "well"
                                             : each.ending));
  }
  for (const ContactRecord& each : all.contacts) {
    add("contacts", Numbers({each.round, each.unit, each.command, each.tries}) + " " +
                        outcomes.at(static_cast<std::size_t>(each.outcome)) + " " +
                        Numbers({each.announced, each.stored, each.rejected}) + " " + TextOf(each.last_reading) + " " +
                        TextOf(each.battery) + " " + TextOf(each.ambient) + " " + TextOf(each.clock_offset) +
                        text_of(!each.error.empty(), " ") + each.error);
    if (each.period_minutes) add("periods", Numbers({each.unit, *each.period_minutes}));
    add("air", Numbers({each.round, each.unit, each.milliseconds_on_air}));
  }
  for (const DeliveryRecord& each : all.deliveries) {
    add("deliveries", std::to_string(each.unit) + " " + targets.at(static_cast<std::size_t>(each.target)) + " " +
                          each.file + " " + std::to_string(each.bytes) + " " + TextOf(each.last_reading) +
                          text_of(each.done.IsNone(), " never") + text_of(!each.problem.empty(), " ") + each.problem);
  }
  for (const DayRecord& each : all.days) {
    add("days", std::to_string(each.unit) + " " + FormatDate(each.day, "m-dd") + " " + std::to_string(each.stored) +
                    "/" + std::to_string(each.expected));
  }
  for (const GapRecord& each : all.gaps) {
    add("gaps", std::to_string(each.unit) + " " + TextOf(each.from) + " " + TextOf(each.to) + " " +
                    std::to_string(each.missing) + " " + states.at(static_cast<std::size_t>(each.state)) + " " +
                    std::to_string(each.tries));
  }
  if (all.network) {
    add("network", std::string(all.network->open ? "open" : "closed") + text_of(all.network->automatic, " automatic") +
                       " " + TextOf(all.network->interval) + " " + TextOf(all.network->next_download) + " alive " +
                       TextOf(all.network->alive.Local()));
  }
  return texts;
}

}  // namespace corvane::test
