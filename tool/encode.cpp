#include <VXFoundation/VXEncoder.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "tool/Forms.h"
#include "tool/Input.h"
#include "tool/StandardStreams.h"
#include "tool/Subcommands.h"

namespace {

/// A decimal number: the parser would read one with a leading zero as octal.
const CLI::Validator isNumber(
    [](std::string& argument) -> std::string {
      const bool hasDigits = argument.find_first_not_of("0123456789") == argument.npos && !argument.empty();
      return hasDigits && (argument[0] != '0' || argument.size() == 1) ? "" : "the value is not a number";
    },
    "", "number");

struct Request {
  std::string form, file = "-";
  std::size_t width = 0;
};

/// Breaks text into lines of `width` characters; into none if that is 0.
class LineWriter {
 public:
  explicit LineWriter(std::size_t width) : width_(width) {}

  void write(std::span<const std::byte> text) {
    if (width_ == 0) return writeStandardOutput(text);
    lines_.clear();
    while (!text.empty()) {
      if (column_ == width_) endLine();
      const auto piece = text.first(std::min(text.size(), width_ - column_));
      lines_.insert(lines_.end(), piece.begin(), piece.end());
      column_ += piece.size();
      text = text.subspan(piece.size());
    }
    writeStandardOutput(lines_);
  }

 private:
  void endLine() {
    lines_.push_back(std::byte{'\n'});
    column_ = 0;
  }

  const std::size_t width_;
  std::size_t column_ = 0;
  std::vector<std::byte> lines_;
};

int encode(const Request& request) {
  Input input(request.file);
  input.requireOtherOutput();
  VXEncoder encoder(encodedForms.at(request.form));
  LineWriter lines(request.width);
  std::vector<std::byte> text(encoder.maximumLength(Input::pieceLength));
  const auto write = [&](std::size_t length) { lines.write(std::span(text).first(length)); };
  Progress progress("encoding", input.length(), Progress::Output::written);
  input.forEachPiece(progress, [&](std::span<const std::byte> bytes) { write(encoder.update(bytes, text)); });
  write(encoder.finish(text));
  writeStandardOutput("\n");
  return 0;
}

}  // namespace

void addEncode(CLI::App& app, Action& action) {
  CLI::App* command = app.add_subcommand("encode", "Read bytes, write them as text followed by a newline");
  const auto request = std::make_shared<Request>();
  command->add_option("FORM", request->form, "How to encode the bytes")
      ->required()
      ->check(CLI::IsMember(encodedForms));
  command->add_option("FILE", request->file, "The file to read; - or none for standard input");
  command->add_option("--wrap", request->width, "Break the text into lines of N characters")
      ->type_name("N")
      ->check(isNumber);
  command->callback([request, &action] { action = [request] { return encode(*request); }; });
}
