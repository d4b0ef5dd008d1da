// Other headers and macros, included before ours or, with OURS_FIRST, after them.
#ifdef OURS_FIRST
#include <Security/SecDesktopStorage.h>
#include <Security/SecFileStorage.h>
#include <VXFoundation/VXFoundation.h>
#endif
// Others:
#include <X11/Intrinsic.h>
#include <curses.h>
#include <gio/gio.h>
#include <glib.h>
// Included before the first two macros, which break the standard library.
#include <bits/stdc++.h>

// The macros of Windows' headers, of older C libraries and of Qt's keywords.
#define min(a, b) ((a) < (b) ? (a) : (b))
#define max(a, b) ((a) > (b) ? (a) : (b))
#define signals public
#define slots
#define emit
#define foreach(element, list) for (element : list)
#define forever for (;;)
#define Q_OBJECT
// Ours:
#include <Security/SecDesktopStorage.h>
#include <Security/SecFileStorage.h>
#include <VXFoundation/VXFoundation.h>

#ifdef OURS_FIRST
#define WORKS worksBeforeOthers
#else
#define WORKS worksAfterOthers
#endif

// Instantiates templates of every kind, whose bodies such macros could change.
bool WORKS() {
  const auto bytes = NSData::dataWithBytes("Hello", 5);
  const auto text = VXBaseConversion::base64String(*bytes);
  const auto array = NSMutableArray::arrayWithObjects({"a", text});
  const auto mapped = VXAdditions::vxfoundation_map(
      *array, [](const NSRef<NSObject>& each, std::size_t, bool*) { return each->description(); });
  const auto item = VXGenericKeychainItem::keychainItemWithUsername("ann", "secret", nullptr, "mail");
  const auto attempter = VXErrorRecoveryAttempter::errorRecoveryAttempter();
  attempter->addRecoveryOptionWithLocalizedTitle("Retry", [](const NSRefPtr<NSError>&) { return true; });
  return text->isEqualToString("SGVsbG8=") && mapped->count() == 2 && item->username()->length() == 3 &&
         attempter->attemptRecoveryFromError(nullptr, 0) &&
         VXUTTypeConformsTo("public.png", "public.image") &&
         NSString::stringWithFormat("%@ %d", text, 7)->length() == 10;
}
