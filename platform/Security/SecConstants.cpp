#include <Security/SecConstants.h>

const NSRef<NSString>& kSecClass = NSConstantString("class");
const NSRef<NSString>& kSecAttrAccount = NSConstantString("account");
const NSRef<NSString>& kSecAttrLabel = NSConstantString("label");
const NSRef<NSString>& kSecAttrService = NSConstantString("service");
const NSRef<NSString>& kSecAttrServer = NSConstantString("server");
const NSRef<NSString>& kSecAttrPath = NSConstantString("path");
const NSRef<NSString>& kSecAttrPort = NSConstantString("port");
const NSRef<NSString>& kSecAttrProtocol = NSConstantString("protocol");
const NSRef<NSString>& kSecValueData = NSConstantString("valueData");
const NSRef<NSString>& kSecReturnAttributes = NSConstantString("returnAttributes");
const NSRef<NSString>& kSecReturnData = NSConstantString("returnData");
const NSRef<NSString>& kSecMatchLimit = NSConstantString("matchLimit");
const NSRef<NSString>& kSecMatchLimitAll = NSConstantString("all");
const NSRef<NSString>& kSecMatchExactly = NSConstantString("matchExactly");
const NSRef<NSString>& kSecClassGenericPassword = NSConstantString("generic password");
const NSRef<NSString>& kSecClassInternetPassword = NSConstantString("internet password");
const NSRef<NSString>& kSecAttrProtocolHTTP = NSConstantString("http");
const NSRef<NSString>& kSecAttrProtocolHTTPS = NSConstantString("https");
const NSRef<NSString>& kSecAttrProtocolFTP = NSConstantString("ftp");
const NSRef<NSString>& kSecAttrProtocolSSH = NSConstantString("ssh");
