#pragma once

// Whether the desktop composites windows, so that a translucent window shows what lies
// behind it. Without a compositor a translucent window is drawn over black instead.
bool TWDesktopCompositesWindows();
