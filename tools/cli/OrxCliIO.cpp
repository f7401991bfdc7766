#include <ravo-orx/cli/OrxCliIO.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/stat.h>

#include <ravo-orx/engine/OrxQuotedText.h>

namespace ravo::orx {

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

[[noreturn]] void throwReadError(std::string_view name, const std::string& reason) {
  throw std::runtime_error("could not read " + std::string(name) + ": " + reason);
}

void readPieces(std::FILE* file, std::string_view name, const std::function<void(std::string_view)>& consume) {
  std::vector<char> buffer(1 << 20);
  std::size_t count;
  while ((count = std::fread(buffer.data(), 1, buffer.size(), file)) > 0) consume({buffer.data(), count});
  if (std::ferror(file)) throwReadError(name, std::strerror(errno));
}

// Runs `read` on the named file, or on standard input when no file is named or it is "-".
template <class Read>
void withInput(const std::optional<std::string>& file, Read read) {
  if (!file || *file == "-") return read(stdin, orxCliInputName(file));
  const std::unique_ptr<std::FILE, FileCloser> opened(std::fopen(file->c_str(), "rb"));
  if (!opened) throwReadError(*file, std::strerror(errno));
  read(opened.get(), std::string_view(*file));
}

}  // namespace

std::string orxCliInputName(const std::optional<std::string>& file) {
  return !file || *file == "-" ? "standard input" : *file;
}

void orxCliReadInPieces(const std::optional<std::string>& file,
                        const std::function<void(std::string_view)>& consume) {
  withInput(file, [&](std::FILE* input, std::string_view name) { readPieces(input, name, consume); });
}

std::string orxCliReadInput(const std::optional<std::string>& file) {
  const std::string limitText = "input exceeds the limit of " + std::to_string(kOrxCliInputByteLimit) + " bytes";
  std::string bytes;
  withInput(file, [&](std::FILE* input, std::string_view name) {
    // A regular file's size is known: one allocation of that size instead of doubling into twice it.
    struct stat status {};
    if (::fstat(::fileno(input), &status) == 0 && S_ISREG(status.st_mode)) {
      if (static_cast<std::uint64_t>(status.st_size) > kOrxCliInputByteLimit) throwReadError(name, limitText);
      bytes.reserve(static_cast<std::size_t>(status.st_size));
    }
    readPieces(input, name, [&](std::string_view piece) {
      if (piece.size() > kOrxCliInputByteLimit - bytes.size()) throwReadError(name, limitText);
      bytes += piece;
    });
  });
  return bytes;
}

std::string orxCliReadLines(const std::optional<std::string>& file, std::size_t lineLimit,
                     const std::function<void(std::string_view line)>& consume) {
  std::string partial;  // the start of a line that continues in the next piece
  std::uint64_t lineNumber = 0;
  const auto tooLong = [&] {
    throwReadError(orxCliInputName(file), "line " + std::to_string(lineNumber + 1) + " is longer than " +
                                              std::to_string(lineLimit) + " bytes");
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
  const std::string quoted = internal::orxQuotedText(text, std::string::npos);  // may quote a module's bytes
  std::fprintf(stderr, "%.*s: warning: %.*s\n", static_cast<int>(program.size()), program.data(),
               static_cast<int>(quoted.size()), quoted.data());
}

void orxCliPrint(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fputc('\n', stdout);
}

void orxCliPrintJSON(const RavoJSON& json) { orxCliPrint(json.dump()); }

}  // namespace ravo::orx
