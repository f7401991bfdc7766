#include <ravo-orx/cli/OrxCliTestReport.h>

#include <algorithm>

#include <ravo-orx/contracts/support/RavoJSON.h>

namespace ravo::orx {

namespace {

std::size_t count(const OrxCliTestReport& report, bool passing) {
  std::size_t total = 0;
  for (const auto& module : report.modules) {
    total += static_cast<std::size_t>(std::count_if(module.cases.begin(), module.cases.end(),
                                                    [&](const auto& c) { return c.problem.empty() == passing; }));
  }
  return total;
}

// Text as XML 1.0 takes it in an attribute: markup escaped, and the control characters it cannot hold
// at all replaced, so that a module's or assembler's text never makes the file unreadable.
std::string xml(std::string_view text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      case '\n': out += "&#10;"; break;
      case '\t': out += "&#9;"; break;
      default: out += static_cast<unsigned char>(c) < 0x20 ? '?' : c;
    }
  }
  return out;
}

}  // namespace

std::size_t OrxCliTestReport::passed() const { return count(*this, true); }
std::size_t OrxCliTestReport::failed() const { return count(*this, false); }

std::string orxCliTestReportJSON(const OrxCliTestReport& report) {
  RavoJSON modules = RavoJSON::array();
  for (const auto& module : report.modules) {
    RavoJSON cases = RavoJSON::array();
    for (const auto& outcome : module.cases) {
      RavoJSON entry = {{"case", outcome.name}, {"status", outcome.problem.empty() ? "pass" : "fail"}};
      if (!outcome.problem.empty()) entry["problem"] = outcome.problem;
      if (outcome.warning) entry["warning"] = *outcome.warning;
      cases.push_back(std::move(entry));
    }
    RavoJSON entry = {{"module", module.module}};
    if (module.failure) entry["failure"] = *module.failure;
    entry["cases"] = std::move(cases);
    modules.push_back(std::move(entry));
  }
  const RavoJSON json = {{"passed", report.passed()}, {"failed", report.failed()}, {"modules", std::move(modules)}};
  return json.dump();
}

std::string orxCliTestReportJUnit(const OrxCliTestReport& report) {
  std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"ravo-orx policy test\" tests=\"" +
                     std::to_string(report.passed() + report.failed()) + "\" failures=\"" +
                     std::to_string(report.failed()) + "\">\n";
  for (const auto& module : report.modules) {
    const auto failures = std::count_if(module.cases.begin(), module.cases.end(),
                                        [](const auto& c) { return !c.problem.empty(); });
    text += "  <testsuite name=\"" + xml(module.module) + "\" tests=\"" + std::to_string(module.cases.size()) +
            "\" failures=\"" + std::to_string(failures) + "\">\n";
    for (const auto& outcome : module.cases) {
      text += "    <testcase classname=\"" + xml(module.module) + "\" name=\"" + xml(outcome.name) + "\"";
      if (outcome.problem.empty() && !outcome.warning) {
        text += "/>\n";
        continue;
      }
      text += ">\n";
      if (!outcome.problem.empty()) text += "      <failure message=\"" + xml(outcome.problem) + "\"/>\n";
      if (outcome.warning) text += "      <system-out>warning: " + xml(*outcome.warning) + "</system-out>\n";
      text += "    </testcase>\n";
    }
    text += "  </testsuite>\n";
  }
  return text + "</testsuites>\n";
}

}  // namespace ravo::orx
