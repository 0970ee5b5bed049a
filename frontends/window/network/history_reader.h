#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include <QObject>
#include <QThreadPool>

#include "base/status.h"
#include "platform/history_store.h"

namespace corvane::window {

/// Reads the history on a thread of its own, beside the program that writes it: the window never waits for a disk.
///
/// Needs the window's thread to handle its events.
class HistoryReader {
 public:
  /// `folder` is the application folder.
  explicit HistoryReader(std::string folder);
  /// Waits for the reading that is under way; its result is dropped, as are those that have not begun.
  ~HistoryReader();
  HistoryReader(const HistoryReader&) = delete;
  HistoryReader& operator=(const HistoryReader&) = delete;

  /// Reads what `query` asks for, one reading after the other; `work` makes of it what is to be shown, on the thread;
  /// `done` gets that in the window's thread. A failure is in words for the user, `work` gets nothing then.
  template <class Result>
  void Read(const HistoryQuery& query, std::function<Result(const HistoryContents&)> work,
            std::function<void(const Status&, Result)> done) {
    Run([this, query, work = std::move(work), done = std::move(done)]() -> std::function<void()> {
      // Shared: a function that is handed on has to be one that can be copied.
      auto result = std::make_shared<Result>();
      const Status status = Tried([&] {
        HistoryContents contents;
        const Status read = ReadContents(query, contents);
        if (read.ok()) *result = work(contents);
        return read;
      });
      return [done, status, result] { done(status, std::move(*result)); };
    });
  }

  /// Has the thread take down what nobody needs any more.
  void Drop(std::shared_ptr<void> things) {
    pool_.start([things = std::move(things)]() mutable { things.reset(); });
  }

 private:
  void Run(std::function<std::function<void()>()> reading);
  /// What was thrown is a failure: nobody is there to catch it on the thread.
  [[nodiscard]] static Status Tried(const std::function<Status()>& reading);
  [[nodiscard]] Status ReadContents(const HistoryQuery& query, HistoryContents& contents) const;

  std::string folder_;
  QObject receiver_;  ///< what results are sent to; dropped with it
  QThreadPool pool_;
};

}  // namespace corvane::window
