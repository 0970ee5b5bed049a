#include "window/network/history_reader.h"

#include <cerrno>
#include <exception>

#include <QMetaObject>

#include "history/history_reading.h"
#include "sqlite/sqlite_history_store.h"

namespace corvane::window {

HistoryReader::HistoryReader(std::string folder) : folder_(std::move(folder)) {
  pool_.setMaxThreadCount(1);
}

HistoryReader::~HistoryReader() {
  pool_.clear();
  pool_.waitForDone();
}

void HistoryReader::Run(std::function<std::function<void()>()> reading) {
  pool_.start(
      [this, reading = std::move(reading)] { QMetaObject::invokeMethod(&receiver_, reading(), Qt::QueuedConnection); });
}

Status HistoryReader::Tried(const std::function<Status()>& reading) {
  try {
    return reading();
  } catch (const std::exception& error) {
    return {ENOMEM, error.what()};
  }
}

Status HistoryReader::ReadContents(const HistoryQuery& query, HistoryContents& contents) const {
  SqliteHistoryStore store;
  return ReadHistory(store, folder_, query, contents);
}

}  // namespace corvane::window
