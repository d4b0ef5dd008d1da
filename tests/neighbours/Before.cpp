// The headers and macros of others come before ours.
#include <X11/Intrinsic.h>
#include <curses.h>
#include <gio/gio.h>
#include <glib.h>

#include "Macros.h"
// Ours:
#include <VXFoundation/VXFoundation.h>

#include "Use.h"

bool worksAfterOthers() { return useLibrary(); }
