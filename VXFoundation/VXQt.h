#pragma once

#include <QByteArray>
#include <QString>
#include <string_view>

#include <Foundation/NSData.h>
#include <Foundation/NSString.h>

/// Strings and bytes of hosts that use Qt, versions 5 and 6. Not part of the umbrella header: the host's
/// include path must have Qt's core. Each function copies its argument once; none marks a secret, nor can Qt
/// keep one. Safe on any thread.
namespace VXQt {

/// Returns a string of the same code units, unpaired surrogates included; a null QString gives the empty
/// string.
inline NSRef<NSString> string(const QString& string) {
  return NSString::stringWithCharacters(std::u16string_view(reinterpret_cast<const char16_t*>(string.utf16()),
                                                            static_cast<std::size_t>(string.size())));
}

/// Returns a QString of the same code units; nil gives a null one.
///@{
inline QString qString(const NSString& string) {
  return string.visit([](auto units) {
    if constexpr (sizeof units[0] == 1)
      return QString::fromLatin1(units.data(), static_cast<int>(units.size()));
    else
      return QString(reinterpret_cast<const QChar*>(units.data()), static_cast<int>(units.size()));
  });
}
inline QString qString(const NSRefPtr<NSString>& string) { return string ? qString(*string) : QString(); }
///@}

/// Returns the same bytes; a null QByteArray gives empty data.
inline NSRef<NSData> data(const QByteArray& bytes) {
  return NSData::dataWithBytes(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

/// Returns the same bytes; nil gives a null QByteArray.
///@{
inline QByteArray qByteArray(const NSData& data) {
  return {reinterpret_cast<const char*>(data.bytes().data()), static_cast<int>(data.length())};
}
inline QByteArray qByteArray(const NSRefPtr<NSData>& data) { return data ? qByteArray(*data) : QByteArray(); }
///@}

}  // namespace VXQt
