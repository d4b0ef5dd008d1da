#include <Security/FileStore/SecFileRecord.h>

SecBytes secFrame(SecFileRecord record, SecView content) {
  SecByteWriter writer;
  writer.reserve(secRecordOverhead + content.size());
  writer.number(static_cast<std::uint64_t>(record.kind));
  writer.number(static_cast<std::uint32_t>(secRecordOverhead + content.size()));
  return writer.number(record.number).raw(content).take();
}

SecView secUnframe(SecFileRecord record, SecView bytes) {
  SecByteReader reader(bytes);
  secRequire(reader.number<std::uint64_t>() == static_cast<std::uint64_t>(record.kind), errSecDecode);
  secRequire(reader.number<std::uint32_t>() == bytes.size(), errSecDecode);
  secRequire(reader.number<std::int64_t>() == record.number, errSecDecode);
  return reader.rest();
}

SecBytes secReadRecord(SecFileDatabase& database, SecFileRecord record) {
  auto row = database.use("SELECT body FROM record WHERE number=?");
  row.bind(record.number);
  if (!row.step()) return {};
  const SecView content = secUnframe(record, row.blob(0));
  return {content.begin(), content.end()};
}

void secWriteRecord(SecFileDatabase& database, SecFileRecord record, SecView content) {
  const SecBytes bytes = secFrame(record, content);
  database.use("REPLACE INTO record VALUES(?,?)").bind(record.number).bind(bytes).run();
}

void secRemoveRecord(SecFileDatabase& database, SecFileRecord record) {
  database.use("DELETE FROM record WHERE number=?").bind(record.number).run();
  secRequire(database.changes() == 1, errSecDecode);
}
