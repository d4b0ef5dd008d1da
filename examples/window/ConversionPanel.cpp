#include "examples/window/ConversionPanel.h"

#include <QBuffer>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>
#include <memory>

#include "examples/window/Conversion.h"
#include "examples/window/Dropped.h"
#include "examples/window/Localised.h"

ConversionPanel::ConversionPanel(Background& background) : background_(background) {
  setAcceptDrops(true);
  for (const QString& name : Conversion::names()) conversions_->addItem(name);
  input_->setPlaceholderText(localised("Type here, or drop a file"));
  input_->setTabChangesFocus(true);
  input_->setAcceptDrops(false);  // the panel takes them
  output_->setReadOnly(true);
  output_->setTabChangesFocus(true);
  auto* choose = new QPushButton(localised("File…"), this);
  choose->setShortcut(QKeySequence::Open);

  auto* conversion = new QLabel(localised("&Conversion:"), this);
  conversion->setBuddy(conversions_);
  auto* input = new QLabel(localised("&Input:"), this);
  input->setBuddy(input_);
  auto* top = new QHBoxLayout;
  top->addWidget(conversion);
  top->addWidget(conversions_, 1);
  top->addWidget(choose);
  auto* rows = new QVBoxLayout(this);
  rows->addLayout(top);
  rows->addWidget(input);
  rows->addWidget(input_);
  rows->addWidget(source_);
  rows->addWidget(output_);

  connect(choose, &QPushButton::clicked, this, [this] { chooseFile(); });
  connect(conversions_, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] { convert(); });
  connect(input_, &QPlainTextEdit::textChanged, this, [this] { take({}); });
  take({});
}

void ConversionPanel::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasText() || !fileOf(*event).isEmpty()) event->acceptProposedAction();
}

void ConversionPanel::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  const QString file = fileOf(*event);
  if (file.isEmpty())
    input_->setPlainText(event->mimeData()->text());
  else
    take(file);
}

void ConversionPanel::chooseFile() {
  const QString file = QFileDialog::getOpenFileName(this, localised("File"));
  if (!file.isEmpty()) take(file);
}

void ConversionPanel::take(const QString& file) {
  file_ = file;
  source_->setText(file.isEmpty() ? localised("Result for the text above:")
                                  : localised("Result for the file %1:").arg(QFileInfo(file).fileName()));
  convert();
}

void ConversionPanel::convert() {
  const auto conversion = static_cast<std::size_t>(conversions_->currentIndex());
  if (!file_.isEmpty()) return convertFile(conversion);
  QByteArray typed = input_->toPlainText().toUtf8();
  QBuffer buffer(&typed);
  buffer.open(QIODevice::ReadOnly);
  output_->setPlainText(Conversion::perform(conversion, buffer).text);
}

void ConversionPanel::convertFile(std::size_t conversion) {
  const auto text = std::make_shared<QString>();
  background_.run(
      [conversion, text, path = file_] {
        QFile file(path);
        *text = file.open(QIODevice::ReadOnly) ? Conversion::perform(conversion, file).text
                                               : localised("The file cannot be read.");
        return NSRefPtr<NSError>();
      },
      [this, text](const NSRefPtr<NSError>&) { output_->setPlainText(*text); });
}
