#include "examples/window/EntryDialog.h"

#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

#include "examples/window/Localised.h"

namespace {

/// A form of lines with the buttons OK, which needs the required lines, and Cancel.
class Form : public QDialog {
 public:
  Form(QWidget* parent, const QString& title) : QDialog(parent) {
    setWindowTitle(title);
    setMinimumWidth(380);
  }

  QLineEdit* add(const QString& name, const QString& text, bool required) {
    auto* line = new QLineEdit(text, this);
    rows_->addRow(name, line);
    line->setProperty("required", required);
    return line;
  }

  /// Shows the form, with its buttons behind its lines.
  bool isAccepted() {
    auto* buttons = new QDialogButtonBox(this);
    ok_ = buttons->addButton(localised("OK"), QDialogButtonBox::AcceptRole);
    buttons->addButton(localised("Cancel"), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    rows_->addRow(buttons);
    for (const QLineEdit* line : findChildren<QLineEdit*>())
      connect(line, &QLineEdit::textChanged, this, [this] { check(); });
    check();
    return exec() == Accepted;
  }

 private:
  void check() {
    bool complete = true;
    for (const QLineEdit* line : findChildren<QLineEdit*>())
      complete = complete && !(line->property("required").toBool() && line->text().isEmpty());
    ok_->setEnabled(complete);
  }

  QFormLayout* const rows_ = new QFormLayout(this);
  QPushButton* ok_ = nullptr;
};

}  // namespace

std::optional<Entry> askEntry(QWidget* parent, const QString& title, const Entry& entry, bool isNew,
                              bool fixedPlace) {
  Form form(parent, title);
  const QLineEdit* label = form.add(localised("&Label:"), entry.label, false);
  const QLineEdit* account = form.add(localised("&Account:"), entry.account, true);
  QLineEdit* place = form.add(localised("&Service:"), entry.place, true);
  place->setEnabled(!fixedPlace);
  QLineEdit* password = form.add(localised("&Password:"), QString(), isNew);
  password->setEchoMode(QLineEdit::Password);
  if (!isNew) password->setPlaceholderText(localised("unchanged"));
  if (!form.isAccepted()) return {};
  return Entry{label->text(), account->text(), place->text(), password->text()};
}

std::optional<QString> askLine(QWidget* parent, const QString& title, const QString& question,
                               const QString& line, bool secret) {
  Form form(parent, title);
  QLineEdit* edit = form.add(question, line, true);
  if (secret) edit->setEchoMode(QLineEdit::Password);
  edit->selectAll();
  if (!form.isAccepted()) return {};
  return edit->text();
}
