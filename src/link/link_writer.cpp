#include "link/link_writer.h"

namespace corvane {
namespace {

constexpr char kEscape = '\x1b';

}  // namespace

bool LinkWriter::Write(std::string_view as_Text) {
  const Status written = port_.Write(as_Text);
  if (written.ok()) return true;
  if (link_.HalvexError) {
    if (trace_.TracesDecisions()) trace_.TraceDecision("Not sent: " + written.text());
    return false;
  }
  link_.Fail(written.text());
  trace_.AErrorReport("Not sent: " + written.text());
  return false;
}

void LinkWriter::SendEscape() {
  trace_.TraceDecision("Sending escape");
  link_.CurrentCommand.assign(1, kEscape);
  if (link_.State != kIdle) link_.Aborted = true;
  if (port_.IsOpen()) Write(link_.CurrentCommand);
  trace_.TraceSend("S:<27>");
}

void LinkWriter::SendEscapes() {
  for (int time = 0; time < 3; ++time) SendEscape();
}

}  // namespace corvane
