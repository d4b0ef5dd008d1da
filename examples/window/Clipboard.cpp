#include "examples/window/Clipboard.h"

#include <VXFoundation/VXDigest.h>
#include <VXFoundation/VXQt.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

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
  auto* data = new QMimeData;
  data->setText(password);
  data->setData("x-kde-passwordManagerHint", "secret");  // which histories of the clipboard heed
  QGuiApplication::clipboard()->setMimeData(data);
  timer_.start();
}

void Clipboard::clear() {
  QClipboard* clipboard = QGuiApplication::clipboard();
  if (!digest_.isEmpty() && digestOf(clipboard->text()) == digest_) clipboard->clear();
  digest_.clear();
}
