// The signs of the table of units, told apart by shape as well as by colour.
#pragma once

#include <cstdint>

#include <QRectF>

#include "history/network_status.h"

class QPainter;

namespace corvane::window {

enum class StationSign : std::uint8_t { Off, New, Silent, Late, Trouble, Fine, Running };

/// The sign of how a unit stands.
[[nodiscard]] StationSign SignOf(UnitState state);
/// Paints a sign with a light rim, so that it stands out from any ground.
void PaintSign(QPainter& painter, const QRectF& where, StationSign sign);

}  // namespace corvane::window
