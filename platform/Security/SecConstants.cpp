#include <Security/SecConstants.h>

const NSRef<NSString> kSecClass = NSString::stringWithString("class");
const NSRef<NSString> kSecAttrAccount = NSString::stringWithString("account");
const NSRef<NSString> kSecAttrLabel = NSString::stringWithString("label");
const NSRef<NSString> kSecAttrService = NSString::stringWithString("service");
const NSRef<NSString> kSecAttrServer = NSString::stringWithString("server");
const NSRef<NSString> kSecAttrPath = NSString::stringWithString("path");
const NSRef<NSString> kSecAttrPort = NSString::stringWithString("port");
const NSRef<NSString> kSecAttrProtocol = NSString::stringWithString("protocol");
const NSRef<NSString> kSecValueData = NSString::stringWithString("valueData");
const NSRef<NSString> kSecReturnAttributes = NSString::stringWithString("returnAttributes");
const NSRef<NSString> kSecReturnData = NSString::stringWithString("returnData");
const NSRef<NSString> kSecMatchLimit = NSString::stringWithString("matchLimit");
const NSRef<NSString> kSecMatchLimitAll = NSString::stringWithString("all");
const NSRef<NSString> kSecMatchExactly = NSString::stringWithString("matchExactly");
const NSRef<NSString> kSecClassGenericPassword = NSString::stringWithString("generic password");
const NSRef<NSString> kSecClassInternetPassword = NSString::stringWithString("internet password");
const NSRef<NSString> kSecAttrProtocolHTTP = NSString::stringWithString("http");
const NSRef<NSString> kSecAttrProtocolHTTPS = NSString::stringWithString("https");
const NSRef<NSString> kSecAttrProtocolFTP = NSString::stringWithString("ftp");
const NSRef<NSString> kSecAttrProtocolSSH = NSString::stringWithString("ssh");
