#include <Security/DesktopStore/SecDesktopKeys.h>

#include <algorithm>

#include <Security/DesktopStore/SecDesktopSession.h>

namespace {

constexpr char application[] = "VXFoundation slots";

/// Whoever opens a store waits for this, so it is short.
SecDesktopOptions quiet() {
  SecDesktopOptions options;
  options.callLimit = std::chrono::milliseconds(2000);
  options.allowsPrompts = false;
  return options;
}

SecDesktopAttributes namedBy(const std::string& name) {
  return {{"application", application}, {"vx-slot", SecDesktopText(name)}};
}

SecDesktopAttributes ownedBy(const std::string& name, const SecDesktopKeyOwner& owner) {
  secRequire(secIsDesktopText(owner.path), errSecParam);
  SecDesktopAttributes all = namedBy(name);
  all["vx-store"] = SecDesktopText(owner.path);
  all["vx-device"] = SecDesktopText(owner.device);
  all["vx-inode"] = SecDesktopText(owner.inode);
  all["xdg:schema"] = "org.vxfoundation.SlotKey";
  return all;
}

std::string textOf(const SecDesktopAttributes& attributes, const char* name) {
  const auto found = attributes.find(name);
  return found == attributes.end() ? std::string() : std::string(found->second);
}

std::vector<SecSecret> read(SecDesktopSession& session, const std::string& name) {
  session.requireBelievable();
  std::vector<SecSecret> secrets;
  for (const SecDesktopItem& item : session.items().search(namedBy(name)).items)
    secrets.push_back(session.items().secret(item.path));
  return secrets;
}

void requireStored(const std::string& name, const SecSecret& secret) {
  SecDesktopSession session(quiet());
  const std::vector<SecSecret> stored = read(session, name);
  secRequire(stored.size() == 1 && std::ranges::equal(stored[0].bytes(), secret.bytes()), errSecIO);
}

}  // namespace

std::vector<SecSecret> secReadDesktopKeys(const std::string& name) {
  SecDesktopSession session(quiet());
  std::vector<SecSecret> secrets = read(session, name);
  secRequire(!secrets.empty(), errSecDataNotAvailable);
  return secrets;
}

std::vector<SecDesktopKey> secListDesktopKeys() {
  SecDesktopSession session(quiet());
  session.requireBelievable();
  std::vector<SecDesktopKey> keys;
  for (const SecDesktopItem& item : session.items().search({{"application", application}}).items) {
    const SecDesktopAttributes& all = item.properties.attributes;
    keys.push_back({textOf(all, "vx-slot"),
                    {textOf(all, "vx-store"), textOf(all, "vx-device"), textOf(all, "vx-inode")}});
  }
  return keys;
}

void secWriteDesktopKey(const std::string& name, const SecDesktopKeyOwner& owner, const SecSecret& secret,
                        const SecDesktopOptions& options) {
  const SecDesktopProperties properties{ownedBy(name, owner), "Key of " + SecDesktopText(owner.path)};
  SecDesktopSession session(options);
  session.unlock();
  session.items().create(session.collection().path(), properties, secret);
  const OSStatus status = secStatusOf([&] { requireStored(name, secret); });
  if (status != errSecSuccess) static_cast<void>(secStatusOf([&] { secEraseDesktopKey(name, owner); }));
  secCheck(status);
}

void secEraseDesktopKey(const std::string& name, const SecDesktopKeyOwner& owner) {
  SecDesktopSession session(quiet());
  session.requireBelievable();
  for (const SecDesktopItem& item : session.items().search(ownedBy(name, owner)).items)
    session.items().remove(item.path);
}
