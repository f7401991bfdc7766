#include "tools/cli/OrxCliIO.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>
#include <stdexcept>

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

void readPieces(std::FILE* file, std::string_view name, const std::function<void(std::string_view)>& consume) {
  std::vector<char> buffer(1 << 20);
  std::size_t count;
  while ((count = std::fread(buffer.data(), 1, buffer.size(), file)) > 0) consume({buffer.data(), count});
  if (std::ferror(file)) {
    throw std::runtime_error("could not read " + std::string(name) + ": " + std::strerror(errno));
  }
}

}  // namespace

void orxCliReadInPieces(const std::optional<std::string>& file,
                        const std::function<void(std::string_view)>& consume) {
  if (!file || *file == "-") return readPieces(stdin, "standard input", consume);
  const std::unique_ptr<std::FILE, FileCloser> opened(std::fopen(file->c_str(), "rb"));
  if (!opened) throw std::runtime_error("could not read " + *file + ": " + std::strerror(errno));
  readPieces(opened.get(), *file, consume);
}

std::string orxCliReadInput(const std::optional<std::string>& file) {
  std::string bytes;
  orxCliReadInPieces(file, [&](std::string_view piece) { bytes += piece; });
  return bytes;
}

std::string orxCliReadDocument(OrxCliArguments& arguments) {
  const auto file = arguments.nextIfAny();
  arguments.finish();
  return orxCliReadInput(file);
}

void orxCliWarn(std::string_view program, std::string_view text) {
  std::fprintf(stderr, "%.*s: warning: %.*s\n", static_cast<int>(program.size()), program.data(),
               static_cast<int>(text.size()), text.data());
}

void orxCliPrint(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fputc('\n', stdout);
}

void orxCliPrintJSON(const RavoJSON& json) { orxCliPrint(json.dump()); }
