// A small password manager, and the codecs, digests and types of the library, in a window. One source for Qt
// 5 and Qt 6. The argument is a store: the path of a file, ":memory:" or ":desktop:"; without one, the user's
// own.
#include <Foundation/NSLog.h>

#include <QApplication>

#include "examples/window/Window.h"

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  NSLogSetSink([](std::string_view) {});  // the window shows what goes wrong
  Window window(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString());
  window.show();
  return QApplication::exec();
}
