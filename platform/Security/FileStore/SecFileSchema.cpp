#include <Security/FileStore/SecFileSchema.h>

#include <Security/FileStore/SecFileFormat.h>

namespace {

std::string numberTable(const SecTag& fileNumber) {
  return "CREATE TABLE " + std::string(secFileNumberTable) + secHexadecimal(fileNumber) + "(unused)";
}

}  // namespace

void secMakeTables(SecFileDatabase& database, const SecTag& fileNumber) {
  database.runOnce(numberTable(fileNumber));
  database.runOnce(secFileRecordTable);
}

void secCheckTables(SecFileDatabase& database, const SecTag& fileNumber) {
  SecFileStatement rows = database.use("SELECT sql FROM sqlite_schema");
  secRequire(rows.step() && rows.text(0) == numberTable(fileNumber), errSecDecode);
  secRequire(rows.step() && rows.text(0) == secFileRecordTable, errSecDecode);
  secRequire(!rows.step(), errSecDecode);
}
