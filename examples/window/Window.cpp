#include "examples/window/Window.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QShortcut>
#include <QStatusBar>
#include <QVBoxLayout>

#include "examples/window/ConversionPanel.h"
#include "examples/window/Localised.h"
#include "examples/window/TypePanel.h"

namespace {

/// The last of the stores, which asks for a file.
const QString anotherFile = ":file:";

}  // namespace

Window::Window(const QString& place)
    : passwords_(new PasswordPanel(background_,
                                   [this](const QString& done) { statusBar()->showMessage(done, 10000); })) {
  setWindowTitle(localised("Passwords"));
  resize(720, 480);
  auto* page = new QWidget(this);
  auto* rows = new QVBoxLayout(page);
  rows->addWidget(makeStoreRow(place));
  rows->addWidget(passwords_);
  tabs_->addTab(page, localised("&Passwords"));
  tabs_->addTab(new ConversionPanel(background_), localised("&Text and digests"));
  tabs_->addTab(new TypePanel, localised("&File types"));
  tabs_->setDocumentMode(true);
  setCentralWidget(tabs_);

  progress_->setRange(0, 0);
  progress_->setMaximumWidth(120);
  waiting_->setText(localised("Waiting for the keychain…"));
  statusBar()->addPermanentWidget(waiting_);
  statusBar()->addPermanentWidget(progress_);
  showWaiting(false);
  connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
  connect(new QShortcut(QKeySequence("Ctrl+Q"), this), &QShortcut::activated, this, &QWidget::close);
  passwords_->setFocus();
  passwords_->choose(place);
}

QWidget* Window::makeStoreRow(const QString& place) {
  auto* row = new QWidget(this);
  auto* columns = new QHBoxLayout(row);
  columns->setContentsMargins(9, 9, 9, 0);
  auto* label = new QLabel(localised("&Keychain:"), row);
  label->setBuddy(stores_);
  columns->addWidget(label);
  columns->addWidget(stores_, 1);
  stores_->addItem(localised("My keychain"), "");
  stores_->addItem(localised("The desktop's password service"), ":desktop:");
  stores_->addItem(localised("In memory, until the window closes"), ":memory:");
  if (stores_->findData(place) < 0) stores_->addItem(QFileInfo(place).fileName(), place);
  stores_->setCurrentIndex(stores_->findData(place));
  stores_->addItem(localised("Another file…"), anotherFile);
  connect(stores_, QOverload<int>::of(&QComboBox::activated), this, [this] {
    if (stores_->currentData() == anotherFile)
      chooseFile();
    else
      passwords_->choose(stores_->currentData().toString());
  });
  return row;
}

void Window::chooseFile() {
  const QString file = QFileDialog::getSaveFileName(this, localised("Another file…"), QString(), QString(),
                                                    nullptr, QFileDialog::DontConfirmOverwrite);
  if (file.isEmpty()) return;
  stores_->insertItem(stores_->count() - 1, QFileInfo(file).fileName(), file);
  stores_->setCurrentIndex(stores_->count() - 2);
  passwords_->choose(file);
}

void Window::showWaiting(bool waits) {
  progress_->setVisible(waits);
  waiting_->setVisible(waits);
  if (waits) lastFocus_ = focusWidget();
  tabs_->setEnabled(!waits);
  if (!waits && lastFocus_) lastFocus_->setFocus();
}
