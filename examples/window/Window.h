#pragma once

#include <QComboBox>
#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>
#include <QTabWidget>

#include "examples/window/Background.h"
#include "examples/window/PasswordPanel.h"

/// The window: passwords, conversions and types, each behind a tab, and a bar that shows when it waits.
class Window : public QMainWindow {
 public:
  /// Shows the store at a place; see Store::choose.
  explicit Window(const QString& place);

  PasswordPanel& passwords() { return *passwords_; }
  bool waits() const { return !progress_->isHidden(); }

 private:
  QWidget* makeStoreRow(const QString& place);
  void chooseFile();
  void showWaiting(bool waits);

  QProgressBar* const progress_ = new QProgressBar(this);
  QLabel* const waiting_ = new QLabel(this);
  QComboBox* const stores_ = new QComboBox(this);
  QTabWidget* const tabs_ = new QTabWidget(this);
  QWidget* lastFocus_ = nullptr;
  Background background_{[this](bool waits) { showWaiting(waits); }};
  PasswordPanel* const passwords_;
};
