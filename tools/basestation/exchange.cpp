#include "exchange.h"

#include <algorithm>
#include <cctype>
#include <tuple>
#include <utility>

#include "protocol.h"
#include "text.h"

namespace corvane::basestation {
namespace {

constexpr std::size_t kEnoughBytes = 16384;
constexpr std::int64_t kNoiseBytes = 8;
constexpr std::int64_t kFloodBytes = 1 << 20;
constexpr std::int64_t kDelay = 1000;
constexpr std::int64_t kBabblePause = 100;
constexpr int kFixedItems = 4;
constexpr std::size_t kFrameEnd = 5;  // "*", two digits, CR LF

std::int64_t AmountOr(const Fault& fault, std::int64_t fallback) {
  return fault.amount < 0 ? fallback : fault.amount;
}

/// The header of a download: version, site, items per line, number of lines, clock, battery, ambient, free memory.
std::string Header(const Unit& unit, std::int64_t lines) {
  const std::int64_t last = std::max<std::int64_t>(unit.readings() - 1, 0);
  const std::string id = std::to_string(unit.id());
  std::string items = "V2," + std::string(5 - id.size(), '0') + id;
  for (const std::int64_t number : {std::int64_t{kFixedItems}, std::int64_t{3} * unit.soil().sensors(), lines}) {
    items += ',';
    AppendNumber(items, number);
  }
  items += ',';
  AppendTime(items, unit.clock());
  for (const std::int64_t number : {unit.soil().Battery(last), unit.soil().Ambient(last, unit.clock())}) {
    items += ',';
    AppendNumber(items, number);
  }
  items += ",100";
  std::string header;
  AppendFramed(header, items);
  return header;
}

/// Changes the items of a reading (or of a header, at its first date) as the fault demands.
void SpoilItems(FaultKind kind, std::string& items) {
  if (kind == FaultKind::WrongItems) {
    items.resize(std::min(items.rfind(','), items.size()));
    return;
  }
  const std::size_t slash = items.find('/');
  const std::size_t second = items.find('/', slash + 1);
  if (slash == items.npos || second == items.npos) {
    return;
  }
  if (kind == FaultKind::BadDate) {
    items.replace(slash + 1, second - slash - 1, "13");
  } else {
    const std::size_t comma = items.rfind(',', slash);
    const std::size_t year = comma == items.npos ? 0 : comma + 1;
    items.replace(year, slash - year, "2099");
  }
}

}  // namespace

Exchange::Exchange(std::string echo, std::string line, std::vector<Fault> faults, std::uint64_t seed)
    : echo_(std::move(echo)), head_(std::move(line)), faults_(std::move(faults)), random_(seed) {
  ArrangeFaults();
}

Exchange::Exchange(std::string echo, const Unit& unit, Selection readings, std::vector<Fault> faults,
                   std::uint64_t seed)
    : echo_(std::move(echo)),
      head_(Header(unit, readings.size())),
      faults_(std::move(faults)),
      random_(seed),
      soil_(unit.soil()),
      readings_(std::move(readings)),
      download_unit_(unit.id()),
      lines_(readings_.size()),
      sends_ok_(true) {
  ArrangeFaults();
}

void Exchange::ArrangeFaults() {
  for (Fault& fault : faults_) {
    fault.line = std::min(fault.line, EndLine());
    switch (fault.kind) {
      case FaultKind::NoOk:
        sends_ok_ = false;
        break;
      case FaultKind::Pieces:
        piece_size_ = AmountOr(fault, -1);
        break;
      case FaultKind::Header:
        head_ = fault.text + "\r\n";
        break;
      case FaultKind::Reply:
        head_ = fault.text + "\r\n";
        lines_ = 0;
        download_unit_ = 0;
        sends_ok_ = false;
        break;
      default:
        break;
    }
  }
  std::erase_if(faults_, [](const Fault& fault) { return fault.kind >= FaultKind::NoOk; });
  std::stable_sort(faults_.begin(), faults_.end(),
                   [](const Fault& a, const Fault& b) { return std::tie(a.line, a.kind) < std::tie(b.line, b.kind); });
}

bool Exchange::FaultDue(FaultKind first, FaultKind last) const {
  return next_fault_ < faults_.size() && faults_[next_fault_].line == line_ && faults_[next_fault_].kind >= first &&
         faults_[next_fault_].kind <= last;
}

Step Exchange::Produce(std::string& out) {
  const std::size_t start = out.size();
  while (!ended_ && out.size() - start < kEnoughBytes) {
    if (babbling_) {
      out += Noise(1);
      return {Step::Kind::Pause, kBabblePause};
    }
    if (flood_left_ > 0) {
      const auto bytes = std::min<std::int64_t>(flood_left_, kEnoughBytes);
      out += Noise(bytes);
      flood_left_ -= bytes;
    } else if (FaultDue(FaultKind::Error, FaultKind::Delay)) {
      const Step step = Meet(faults_[next_fault_++], out);
      if (step.kind != Step::Kind::More) {
        return step;
      }
    } else {
      AppendLine(out);
    }
  }
  return {ended_ ? Step::Kind::End : Step::Kind::More, 0};
}

Step Exchange::Meet(const Fault& fault, std::string& out) {
  switch (fault.kind) {
    case FaultKind::Error:
      out += fault.amount < 0 ? "ERROR\r\n" : ErrorLine(fault.amount);
      ended_ = true;
      return {Step::Kind::End, 0};
    case FaultKind::Silence:
      ended_ = true;
      return {Step::Kind::End, 0};
    case FaultKind::HangUp:
      ended_ = true;
      return {Step::Kind::HangUp, fault.amount};
    case FaultKind::Delay:
      return {Step::Kind::Pause, AmountOr(fault, kDelay)};
    case FaultKind::Babble:
      babbling_ = true;
      break;
    case FaultKind::Flood:
      flood_left_ = AmountOr(fault, kFloodBytes);
      break;
    default:
      out += Noise(AmountOr(fault, kNoiseBytes));
      break;
  }
  return {};
}

void Exchange::AppendLine(std::string& out) {
  const std::size_t start = out.size();
  if (line_ < 0) {
    out += echo_;
  } else if (line_ == 0) {
    out += head_;
  } else if (line_ <= lines_) {
    AppendReading(out);
  } else {
    if (sends_ok_) out += "OK\r\n";
    complete_ = sends_ok_;
    ended_ = true;
  }
  while (FaultDue(FaultKind::WrongItems, FaultKind::NoiseWithin)) Spoil(faults_[next_fault_++], out, start);
  if (lower_checksum_due_) LowerChecksum(out, start);
  ++line_;
}

void Exchange::AppendReading(std::string& out) {
  const std::size_t start = out.size();
  const StoredReading reading = readings_.Take();
  out += '$';
  soil_.AppendReading(out, reading.number, reading.date);
  CloseFrame(out, start);
}

void Exchange::Spoil(const Fault& fault, std::string& out, std::size_t line_start) {
  if (fault.kind == FaultKind::LowerChecksum) {
    lower_checksum_due_ = true;
    return;
  }
  if (fault.kind == FaultKind::NoiseWithin) {
    out.insert(line_start + (out.size() - line_start) / 2, Noise(AmountOr(fault, kNoiseBytes)));
    return;
  }
  if (out.size() - line_start <= kFrameEnd || out[line_start] != '$') {
    return;
  }
  if (fault.kind == FaultKind::BadChecksum) {
    char& digit = out[out.size() - 3];
    digit = digit == '0' ? '1' : '0';
    return;
  }
  std::string items = out.substr(line_start + 1, out.size() - line_start - 1 - kFrameEnd);
  SpoilItems(fault.kind, items);
  out.resize(line_start);
  AppendFramed(out, items);
}

void Exchange::LowerChecksum(std::string& out, std::size_t line_start) {
  if (out.size() - line_start <= kFrameEnd || out[line_start] != '$') {
    return;
  }
  for (const std::size_t at : {out.size() - 4, out.size() - 3}) {
    if (out[at] >= 'A') {
      out[at] = static_cast<char>(std::tolower(static_cast<unsigned char>(out[at])));
      lower_checksum_due_ = false;
    }
  }
}

std::string Exchange::Noise(std::int64_t bytes) {
  std::string noise;
  noise.reserve(static_cast<std::size_t>(bytes));
  while (static_cast<std::int64_t>(noise.size()) < bytes) {
    const char byte = static_cast<char>(random_.Next());
    if (byte != '\r' && byte != '\n') noise += byte;
  }
  return noise;
}

}  // namespace corvane::basestation
