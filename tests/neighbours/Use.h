#pragma once

// Instantiates templates of every kind, whose bodies the macros of others would reach.
inline bool useLibrary() {
  const auto bytes = NSData::dataWithBytes("Hello", 5);
  const auto text = VXBaseConversion::base64String(*bytes);
  const auto list = NSMutableArray::arrayWithObjects({"a", text});
  const auto mapped = VXAdditions::vxfoundation_map(
      *list, [](const NSRef<NSObject>& each, std::size_t, bool*) { return each->description(); });
  const auto item = VXGenericKeychainItem::keychainItemWithUsername("ann", "secret", nullptr, "mail");
  const auto attempter = VXErrorRecoveryAttempter::errorRecoveryAttempter();
  attempter->addRecoveryOptionWithLocalizedTitle("Retry", [](const NSRefPtr<NSError>&) { return true; });
  return text->isEqualToString("SGVsbG8=") && mapped->count() == 2 && item->username()->length() == 3 &&
         attempter->attemptRecoveryFromError(nullptr, 0) &&
         VXUTTypeConformsTo("public.png", "public.image") &&
         NSString::stringWithFormat("%@ %d", text, 7)->length() == 10;
}
