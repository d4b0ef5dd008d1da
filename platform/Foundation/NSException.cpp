#include <Foundation/NSException.h>

#include <sstream>

const Ref<NSString> NSGenericException = NSString::stringWithString("NSGenericException");
const Ref<NSString> NSInternalInconsistencyException =
    NSString::stringWithString("NSInternalInconsistencyException");
const Ref<NSString> NSInvalidArgumentException = NSString::stringWithString("NSInvalidArgumentException");
const Ref<NSString> NSRangeException = NSString::stringWithString("NSRangeException");

NSException::NSException(Text name, Text reason, RefPtr<NSDictionary> userInfo)
    : name_(name.get()), reason_(reason.get()), userInfo_(std::move(userInfo)) {
  std::ostringstream text;
  text << name_ << ": " << reason_;
  what_ = std::make_shared<const std::string>(text.str());
}
