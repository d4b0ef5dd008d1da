// Drives the window by a script of steps, without a screen: presses keys, and reports what the window shows
// and what the store holds. scripts/Window.txt has the steps.
#include <Security/SecFileStorage.h>

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QPainter>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>

#include "examples/window/Dropped.h"
#include "examples/window/Localised.h"
#include "examples/window/Window.h"

namespace {

QWidget* frontWindow(Window& window) {
  QWidget* dialog = QApplication::activeModalWidget();
  return dialog ? dialog : &window;
}

QWidget* focused(Window& window) {
  QWidget* front = frontWindow(window);
  return front->focusWidget() ? front->focusWidget() : front;
}

/// Whether a button is down, as one is for a moment after its shortcut was pressed.
bool hasButtonDown(const QWidget& front) {
  const auto buttons = front.findChildren<QPushButton*>();
  return std::any_of(buttons.begin(), buttons.end(), [](const auto* each) { return each->isDown(); });
}

QStringList buttonsOf(const QWidget& front) {
  QStringList titles;
  for (const auto* each : front.findChildren<QPushButton*>()) titles += each->text();
  return titles;
}

/// Returns all that a window shows to a person, in lines.
QString shownBy(const QWidget& front) {
  QString all;
  for (const QWidget* each : front.findChildren<QWidget*>()) {
    if (!each->isVisible()) continue;
    for (const char* property : {"text", "informativeText", "plainText", "currentText", "displayText"})
      all += each->property(property).toString() + "\n";
    if (const auto* bar = qobject_cast<const QStatusBar*>(each)) all += bar->currentMessage() + "\n";
    if (const auto* list = qobject_cast<const QAbstractItemView*>(each);
        list && !qobject_cast<const QHeaderView*>(list))
      for (int row = 0; list->model() && row < list->model()->rowCount(); ++row)
        for (int column = 0; column < list->model()->columnCount(); ++column)
          if (const auto* table = qobject_cast<const QTableWidget*>(each); !table || !table->isRowHidden(row))
            all += list->model()->index(row, column).data().toString() + "\n";
  }
  return all;
}

QString entryOf(const NSRef<VXPasswordKeychainItem>& item) {
  const Entry entry = Passwords::entryOf(*item);
  return entry.account + (Passwords::isForService(*item) ? "/" : "///") + entry.place + "=" +
         VXQt::qString(item->password()) + "(" + entry.label + ")";
}

/// Returns the entries of the store, those for services first, as ACCOUNT/PLACE=PASSWORD(LABEL); the place of
/// a server begins with two slashes.
QString storeContent() {
  const auto ofServices = VXGenericKeychainItem::findAllKeychainItemsForUsername(nullptr, nullptr, true);
  const auto ofServers = VXInternetKeychainItem::findAllKeychainItemsForUsername(
      nullptr, nullptr, nullptr, 0, VXInternetKeychainItemProtocolNone, true);
  if (!ofServices || !ofServers) return "an error";
  QStringList entries;
  for (const auto& found : {ofServices, ofServers})
    for (const NSRef<NSObject> each : *found) entries += entryOf(NSDynamicCast<VXPasswordKeychainItem>(each));
  return entries.join(" ");
}

QString put(const QStringList& words) {
  const auto account = VXQt::string(words[0]), password = VXQt::string(words[2]),
             label = VXQt::string(words[3]);
  const auto place = VXQt::string(words[1]);
  NSRefPtr<VXPasswordKeychainItem> item =
      VXGenericKeychainItem::keychainItemWithUsername(account, password, label, place);
  if (words[1].startsWith("//"))
    item = VXInternetKeychainItem::keychainItemWithUsername(account, password, label,
                                                            VXQt::string(words[1].mid(2)), nullptr, 0,
                                                            VXInternetKeychainItemProtocolHTTPS);
  return item->addItemToKeychain() ? "" : "an error";
}

/// Makes a store that only a passphrase opens.
QString protect(const QStringList& words) {
  SecFilePlace place;
  std::unique_ptr<SecFileStorage> file;
  const QByteArray passphrase = words[1].toUtf8();
  OSStatus status = secFilePlaceAt(words[0].toStdString(), place);
  if (status == errSecSuccess) status = SecFileStorage::open(place, SecFileStorage::Missing::make, file);
  if (status == errSecSuccess) status = file->setPassphrase(std::as_bytes(std::span(passphrase)));
  return status == errSecSuccess ? "" : secStatusMessage(status);
}

void drop(QWidget& panel, const QString& what) {
  QMimeData data;
  if (QFile::exists(what))
    data.setUrls({QUrl::fromLocalFile(QDir::current().filePath(what))});
  else
    data.setText(what);
  QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&panel, &enter);
  QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  if (enter.isAccepted()) QApplication::sendEvent(&panel, &event);
}

/// Saves the window, with the dialog in front of it, if there is one.
void save(Window& window, const QString& file) {
  QPixmap picture = window.grab();
  if (QWidget* front = frontWindow(window); front != &window) {
    const QPixmap dialog = front->grab();
    QPainter painter(&picture);
    painter.fillRect(window.rect(), QColor(0, 0, 0, 90));
    painter.drawPixmap(window.rect().center() - front->rect().center(), dialog);
  }
  picture.save(file);
}

class Driver {
 public:
  explicit Driver(const char* script) : script_(script) {
    timer_.callOnTimeout([this] { QTimer::singleShot(0, [this] { step(); }); });
    timer_.start(15);
  }
  int failures() const { return failures_ + (steps_ == 0); }
  int steps() const { return steps_; }

 private:
  /// Performs the next step, unless the window waits and the step is not about that.
  void step() {
    if (pauses_ || (window_ && hasButtonDown(*frontWindow(*window_)))) return;
    if (window_ && !QApplication::activePopupWidget() && !frontWindow(*window_)->isActiveWindow())
      return frontWindow(*window_)->activateWindow();
    if (window_ && window_->waits() && !next_.startsWith("waits")) return;
    const QString current = std::exchange(next_, read());
    if (!current.isEmpty()) compare(current);
    if (next_.isEmpty()) QApplication::quit();
  }

  QString read() {
    for (std::string line; std::getline(script_, line);) {
      ++line_;
      if (!line.empty() && line[0] != '#' && line[0] != '[') return QString::fromStdString(line);
    }
    return {};
  }

  void compare(const QString& line) {
    const int number = line_;
    const QStringList parts = line.split(" -> ");
    const QString result = perform(parts[0].section(' ', 0, 0), parts[0].section(' ', 1));
    ++steps_;
    if (result == parts.value(1)) return;
    ++failures_;
    std::cout << "before line " << number << ": " << line.toStdString() << "\n  but " << result.toStdString()
              << "\n  " << shownBy(*frontWindow(*window_)).simplified().toStdString() << std::endl;
  }

  QString perform(const QString& operation, const QString& rest) {
    const QStringList words = rest.split(' ');
    if (operation == "open") {
      window_ = std::make_unique<Window>(rest);
      window_->show();
    } else if (operation == "protect") {
      return protect(words);
    } else if (operation == "put") {
      return put(words);
    } else if (operation == "write") {
      std::ofstream(words[0].toStdString()) << rest.section(' ', 1).toStdString();
    } else if (operation == "keys") {
      for (const QString& key : words) QTest::keySequence(focused(*window_), QKeySequence(key));
    } else if (operation == "type") {
      QTest::keyClicks(focused(*window_), rest);
    } else if (operation == "drop") {
      drop(*window_->findChild<QTabWidget*>()->currentWidget(), rest);
    } else if (operation == "limit") {
      window_->passwords().clipboard().setLimit(rest.toInt());
    } else if (operation == "wait") {
      pause([&] { QTest::qWait(rest.toInt()); });
    } else if (operation == "picture") {
      save(*window_, rest);
    } else {
      return ask(operation, rest);
    }
    return {};
  }

  /// Lets time pass without another step.
  template <class Wait>
  void pause(Wait&& wait) {
    pauses_ = true;
    wait();
    pauses_ = false;
  }

  QString ask(const QString& question, const QString& rest) {
    if (question == "store") return storeContent();
    if (question == "clipboard") return QApplication::clipboard()->text();
    if (question == "buttons") return buttonsOf(*frontWindow(*window_)).join(", ");
    if (question == "waits") return window_->waits() ? "yes" : "no";
    if (question == "shows") return shownBy(*frontWindow(*window_)).contains(rest) ? "yes" : "no";
    return "there is no step " + question;
  }

  std::ifstream script_;
  QTimer timer_;
  std::unique_ptr<Window> window_;
  QString next_;
  bool pauses_ = false;
  int line_ = 0, steps_ = 0, failures_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  const QTemporaryDir home;
  for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME"}) qputenv(name, home.path().toUtf8());
  QApplication application(argc, argv);
  QApplication::setStyle("Fusion");
  NSLogSetSink([](std::string_view) {});
  Driver driver(argv[1]);
  if (argc < 3) QDir::setCurrent(home.path());
  QApplication::exec();
  std::cout << driver.steps() << " steps, " << driver.failures() << " failures\n";
  return driver.failures() == 0 ? 0 : 1;
}
