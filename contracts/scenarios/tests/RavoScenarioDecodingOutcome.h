#pragma once
// What decoding gave: the record, or the text of the error it threw. Tests and fuzz targets compare
// two ways of decoding by their outcomes.

#include <exception>
#include <optional>
#include <string>

namespace ravo::orx {

template <class Record>
struct RavoScenarioDecodingOutcome {
  std::optional<Record> record;
  std::string error;

  template <class Decode>
  static RavoScenarioDecodingOutcome of(Decode decode) {
    try {
      return {decode(), ""};
    } catch (const std::exception& error) {
      return {std::nullopt, error.what()};
    }
  }
};

}  // namespace ravo::orx
