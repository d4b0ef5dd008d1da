#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <vector>

/// What can be done to bytes: encode them as text, decode them from text, or digest them.
namespace Conversion {

/// Returns the names of all conversions, in order.
std::vector<QString> names();

/// The outcome of a conversion: its text, or why there is none, in the user's language.
struct Outcome {
  QString text;
  bool refused = false;
};

/// Performs the conversion of an index on all that the device has, in pieces. Decoded bytes that are not
/// UTF-8 are shown in base 16, and a long text only up to a limit.
Outcome perform(std::size_t conversion, QIODevice& input);

}  // namespace Conversion
