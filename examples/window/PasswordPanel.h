#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QWidget>
#include <functional>
#include <vector>

#include "examples/window/Background.h"
#include "examples/window/Clipboard.h"
#include "examples/window/Errors.h"
#include "examples/window/Passwords.h"
#include "examples/window/Store.h"

/// The list of the passwords in the store of choice, with what can be done to them.
class PasswordPanel : public QWidget {
 public:
  /// Makes the calls on `background`, and reports what was done, for a person, to `report`.
  PasswordPanel(Background& background, std::function<void(const QString&)> report);

  /// Shows the store at a place; see Store::choose.
  void choose(const QString& place);
  Clipboard& clipboard() { return clipboard_; }

 private:
  using Done = std::function<void()>;

  QPushButton* addButton(const QString& title, const QKeySequence& key, void (PasswordPanel::*action)());
  QWidget* makeButtons();
  void makeTable();

  /// Runs work; after a failure lets the person unlock the store, choose one of the recoveries or try again.
  void perform(const Background::Work& work, const Done& done, const std::vector<Recovery>& recoveries = {});
  void recover(const NSRef<NSError>& error, const Background::Work& work, const Done& done,
               std::vector<Recovery> recoveries);
  void unlock(const Done& done);

  void reload();
  void fill();
  void filter();
  void select();
  void add();
  void edit();
  void rename();
  void change(const Entry& entry);
  void remove();
  void reveal();
  void copy();
  void withPassword(const std::function<void(const QString&)>& use);
  const Passwords::Item* selected() const;

  Background& background_;
  const std::function<void(const QString&)> report_;
  Store store_;
  Clipboard clipboard_;
  std::vector<Passwords::Item> items_;
  QLineEdit* const search_ = new QLineEdit(this);
  QTableWidget* const table_ = new QTableWidget(this);
  QLineEdit* const shown_ = new QLineEdit(this);
  QPushButton* add_ = nullptr;  // enabled while there is a store
  std::vector<QPushButton*> needSelection_;
};
