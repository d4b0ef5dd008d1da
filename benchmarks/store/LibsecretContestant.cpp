#include <libsecret/secret.h>

#include <stdexcept>

#include "Contestant.h"

namespace {

const SecretSchema schema = {"org.vxfoundation.benchmark",
                             SECRET_SCHEMA_NONE,
                             {{"account", SECRET_SCHEMA_ATTRIBUTE_STRING},
                              {"service", SECRET_SCHEMA_ATTRIBUTE_STRING},
                              {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
                             0,
                             nullptr,
                             nullptr,
                             nullptr,
                             nullptr,
                             nullptr,
                             nullptr,
                             nullptr};

void require(bool done, GError* error) {
  if (done && !error) return;
  const std::string what = error ? error->message : "not done";
  g_clear_error(&error);
  throw std::runtime_error("libsecret: " + what);
}

class Libsecret final : public Contestant {
 public:
  std::string name() const override { return "libsecret on gnome-keyring"; }

  void fill(std::size_t count) override {
    for (std::size_t account = 0; account < count; ++account) add(account);
  }

  void add(std::size_t account) override { store(account, "password"); }
  void update(std::size_t account) override { store(account, "new password"); }

  bool look(std::size_t account) override {
    GError* error = nullptr;
    gchar* const password =
        secret_password_lookup_sync(&schema, nullptr, &error, "account", std::to_string(account).c_str(),
                                    "service", "benchmark", nullptr);
    require(true, error);
    const bool found = password != nullptr;
    secret_password_free(password);
    return found;
  }

  void remove(std::size_t account) override {
    GError* error = nullptr;
    const gboolean done =
        secret_password_clear_sync(&schema, nullptr, &error, "account", std::to_string(account).c_str(),
                                   "service", "benchmark", nullptr);
    require(done != FALSE, error);
  }

 private:
  static void store(std::size_t account, const char* password) {
    GError* error = nullptr;
    const gboolean done = secret_password_store_sync(
        &schema, SECRET_COLLECTION_DEFAULT, "benchmark", password, nullptr, &error, "account",
        std::to_string(account).c_str(), "service", "benchmark", nullptr);
    require(done != FALSE, error);
  }
};

}  // namespace

std::unique_ptr<Contestant> makeLibsecret() { return std::make_unique<Libsecret>(); }
