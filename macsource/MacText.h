// Measures of texts in the interface font.
#pragma once

/// Closes the fonts that the measures have opened. The next measure opens them again.
void Close_Fonts();
