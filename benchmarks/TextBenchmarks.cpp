#include <Foundation/NSPropertyList.h>
#include <VXFoundation/VXFoundation.h>
#include <benchmark/benchmark.h>

#include <string>

// How the cost of texts grows with their length, in both widths, and of reading a property list with the
// number of its entries.
namespace {

std::string repeated(std::string_view piece, std::size_t count) {
  std::string text;
  while (text.size() < count) text += piece;
  return text;
}

std::string utf8Of(const benchmark::State& state) {
  return repeated(state.range(1) ? "eine größere Menge, " : "a larger amount, ",
                  static_cast<std::size_t>(state.range(0)));
}

void count(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
}

void textFromUTF8(benchmark::State& state) {
  const std::string utf8 = utf8Of(state);
  for (auto _ : state) benchmark::DoNotOptimize(NSString::stringWithUTF8String(utf8));
  count(state, utf8.size());
}

void textToUTF8(benchmark::State& state) {
  const std::string utf8 = utf8Of(state);
  const NSRef<NSString> text = NSString::stringWithUTF8String(utf8);
  for (auto _ : state) benchmark::DoNotOptimize(text->UTF8String());
  count(state, utf8.size());
}

void textHashAndEquality(benchmark::State& state) {
  const std::string utf8 = utf8Of(state);
  const NSRef<NSString> text = NSString::stringWithUTF8String(utf8);
  const NSRef<NSString> other = NSString::stringWithUTF8String(utf8);
  for (auto _ : state) {
    benchmark::DoNotOptimize(text->hash());
    benchmark::DoNotOptimize(text->isEqual(other));
  }
  count(state, utf8.size());
}

void textTakenApart(benchmark::State& state) {
  const std::string utf8 = utf8Of(state);
  const NSRef<NSString> text = NSString::stringWithUTF8String(utf8);
  for (auto _ : state) benchmark::DoNotOptimize(text->componentsSeparatedByString(", "));
  count(state, utf8.size());
}

void textFilledIn(benchmark::State& state) {
  const NSRef<NSString> name = NSString::stringWithUTF8String(utf8Of(state));
  for (auto _ : state)
    benchmark::DoNotOptimize(NSString::stringWithFormat("%@ has %d of %lu", name, -7, 12U));
}

void keyPathJoined(benchmark::State& state) {
  const NSRef<NSString> path = NSString::stringWithUTF8String(utf8Of(state));
  for (auto _ : state) benchmark::DoNotOptimize(CXKeyValueCoding::stringByAppendingKeyPath(*path, "name"));
}

void keyPathMade(benchmark::State& state) {
  const NSRef<NSString> name = NSString::stringWithUTF8String(utf8Of(state));
  for (auto _ : state)
    benchmark::DoNotOptimize(CXKeyValueCoding::stringWithKeyPathComponents({name, name, name}));
}

void propertyListRead(benchmark::State& state) {
  std::string xml = "<plist><dict>";
  for (std::int64_t i = 0; i < state.range(0); ++i)
    xml += "<key>key " + std::to_string(i) + "</key><string>größer &amp; mehr</string>";
  xml += "</dict></plist>";
  for (auto _ : state) benchmark::DoNotOptimize(NSPropertyListWithData(std::as_bytes(std::span(xml))));
  count(state, xml.size());
  state.SetComplexityN(state.range(0));
}

}  // namespace

// The second argument: 0 for a text of ASCII, 1 for one of UTF-16.
#define VX_TEXT_BENCHMARK(name) BENCHMARK(name)->ArgsProduct({{32, 1 << 10, 32 << 10, 1 << 20}, {0, 1}})
VX_TEXT_BENCHMARK(textFromUTF8);
VX_TEXT_BENCHMARK(textToUTF8);
VX_TEXT_BENCHMARK(textHashAndEquality);
VX_TEXT_BENCHMARK(textTakenApart);
VX_TEXT_BENCHMARK(textFilledIn);
VX_TEXT_BENCHMARK(keyPathJoined);
VX_TEXT_BENCHMARK(keyPathMade);
BENCHMARK(propertyListRead)->RangeMultiplier(8)->Range(8, 8 << 9)->Complexity(benchmark::oN);
