#pragma once

#include <QLabel>
#include <QListWidget>
#include <QWidget>

/// Names the type of a file that is dropped or chosen, and what the type conforms to.
class TypePanel : public QWidget {
 public:
  TypePanel();

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void chooseFile();
  void take(const QString& file);

  QLabel* const file_ = new QLabel(this);
  QLabel* const type_ = new QLabel(this);
  QListWidget* const conforms_ = new QListWidget(this);
};
