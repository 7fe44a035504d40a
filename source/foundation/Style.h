// How the environment gets its style: the defaults that hold on every machine, and what depends on the
// monitor.
#pragma once

#include "ZVEnvironment.h"

/// Fills in the default pens, gamma-corrected where they are colours of surfaces, and the spacing.
void Init_Style(ZVStyle& style);

/// Font sizes, tab height and gadget sizes for a monitor of that width.
/// @param fontSize  the application's font size in points, or null for that of the monitor
void Set_Metrics(ZVStyle& style, long monitorWidth, long const* fontSize);
