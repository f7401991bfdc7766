#include "tools/cli/OrxCliIO.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

std::string readWhole(std::FILE* file, std::string_view name) {
  std::string bytes;
  char buffer[1 << 16];
  std::size_t count;
  while ((count = std::fread(buffer, 1, sizeof buffer, file)) > 0) bytes.append(buffer, count);
  if (std::ferror(file)) {
    throw std::runtime_error("could not read " + std::string(name) + ": " + std::strerror(errno));
  }
  return bytes;
}

}  // namespace

std::string orxCliReadInput(const std::optional<std::string>& file) {
  if (!file || *file == "-") return readWhole(stdin, "standard input");
  const std::unique_ptr<std::FILE, FileCloser> opened(std::fopen(file->c_str(), "rb"));
  if (!opened) throw std::runtime_error("could not read " + *file + ": " + std::strerror(errno));
  return readWhole(opened.get(), *file);
}

std::string orxCliReadDocument(OrxCliArguments& arguments) {
  const auto file = arguments.nextIfAny();
  arguments.finish();
  return orxCliReadInput(file);
}

void orxCliWarn(std::string_view text) { std::fprintf(stderr, "warning: %.*s\n", static_cast<int>(text.size()), text.data()); }

void orxCliPrint(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fputc('\n', stdout);
}

void orxCliPrintJSON(const RavoJSON& json) { orxCliPrint(json.dump()); }
