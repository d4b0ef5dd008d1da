// Follows its arguments in order and prints the results, separated by spaces:
//
//   cd FOLDER        goes to a folder
//   replace FILE     puts another file in the place of the program's
//   forget           removes the information that the library has registered
//   cancel           the library's string for "Cancel"
//   information      the information of the library's bundle
//   error            what a failing operation of the keychain says
//   main             the identifier of the program's bundle
//   conforms TYPE    whether a type is declared to conform to public.data
#include <VXFoundation/VXFoundation.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <string>

namespace {

std::string shown(const NSRefPtr<NSString>& text) { return text ? std::string(*text) : "(nil)"; }

template <class Ask>
std::string ofLibrary(Ask&& ask) {
  const NSRefPtr<NSBundle> bundle = NSBundle::bundleWithIdentifier(VXFoundationBundleIdentifier);
  return bundle ? shown(ask(*bundle)) : "(no bundle)";
}

std::string failure() {
  try {
    NSRefPtr<NSError> error;
    const bool added = VXGenericKeychainItem::alloc()->addItemToKeychain(&error);
    return added ? "(no error)" : shown(error->localizedDescription());
  } catch (const NSException& exception) {
    return shown(exception.name());
  }
}

using Question = std::string (*)();
const std::map<std::string, Question> questions = {
    {"cancel",
     [] { return ofLibrary([](auto& it) { return it.localizedStringForKey("Cancel", "", nullptr); }); }},
    {"information", [] { return ofLibrary([](auto& it) { return it.infoDictionary()->description(); }); }},
    {"error", failure},
    {"main", [] { return shown(NSBundle::mainBundle()->bundleIdentifier()); }},
};

using Step = void (*)(const char*);
const std::map<std::string, Step> steps = {
    {"cd", [](const char* folder) { std::filesystem::current_path(folder); }},
    {"replace",
     [](const char* file) {
       std::filesystem::remove(file);
       std::ofstream(file) << "another";
     }},
    {"conforms",
     [](const char* type) {
       const bool yes = VXUTTypeConformsTo(NSString::stringWithUTF8String(type), "public.data");
       std::cout << (yes ? "yes" : "no") << ' ';
     }},
};

}  // namespace

int main(int, char** arguments) {
  for (++arguments; *arguments; ++arguments) {
    if (const auto question = questions.find(*arguments); question != questions.end())
      std::cout << question->second() << ' ';
    else if (const auto step = steps.find(*arguments); step != steps.end())
      step->second(*++arguments);
    else if (std::strcmp(*arguments, "forget") == 0)
      NSBundle::setLibraryInformation(nullptr);
    else
      return 2;
  }
}
