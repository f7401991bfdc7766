#pragma once
// Default parameter values for one stage kind of a proposed pipeline.

#include <map>
#include <string>
#include <utility>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class PixmorORXNodeDefaults {
 public:
  PixmorORXNodeDefaults(std::string nodeKind, std::map<std::string, double> values)
      : nodeKind_(std::move(nodeKind)), values_(std::move(values)) {}

  const std::string& nodeKind() const { return nodeKind_; }
  const std::map<std::string, double>& values() const { return values_; }  // parameter key to value

  RavoJSON toJSON() const;
  static PixmorORXNodeDefaults fromJSON(const RavoJSON& json);

  friend bool operator==(const PixmorORXNodeDefaults&, const PixmorORXNodeDefaults&) = default;

 private:
  std::string nodeKind_;
  std::map<std::string, double> values_;
};

}  // namespace ravo::orx
