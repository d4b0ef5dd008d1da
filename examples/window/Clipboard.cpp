#include "examples/window/Clipboard.h"

#include <VXFoundation/VXDigest.h>
#include <VXFoundation/VXQt.h>

#include <QClipboard>
#include <QGuiApplication>

namespace {

QByteArray digestOf(const QString& text) {
  VXDigest digest = VXDigest::SHA256();
  digest.update(VXQt::data(text.toUtf8())->bytes());
  return VXQt::qByteArray(digest.finish());
}

}  // namespace

Clipboard::Clipboard() {
  timer_.setSingleShot(true);
  timer_.setInterval(30000);
  timer_.callOnTimeout([this] { clear(); });
}

void Clipboard::copy(const QString& password) {
  digest_ = digestOf(password);
  QGuiApplication::clipboard()->setText(password);
  timer_.start();
}

void Clipboard::clear() {
  QClipboard* clipboard = QGuiApplication::clipboard();
  if (!digest_.isEmpty() && digestOf(clipboard->text()) == digest_) clipboard->clear();
  digest_.clear();
}
