#pragma once

#include <VXFoundation/VXFoundation.h>

#include <Security/SecMemoryStorage.h>

#include <cstdlib>
#include <initializer_list>
#include <iostream>
#include <optional>

/// Marks the start of the output of the block or row at a line of the page.
inline void begin(int line) { std::cout << '\x1e' << line << '\n'; }

inline void write(bool value) { std::cout << (value ? "true" : "false"); }
inline void write(const NSRefPtr<NSObject>& object) {
  std::cout << (object ? NSRefPtr<NSString>(object->description()) : nullptr);
}
template <class Value>
void write(const std::optional<Value>& value) {
  if (value)
    std::cout << *value;
  else
    std::cout << "no value";
}
template <class Value>
requires requires(const Value& value) { std::cout << value; }
void write(const Value& value) { std::cout << value; }

/// Writes what an expression returns, or the exception that it raises.
template <class Expression>
void show(Expression&& expression) {
  try {
    write(expression());
  } catch (const NSException& exception) {
    std::cout << exception.name() << ": " << exception.reason();
  }
  std::cout << '\n';
}

/// Runs the section of the number in a new store, without a log.
inline void runSection(std::initializer_list<void (*)()> sections, const char* number) {
  NSLogSetSink([](std::string_view) {});
  secSetDefaultStorage(std::make_shared<SecMemoryStorage>());
  sections.begin()[std::atoi(number)]();
}
