#pragma once
// What `policy test` found, and the machine-readable forms of it: a JSON report and JUnit XML, the
// format CI systems read.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace ravo::orx {

struct OrxCliCaseOutcome {
  std::string name;
  std::string problem;                // empty when the case passed
  std::optional<std::string> warning;  // e.g. emitted twice: passing, but only the last emission counted
};

// One manifest's run: its cases, or, when the manifest or module could not run at all, the reason,
// which every case selected from it fails with.
struct OrxCliModuleRun {
  std::string module;                  // the manifest's module, or the manifest's file when unreadable
  std::optional<std::string> failure;  // why none of its cases could run
  std::vector<OrxCliCaseOutcome> cases;
};

struct OrxCliTestReport {
  std::vector<OrxCliModuleRun> modules;

  std::size_t passed() const;
  std::size_t failed() const;
};

// {"passed": N, "failed": M, "modules": [{"module", "failure"?, "cases": [{"case", "status",
// "problem"?, "warning"?}]}]}, on one line.
std::string orxCliTestReportJSON(const OrxCliTestReport& report);
// <testsuites> with one <testsuite> per module and one <testcase> per case.
std::string orxCliTestReportJUnit(const OrxCliTestReport& report);

}  // namespace ravo::orx
