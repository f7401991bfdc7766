#pragma once
// A scenario graph that has no JSON text: a string that is not valid UTF-8 or an argument number that
// is not finite. Raised when digesting such a graph, and so when making a revision of it.

#include <stdexcept>

namespace ravo::orx {

class RavoScenarioEncodingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace ravo::orx
