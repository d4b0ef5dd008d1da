#include "examples/window/PasswordPanel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QMessageBox>
#include <QShortcut>
#include <QVBoxLayout>
#include <memory>

#include "examples/window/Localised.h"

PasswordPanel::PasswordPanel(Background& background, std::function<void(const QString&)> report)
    : background_(background), report_(std::move(report)) {
  search_->setPlaceholderText(localised("Search"));
  search_->setClearButtonEnabled(true);
  connect(search_, &QLineEdit::textChanged, this, [this] { filter(); });
  connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this,
          [this] { search_->setFocus(); });
  connect(new QShortcut(QKeySequence::Refresh, this), &QShortcut::activated, this, [this] {
    if (add_->isEnabled()) reload();
  });
  shown_->setReadOnly(true);
  shown_->setPlaceholderText(localised("The password is hidden"));
  makeTable();

  auto* rows = new QVBoxLayout(this);
  rows->addWidget(search_);
  rows->addWidget(table_);
  rows->addWidget(shown_);
  rows->addWidget(makeButtons());
  setFocusProxy(table_);
  select();
}

void PasswordPanel::makeTable() {
  table_->setColumnCount(3);
  table_->setHorizontalHeaderLabels({localised("Label"), localised("Account"), localised("For")});
  table_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  table_->horizontalHeader()->setHighlightSections(false);
  table_->verticalHeader()->hide();
  table_->setSelectionBehavior(QTableWidget::SelectRows);
  table_->setSelectionMode(QTableWidget::SingleSelection);
  table_->setEditTriggers(QTableWidget::NoEditTriggers);
  table_->setTabKeyNavigation(false);
  table_->setShowGrid(false);
  table_->setAlternatingRowColors(true);
  connect(table_, &QTableWidget::itemSelectionChanged, this, [this] { select(); });
}

QPushButton* PasswordPanel::addButton(const QString& title, const QKeySequence& key,
                                      void (PasswordPanel::*action)()) {
  auto* button = new QPushButton(title, this);
  button->setShortcut(key);
  button->setToolTip(key.toString(QKeySequence::NativeText));
  connect(button, &QPushButton::clicked, this, [this, action] { (this->*action)(); });
  return button;
}

QWidget* PasswordPanel::makeButtons() {
  auto* row = new QWidget(this);
  auto* buttons = new QHBoxLayout(row);
  buttons->setContentsMargins(0, 0, 0, 0);
  needSelection_ = {addButton(localised("Edit…"), QKeySequence("Ctrl+E"), &PasswordPanel::edit),
                    addButton(localised("Rename…"), QKeySequence("F2"), &PasswordPanel::rename),
                    addButton(localised("Delete…"), QKeySequence("Del"), &PasswordPanel::remove),
                    addButton(localised("Show"), QKeySequence("Ctrl+H"), &PasswordPanel::reveal),
                    addButton(localised("Copy"), QKeySequence("Ctrl+Shift+C"), &PasswordPanel::copy)};
  add_ = addButton(localised("Add…"), QKeySequence::New, &PasswordPanel::add);
  buttons->addWidget(add_);
  for (QPushButton* button : needSelection_) buttons->addWidget(button);
  return row;
}

void PasswordPanel::choose(const QString& place) {
  items_.clear();
  fill();
  add_->setEnabled(false);
  background_.run([this, place] { return store_.choose(place); },
                  [=, this](const NSRefPtr<NSError>& error) {
                    if (error) {
                      presentError(this, error, {{"Try Again", [=, this] { choose(place); }}});
                    } else {
                      add_->setEnabled(true);
                      reload();
                    }
                  });
}

void PasswordPanel::perform(const Background::Work& work, const Done& done,
                            const std::vector<Recovery>& recoveries) {
  background_.run(work, [=, this](const NSRefPtr<NSError>& error) {
    if (error)
      recover(error, work, done, recoveries);
    else
      done();
  });
}

void PasswordPanel::recover(const NSRef<NSError>& error, const Background::Work& work, const Done& done,
                            std::vector<Recovery> recoveries) {
  const Done again = [=, this] { perform(work, done, recoveries); };
  const OSStatus status = statusOf(*error);
  if (status == errSecInteractionNotAllowed)
    recoveries = {{"Unlock", [=, this] { unlock(again); }}};
  else if (status != errSecDuplicateItem)
    recoveries = {{"Try Again", again}};
  if (!presentError(this, error, recoveries) && status != errSecInteractionNotAllowed) reload();
}

void PasswordPanel::unlock(const Done& done) {
  const auto entered = askLine(this, localised("Unlock"), localised("&Passphrase:"), QString(), true);
  if (!entered) return;
  const auto passphrase = std::make_shared<QByteArray>(entered->toUtf8());
  background_.run([this, passphrase] { return store_.unlock(*passphrase); },
                  [=, this](const NSRefPtr<NSError>& error) {
                    if (!error) return done();
                    presentError(this, error, {{"Try Again", [=, this] { unlock(done); }}});
                  });
}

void PasswordPanel::reload() {
  const auto found = std::make_shared<std::vector<Passwords::Item>>();
  perform([found] { return found->clear(), Passwords::list(*found); },
          [this, found] {
            items_ = std::move(*found);
            fill();
          });
}

void PasswordPanel::fill() {
  const int row = table_->currentRow();
  table_->setRowCount(static_cast<int>(items_.size()));
  for (int i = 0; i < table_->rowCount(); ++i) {
    const Entry entry = Passwords::entryOf(*items_[static_cast<std::size_t>(i)]);
    int column = 0;
    for (const QString& text : {entry.label, entry.account, entry.place})
      table_->setItem(i, column++, new QTableWidgetItem(text));
  }
  if (table_->rowCount() > 0) table_->selectRow(std::clamp(row, 0, table_->rowCount() - 1));
  filter();
}

void PasswordPanel::filter() {
  for (int row = 0; row < table_->rowCount(); ++row) {
    bool matches = false;
    for (int column = 0; column < table_->columnCount(); ++column)
      matches = matches || table_->item(row, column)->text().contains(search_->text(), Qt::CaseInsensitive);
    table_->setRowHidden(row, !matches);
  }
  int row = 0;
  while (row < table_->rowCount() && table_->isRowHidden(row)) ++row;
  if (!selected()) {
    if (row < table_->rowCount())
      table_->selectRow(row);
    else
      table_->clearSelection();
  }
  select();
}

void PasswordPanel::select() {
  shown_->clear();
  for (QPushButton* button : needSelection_) button->setEnabled(selected() != nullptr);
}

const Passwords::Item* PasswordPanel::selected() const {
  const int row = table_->currentRow();
  if (row < 0 || table_->selectedItems().isEmpty() || table_->isRowHidden(row)) return nullptr;
  return &items_[static_cast<std::size_t>(row)];
}

void PasswordPanel::add() {
  const auto entry = askEntry(this, localised("Add a password"), {}, true, false);
  if (!entry) return;
  const Done added = [this] { reload(); };
  perform([entry] { return Passwords::add(*entry); }, added,
          {{"Replace", [=, this] { perform([entry] { return Passwords::replace(*entry); }, added); }}});
}

void PasswordPanel::edit() {
  const Passwords::Item item = *selected();
  const auto entry = askEntry(this, localised("Edit the password"), Passwords::entryOf(*item), false,
                              !Passwords::isForService(*item));
  if (entry) change(*entry);
}

void PasswordPanel::rename() {
  Entry entry = Passwords::entryOf(**selected());
  const auto account =
      askLine(this, localised("Rename the account"), localised("&Account:"), entry.account, false);
  if (!account) return;
  entry.account = *account;
  change(entry);
}

void PasswordPanel::change(const Entry& entry) {
  const Passwords::Item item = *selected();
  const Done changed = [this] { reload(); };
  const auto inPlace = [item, entry] { return Passwords::changeInPlaceOfOther(item, entry); };
  std::vector<Recovery> recoveries;
  if (Passwords::isForService(*item)) recoveries = {{"Replace", [=, this] { perform(inPlace, changed); }}};
  perform([item, entry] { return Passwords::change(item, entry); }, changed, recoveries);
}

void PasswordPanel::remove() {
  const Passwords::Item item = *selected();
  const Entry entry = Passwords::entryOf(*item);
  QMessageBox box(QMessageBox::Question, localised("Delete"),
                  localised("Delete the password of %1 for %2?").arg(entry.account, entry.place),
                  QMessageBox::NoButton, this);
  const QAbstractButton* yes = box.addButton(localised("Delete"), QMessageBox::AcceptRole);
  box.setDefaultButton(box.addButton(localised("Cancel"), QMessageBox::RejectRole));
  box.exec();
  if (box.clickedButton() != yes) return;
  perform([item] { return Passwords::remove(item); }, [this] { reload(); });
}

void PasswordPanel::withPassword(const std::function<void(const QString&)>& use) {
  const Passwords::Item item = *selected();
  const auto password = std::make_shared<QString>();
  perform([item, password] { return Passwords::read(item, *password); }, [password, use] { use(*password); });
}

void PasswordPanel::reveal() {
  if (!shown_->text().isEmpty()) return shown_->clear();
  withPassword([this](const QString& password) { shown_->setText(password); });
}

void PasswordPanel::copy() {
  withPassword([this](const QString& password) {
    clipboard_.copy(password);
    report_(localised("Copied; the clipboard is cleared after %1 seconds.").arg(clipboard_.limit() / 1000));
  });
}
