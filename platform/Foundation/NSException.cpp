#include <Foundation/NSException.h>

#include <sstream>

const NSRef<NSString>& NSGenericException = NSConstantString("NSGenericException");
const NSRef<NSString>& NSInternalInconsistencyException =
    NSConstantString("NSInternalInconsistencyException");
const NSRef<NSString>& NSInvalidArgumentException = NSConstantString("NSInvalidArgumentException");
const NSRef<NSString>& NSRangeException = NSConstantString("NSRangeException");

NSException::NSException(NSStringArg name, NSStringArg reason, NSRefPtr<NSDictionary> userInfo)
    : name_(name.get()), reason_(reason.get()), userInfo_(std::move(userInfo)) {
  std::ostringstream text;
  text << name_ << ": " << reason_;
  what_ = std::make_shared<const std::string>(text.str());
}
