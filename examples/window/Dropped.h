#pragma once

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QString>
#include <QUrl>

/// Returns the path of the first local file that is dragged or dropped, empty if there is none.
inline QString fileOf(const QDropEvent& event) {
  for (const QUrl& url : event.mimeData()->urls())
    if (url.isLocalFile()) return url.toLocalFile();
  return {};
}
