// SPDX-License-Identifier: GPL-3.0-or-later
// A chart as a picture, drawn from its description rather than from a window,
// so that the clipboard (which draws when another program asks), the files,
// the printer and the command line all draw the chart that was asked for,
// whatever happened to the window since.
#pragma once

#include "engine/graphs/chartdescription.h"
#include "render/pictures/picture.h"

namespace kel {

/// The size `kel render` draws charts at when none is asked for.
inline constexpr QSize DefaultChartPictureSize{800, 600};

/// `chart` drawn by the chart builder at `size` pixels. Needs a widget
/// application (the chart is a graphics widget).
Picture chartPicture(const ChartDescription &chart, const QSize &size);

} // namespace kel
