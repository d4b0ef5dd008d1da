#pragma once

#include <QString>
#include <QWidget>
#include <optional>

/// What a person enters about an entry.
struct Entry {
  QString label;
  QString account;
  QString place;     ///< the service or server
  QString password;  ///< empty to leave it as it is
};

/// Asks for an entry; fields start as `entry` has them. The place can be changed unless `fixedPlace`.
std::optional<Entry> askEntry(QWidget* parent, const QString& title, const Entry& entry, bool isNew,
                              bool fixedPlace);
/// Asks for one line, hidden if `secret`.
std::optional<QString> askLine(QWidget* parent, const QString& title, const QString& question,
                               const QString& line, bool secret);
