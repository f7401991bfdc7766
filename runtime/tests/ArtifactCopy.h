#pragma once
// A private copy of the bundled artifacts for tests that tamper with them, and the kinds of file an
// attacker can put in place of an artifact.

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

#include "runtime/tests/WatAssembler.h"

namespace ravo::orx {

namespace artifact_test {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

class ArtifactCopy {
 public:
  ArtifactCopy() : path_(fs::temp_directory_path() / ("orx-artifacts-" + std::to_string(::getpid()) + "-" + nextId())) {
    fs::remove_all(path_);
    fs::copy("artifacts", path_);
  }
  ArtifactCopy(const ArtifactCopy&) = delete;
  ArtifactCopy& operator=(const ArtifactCopy&) = delete;
  ~ArtifactCopy() {
    if (socket_ >= 0) ::close(socket_);
    fs::remove_all(path_);
  }
  const fs::path& path() const { return path_; }

  void editEvidence(const std::function<void(Json&)>& edit) const {
    Json evidence = Json::parse(readTestFile(path_ / "evidence.json"));
    edit(evidence);
    std::ofstream(path_ / "evidence.json", std::ios::trunc) << evidence.dump(2);
  }
  void flipByte(const std::string& file) const {
    auto bytes = readTestFile(path_ / file);
    bytes[bytes.size() / 2] ^= 0x01;
    std::ofstream(path_ / file, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
  void append(const std::string& file, const std::string& bytes) const {
    std::ofstream(path_ / file, std::ios::binary | std::ios::app) << bytes;
  }

  // Replacements for one artifact file.
  void makeFifo(const std::string& file) const {
    fs::remove(path_ / file);
    if (::mkfifo((path_ / file).c_str(), 0600) != 0) throw std::runtime_error("mkfifo failed");
  }
  void makeDeviceLink(const std::string& file) const {
    fs::remove(path_ / file);
    fs::create_symlink("/dev/zero", path_ / file);
  }
  // A listening socket bound to the name; the descriptor stays open for the copy's lifetime.
  void makeSocket(const std::string& file) {
    fs::remove(path_ / file);
    socket_ = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string name = (path_ / file).string();
    if (socket_ < 0 || name.size() >= sizeof address.sun_path) throw std::runtime_error("socket failed");
    std::memcpy(address.sun_path, name.c_str(), name.size() + 1);
    if (::bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 || ::listen(socket_, 1) != 0) {
      throw std::runtime_error("bind failed");
    }
  }
  // A sparse file: it costs no disk, yet reports `bytes` as its size.
  void makeSparse(const std::string& file, std::uintmax_t bytes) const {
    fs::remove(path_ / file);
    std::ofstream(path_ / file).close();
    fs::resize_file(path_ / file, bytes);
  }

 private:
  static std::string nextId() {
    static std::atomic<int> counter{0};
    return std::to_string(counter++);
  }

  fs::path path_;
  int socket_ = -1;
};

inline Json& moduleRecord(Json& evidence, const std::string& name) {
  for (auto& record : evidence["modules"]) {
    if (record["module"] == name) return record;
  }
  throw std::runtime_error("no record " + name);
}

}  // namespace artifact_test

}  // namespace ravo::orx
