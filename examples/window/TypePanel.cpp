#include "examples/window/TypePanel.h"

#include <CoreServices/UTTypeTags.h>

#include <QFileDialog>
#include <QFileInfo>
#include <QFont>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "examples/window/Dropped.h"
#include "examples/window/Localised.h"

namespace {

/// The general types that are looked for, each with what a person calls it.
struct General {
  const char* type;
  const char* name;
};
constexpr General generals[] = {{"public.text", "Text"},
                                {"public.plain-text", "Plain text"},
                                {"public.source-code", "Source code"},
                                {"public.image", "Image"},
                                {"public.audio", "Sound"},
                                {"public.movie", "Video"},
                                {"public.audiovisual-content", "Sound or video"},
                                {"public.archive", "Archive"},
                                {"public.content", "Content"},
                                {"public.composite-content", "Document"},
                                {"public.data", "Data"},
                                {"public.item", "Anything"}};

}  // namespace

TypePanel::TypePanel() {
  setAcceptDrops(true);
  QFont large = font();
  large.setPointSizeF(large.pointSizeF() * 1.4);
  large.setBold(true);
  type_->setFont(large);
  type_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  file_->setText(localised("Drop a file, or choose one"));
  auto* choose = new QPushButton(localised("File…"), this);
  choose->setShortcut(QKeySequence::Open);
  connect(choose, &QPushButton::clicked, this, [this] { chooseFile(); });

  auto* top = new QHBoxLayout;
  top->addWidget(file_, 1);
  top->addWidget(choose);
  auto* rows = new QVBoxLayout(this);
  rows->addLayout(top);
  rows->addWidget(type_);
  rows->addWidget(new QLabel(localised("It conforms to:"), this));
  rows->addWidget(conforms_);
}

void TypePanel::dragEnterEvent(QDragEnterEvent* event) {
  if (!fileOf(*event).isEmpty()) event->acceptProposedAction();
}

void TypePanel::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  take(fileOf(*event));
}

void TypePanel::chooseFile() {
  const QString file = QFileDialog::getOpenFileName(this, localised("File"));
  if (!file.isEmpty()) take(file);
}

void TypePanel::take(const QString& file) {
  const QString name = QFileInfo(file).fileName();
  const NSRefPtr<NSString> type = UTTypeIdentifierForFileName(VXQt::string(name));
  file_->setText(name);
  type_->setText(VXQt::qString(type));
  conforms_->clear();
  for (const General& general : generals) {
    const NSRef<NSString> english = NSString::stringWithString(general.name);
    if (VXUTTypeConformsTo(type, general.type))
      conforms_->addItem(localised(english) + "  ·  " + general.type);
  }
}
