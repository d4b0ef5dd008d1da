// The headers and macros of others come after ours.
#include <VXFoundation/VXFoundation.h>
// Theirs:
#include <X11/Intrinsic.h>
#include <curses.h>
#include <gio/gio.h>
#include <glib.h>

#include "Macros.h"
#include "Use.h"

bool worksBeforeOthers() { return useLibrary(); }
