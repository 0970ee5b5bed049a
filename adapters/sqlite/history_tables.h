// The columns of each record, in one place: what names them, writes them and reads them goes through `Fields`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "base/dates.h"
#include "platform/history_records.h"
#include "sqlite/database.h"

namespace corvane {

/// The table of a record: its name, and `Fields`, which hands every column's name and value to `field` in order.
template <class Record>
struct Table;

template <>
struct Table<UnitRecord> {
  static constexpr std::string_view kName = "unit";
  template <class R, class F>
  static void Fields(R& r, F&& field) {
    field("key", r.key);
    field("client_id", r.client_id);
    field("unit_id", r.unit_id);
    field("file", r.file);
    field("position", r.position);
    field("name", r.name);
    field("client", r.client);
    field("relay", r.relay);
    field("relay_id", r.relay_id);
    field("active", r.active);
    field("get_from", r.get_from);
    field("sent", r.sent);
    field("added", r.added);
    field("last_asked", r.last_asked);
    field("last_answered", r.last_answered);
  }
};

template <>
struct Table<RoundRecord> {
  static constexpr std::string_view kName = "round";
  template <class R, class F>
  static void Fields(R& r, F&& field) {
    field("key", r.key);
    field("kind", r.kind);
    field("automatic", r.start);
    field("all_units", r.all);
    field("began", r.began);
    field("ended", r.ended);
    field("asked", r.asked);
    field("answered", r.answered);
    field("stored", r.stored);
    field("problems", r.problems);
    field("ending", r.ending);
    field("clock_step", r.clock_step);
  }
};

template <>
struct Table<ContactRecord> {
  static constexpr std::string_view kName = "contact";
  template <class R, class F>
  static void Fields(R& r, F&& field) {
    field("unit", r.unit);
    field("round", r.round);
    field("at", r.at);
    field("get_from", r.get_from);
    field("command", r.command);
    field("tries", r.tries);
    field("outcome", r.outcome);
    field("error", r.error);
    field("announced", r.announced);
    field("stored", r.stored);
    field("rejected", r.rejected);
    field("last_reading", r.last_reading);
    field("battery", r.battery);
    field("ambient", r.ambient);
    field("clock_offset", r.clock_offset);
    field("milliseconds_on_air", r.milliseconds_on_air);
    field("period_minutes", r.period_minutes);
  }
};

template <>
struct Table<DeliveryRecord> {
  static constexpr std::string_view kName = "delivery";
  template <class R, class F>
  static void Fields(R& r, F&& field) {
    field("unit", r.unit);
    field("target", r.target);
    field("file", r.file);
    field("tried", r.tried);
    field("done", r.done);
    field("problem", r.problem);
    field("bytes", r.bytes);
    field("last_reading", r.last_reading);
  }
};

template <>
struct Table<DayRecord> {
  static constexpr std::string_view kName = "day";
  template <class R, class F>
  static void Fields(R& r, F&& field) {
    field("unit", r.unit);
    field("day", r.day);
    field("expected", r.expected);
    field("stored", r.stored);
    field("first_reading", r.first);
    field("last_reading", r.last);
    field("battery", r.battery);
    field("outside", r.outside);
    field("outside_channel", r.outside_channel);
  }
};

template <>
struct Table<GapRecord> {
  static constexpr std::string_view kName = "gap";
  template <class R, class F>
  static void Fields(R& r, F&& field) {
    field("unit", r.unit);
    field("from_reading", r.from);
    field("to_reading", r.to);
    field("missing", r.missing);
    field("state", r.state);
    field("tries", r.tries);
    field("found", r.found);
    field("changed", r.changed);
  }
};

template <>
struct Table<ScanRecord> {
  static constexpr std::string_view kName = "scan";
  template <class R, class F>
  static void Fields(R& r, F&& field) {
    field("unit", r.unit);
    field("inode", r.inode);
    field("size", r.size);
    field("modified", r.modified);
    field("tail_crc", r.tail_crc);
    field.Bytes("state", r.state);
    field("readings", r.readings);
    field("first_reading", r.first);
    field("last_reading", r.last);
    field("period", r.period);
    field("still_channel", r.still_channel);
    field("still_since", r.still_since);
  }
};

template <>
struct Table<AlertRecord> {
  static constexpr std::string_view kName = "alert";
  template <class R, class F>
  static void Fields(R& r, F&& field) {
    field("cause", r.cause);
    field("unit", r.unit);
    field("subject", r.subject);
    field("raised", r.raised);
    field("told", r.told);
    field("cleared", r.cleared);
    field("good_rounds", r.good_rounds);
  }
};

template <>
struct Table<NoteRecord> {
  static constexpr std::string_view kName = "note";
  template <class R, class F>
  static void Fields(R& r, F&& field) {
    field("unit", r.unit);
    field("text", r.text);
    field("written", r.written);
    field("until", r.until);
  }
};

/// One row, whose `row` is 1.
template <>
struct Table<NetworkRecord> {
  static constexpr std::string_view kName = "network";
  template <class R, class F>
  static void Fields(R& r, F&& field) {
    std::int64_t row = 1;
    field("row", row);
    field("version", r.version);
    field("automatic", r.automatic);
    field("interval", r.interval);
    field("next_download", r.next_download);
    field("goes_on", r.goes_on);
    field("late_after", r.late_after);
    field("battery_limit", r.battery_limit);
    field("repairs_gaps", r.repairs_gaps);
    field("repair_limit", r.repair_limit);
    field("alive", r.alive);
    field("open", r.open);
  }
};

/// Collects the names of columns; a moment has two.
struct ColumnNames {
  template <class T>
  void operator()(std::string_view name, const T& /*value*/) {
    Add(name, "");
    if constexpr (std::is_same_v<T, Moment>) Add(name, "_ahead");
  }
  void Bytes(std::string_view name, const std::string& /*value*/) { Add(name, ""); }
  void Add(std::string_view name, std::string_view suffix) {
    names.append(names.empty() ? "" : ", ").append(table).append(".").append(name).append(suffix);
    bare.append(bare.empty() ? "" : ", ").append(name).append(suffix);
    marks += marks.empty() ? "?" : ", ?";
  }

  std::string_view table;
  std::string names;  ///< with the table's before each
  std::string bare;
  std::string marks;  ///< one "?" for each
};

template <class Record>
ColumnNames ColumnsOf() {
  ColumnNames columns{Table<Record>::kName, {}, {}, {}};
  const Record none{};
  Table<Record>::Fields(none, columns);
  return columns;
}

/// The statement that writes a record in place of the one with the same key.
template <class Record>
const std::string& SqlToWrite() {
  static const std::string kSql = [] {
    const ColumnNames columns = ColumnsOf<Record>();
    return "INSERT OR REPLACE INTO " + std::string(columns.table) + " (" + columns.bare + ") VALUES (" + columns.marks +
           ")";
  }();
  return kSql;
}

/// The statement that reads records; what follows the columns ("FROM ...") is added.
template <class Record>
std::string SqlToRead(std::string_view rest) {
  return "SELECT " + ColumnsOf<Record>().names + " " + std::string(rest);
}

/// Puts the values of a record's columns into a statement.
struct FieldWriter {
  template <class T>
  void operator()(std::string_view name, const T& value) {
    if constexpr (std::is_same_v<T, std::string>) {
      statement.PutText(value);
    } else if constexpr (std::is_same_v<T, double>) {
      statement.PutReal(value);
    } else if constexpr (std::is_same_v<T, DateTime>) {
      statement.PutInteger(value.seconds());
    } else if constexpr (std::is_same_v<T, Moment>) {
      statement.PutInteger(value.utc);
      statement.PutInteger(value.ahead);
    } else if constexpr (std::is_same_v<T, std::optional<double>> || std::is_same_v<T, std::optional<std::int64_t>>) {
      value ? (*this)(name, *value) : statement.PutNull();
    } else {
      statement.PutInteger(static_cast<std::int64_t>(value));
    }
  }
  void Bytes(std::string_view /*name*/, const std::string& value) { statement.PutBytes(value); }

  Statement& statement;
};

/// Takes a record from the row where a statement stands.
struct FieldReader {
  template <class T>
  void operator()(std::string_view /*name*/, T& value) {
    if constexpr (std::is_same_v<T, std::string>) {
      value = statement.Bytes(column++);
    } else if constexpr (std::is_same_v<T, double>) {
      value = statement.Real(column++);
    } else if constexpr (std::is_same_v<T, DateTime>) {
      value = DateTime(statement.Integer(column++));
    } else if constexpr (std::is_same_v<T, Moment>) {
      value.utc = statement.Integer(column++);
      value.ahead = static_cast<std::int32_t>(statement.Integer(column++));
    } else if constexpr (std::is_same_v<T, std::optional<double>>) {
      value = statement.IsNull(column) ? std::nullopt : std::optional(statement.Real(column));
      ++column;
    } else if constexpr (std::is_same_v<T, std::optional<std::int64_t>>) {
      value = statement.IsNull(column) ? std::nullopt : std::optional(statement.Integer(column));
      ++column;
    } else {
      value = static_cast<T>(statement.Integer(column++));
    }
  }
  void Bytes(std::string_view /*name*/, std::string& value) { value = statement.Bytes(column++); }

  Statement& statement;
  int column = 0;
};

template <class Record>
void WriteRecord(Database& database, const Record& record) {
  Statement& statement = database.Prepared(SqlToWrite<Record>());
  FieldWriter writer{statement};
  Table<Record>::Fields(record, writer);
  statement.Run();
}

/// Appends the rows of a statement whose parameters are put.
template <class Record>
void ReadRecords(Statement& statement, std::vector<Record>& records) {
  while (statement.Step()) {
    FieldReader reader{statement};
    Table<Record>::Fields(records.emplace_back(), reader);
  }
}

}  // namespace corvane
