#include <Foundation/NSFormat.h>

#include <string>

#include <Foundation/NSException.h>
#include <Foundation/NSMutableString.h>

namespace {

// Goes through a format and its arguments in parallel.
class Filler {
 public:
  Filler(std::u16string_view format, std::span<const NSFormatArg> arguments)
      : format_(format), arguments_(arguments) {}

  NSRef<NSString> filled() {
    while (!format_.empty()) {
      const std::size_t plain = std::min(format_.find(u'%'), format_.size());
      result_->appendCharacters(format_.substr(0, plain));
      format_.remove_prefix(plain);
      if (!format_.empty()) fillDirective();
    }
    if (!arguments_.empty()) refuse("an argument is left over");
    return result_->copy();
  }

 private:
  void fillDirective() {
    if (takes(u"%%")) return result_->appendCharacters(u"%");
    if (takes(u"%@")) return fillObject(next());
    if (takes(u"%d")) return fillDecimal(next(), &NSFormatArg::isSigned, &NSFormatArg::signedInteger);
    if (takes(u"%lu")) return fillDecimal(next(), &NSFormatArg::isUnsigned, &NSFormatArg::unsignedInteger);
    refuse("a directive is unknown");
  }

  void fillObject(const NSFormatArg& argument) {
    if (!argument.isObject()) refuse("%@ requires an object");
    const NSRefPtr<NSObject> object = argument.object().get();
    if (!object) return result_->appendCharacters(u"(null)");
    result_->appendString(object->description());
  }

  template <class Kind, class Value>
  void fillDecimal(const NSFormatArg& argument, Kind isOfKind, Value value) {
    if (!(argument.*isOfKind)()) refuse("an argument is not of the directive's kind");
    const std::string digits = std::to_string((argument.*value)());
    result_->appendCharacters(std::u16string(digits.begin(), digits.end()));
  }

  bool takes(std::u16string_view directive) {
    if (!format_.starts_with(directive)) return false;
    format_.remove_prefix(directive.size());
    return true;
  }

  const NSFormatArg& next() {
    if (arguments_.empty()) refuse("an argument is missing");
    const NSFormatArg& argument = arguments_.front();
    arguments_ = arguments_.subspan(1);
    return argument;
  }

  // Not by NSException::raise, which would format the reason.
  [[noreturn]] static void refuse(std::string_view why) {
    throw NSException(NSInvalidArgumentException, NSString::stringWithUTF8String(why));
  }

  std::u16string_view format_;
  std::span<const NSFormatArg> arguments_;
  NSRef<NSMutableString> result_ = NSMutableString::string();
};

}  // namespace

NSRef<NSString> NSFormat(NSStringArg format, std::span<const NSFormatArg> arguments) {
  const auto text = format.borrow();
  if (!text) NSRaiseNilReference();
  return Filler(static_cast<std::u16string>(*text), arguments).filled();
}

NSRef<NSString> NSFormat(NSStringArg format, std::initializer_list<NSFormatArg> arguments) {
  return NSFormat(format, std::span(arguments.begin(), arguments.size()));
}
