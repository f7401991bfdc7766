#include <ravo-orx/cli/OrxCliIO.h>

#include <cstdio>
#include <string>

#include <ravo-orx/core/ORXMessageText.h>
#include <ravo-orx/runtime/OrxArtifactFiles.h>
#include <ravo-orx/runtime/RuntimeError.h>


namespace ravo::orx {

using namespace internal;

namespace {

OrxBoundedInput openInput(const std::optional<std::string>& file, std::uint64_t byteLimit) {
  if (!file || *file == "-") return OrxBoundedInput::standardInput(orxCliInputName(file), byteLimit);
  return OrxBoundedInput(*file, byteLimit);
}

}  // namespace

std::string orxCliInputName(const std::optional<std::string>& file) {
  return !file || *file == "-" ? "standard input" : ORXMessageText::printable(*file);
}

void orxCliReadInPieces(const std::optional<std::string>& file,
                        const std::function<void(std::string_view)>& consume) {
  openInput(file, OrxBoundedInput::kUnbounded).readPieces(consume);
}

std::string orxCliReadInput(const std::optional<std::string>& file, std::uint64_t byteLimit) {
  return openInput(file, byteLimit).readAll<std::string>();
}

std::string orxCliReadLines(const std::optional<std::string>& file, std::size_t lineLimit,
                     const std::function<void(std::string_view line)>& consume) {
  std::string partial;  // the start of a line that continues in the next piece
  std::uint64_t lineNumber = 0;
  const auto tooLong = [&] {
    throw RuntimeError("could not read " + orxCliInputName(file) + ": line " + std::to_string(lineNumber + 1) +
                       " is longer than " + std::to_string(lineLimit) + " bytes");
  };
  orxCliReadInPieces(file, [&](std::string_view piece) {
    for (std::size_t newline; (newline = piece.find('\n')) != std::string_view::npos;) {
      if (partial.size() + newline > lineLimit) tooLong();
      ++lineNumber;
      if (partial.empty()) {
        consume(piece.substr(0, newline));
      } else {
        partial.append(piece.substr(0, newline));
        consume(partial);
        partial.clear();
      }
      piece.remove_prefix(newline + 1);
    }
    if (partial.size() + piece.size() > lineLimit) tooLong();
    partial.append(piece);
  });
  return partial;
}

std::string orxCliReadDocument(OrxCliArguments& arguments) {
  const auto file = arguments.nextIfAny();
  arguments.finish();
  return orxCliReadInput(file);
}

void orxCliWarn(std::string_view program, std::string_view text) {
  const std::string quoted = ORXMessageText::printable(text);  // may quote a module's bytes
  std::fprintf(stderr, "%.*s: warning: %.*s\n", static_cast<int>(program.size()), program.data(),
               static_cast<int>(quoted.size()), quoted.data());
}

void orxCliPrint(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fputc('\n', stdout);
}

void orxCliPrintJSON(const RavoJSON& json) { orxCliPrint(json.dump()); }

}  // namespace ravo::orx
