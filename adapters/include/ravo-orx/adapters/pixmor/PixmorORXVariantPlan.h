#pragma once
// One alternative look offered beside the main proposal.

#include <string>
#include <utility>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

class PixmorORXVariantPlan {
 public:
  PixmorORXVariantPlan(std::string name, std::string emphasis)
      : name_(std::move(name)), emphasis_(std::move(emphasis)) {}

  const std::string& name() const { return name_; }
  const std::string& emphasis() const { return emphasis_; }  // what the variant favours, in a sentence

  RavoJSON toJSON() const;
  static PixmorORXVariantPlan fromJSON(const RavoJSON& json);

  friend bool operator==(const PixmorORXVariantPlan&, const PixmorORXVariantPlan&) = default;

 private:
  std::string name_;
  std::string emphasis_;
};

}  // namespace ravo::orx
