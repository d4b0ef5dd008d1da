#include <Security/SecConstants.h>

const Ref<NSString> kSecClass = NSString::stringWithString("class");
const Ref<NSString> kSecAttrAccount = NSString::stringWithString("account");
const Ref<NSString> kSecAttrLabel = NSString::stringWithString("label");
const Ref<NSString> kSecAttrService = NSString::stringWithString("service");
const Ref<NSString> kSecAttrServer = NSString::stringWithString("server");
const Ref<NSString> kSecAttrPath = NSString::stringWithString("path");
const Ref<NSString> kSecAttrPort = NSString::stringWithString("port");
const Ref<NSString> kSecAttrProtocol = NSString::stringWithString("protocol");
const Ref<NSString> kSecValueData = NSString::stringWithString("valueData");
const Ref<NSString> kSecReturnAttributes = NSString::stringWithString("returnAttributes");
const Ref<NSString> kSecReturnData = NSString::stringWithString("returnData");
const Ref<NSString> kSecClassGenericPassword = NSString::stringWithString("generic password");
const Ref<NSString> kSecClassInternetPassword = NSString::stringWithString("internet password");
const Ref<NSString> kSecAttrProtocolHTTP = NSString::stringWithString("http");
const Ref<NSString> kSecAttrProtocolHTTPS = NSString::stringWithString("https");
const Ref<NSString> kSecAttrProtocolFTP = NSString::stringWithString("ftp");
const Ref<NSString> kSecAttrProtocolSSH = NSString::stringWithString("ssh");
