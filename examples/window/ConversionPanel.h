#pragma once

#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QWidget>

#include "examples/window/Background.h"

/// Encodes, decodes or digests what is typed, or a file that is dropped or chosen.
class ConversionPanel : public QWidget {
 public:
  /// Files are read on `background`.
  explicit ConversionPanel(Background& background);

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void chooseFile();
  void take(const QString& file);
  void convert();
  void convertFile(std::size_t conversion);

  Background& background_;
  QString file_;  // empty for what is typed
  QComboBox* const conversions_ = new QComboBox(this);
  QPlainTextEdit* const input_ = new QPlainTextEdit(this);
  QPlainTextEdit* const output_ = new QPlainTextEdit(this);
  QLabel* const source_ = new QLabel(this);
};
