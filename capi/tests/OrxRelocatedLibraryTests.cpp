// libravo-orx copied into another prefix finds that prefix's artifacts with no directory named, from
// any working directory: the library is loaded from the copy (this program does not link it), so its
// own location is the copy's.

#include <dlfcn.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include <ravo-orx/orx.h>

namespace {

namespace fs = std::filesystem;

struct WorkingDirectory {
  explicit WorkingDirectory(const fs::path& path) : previous(fs::current_path()) { fs::current_path(path); }
  ~WorkingDirectory() { fs::current_path(previous); }
  fs::path previous;
};

TEST(OrxRelocatedLibrary, FindsTheArtifactsOfItsOwnPrefix) {
  const fs::path prefix = fs::temp_directory_path() / ("orx-relocated-" + std::to_string(::getpid()));
  fs::remove_all(prefix);
  const fs::path artifacts = prefix / "share" / "ravo-orx" / "artifacts";
  fs::create_directories(prefix / ORX_TEST_LIBDIR);
  fs::create_directories(artifacts);
  fs::create_directories(prefix / "elsewhere");
  fs::copy_file(ORX_SHARED_LIBRARY, prefix / ORX_TEST_LIBDIR / "libravo-orx.so.1");
  fs::copy(fs::current_path() / "artifacts", artifacts);  // tests run in the repository root

  WorkingDirectory elsewhere(prefix / "elsewhere");
  void* library = dlopen((prefix / ORX_TEST_LIBDIR / "libravo-orx.so.1").c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  auto open = reinterpret_cast<decltype(&orx_runtime_open)>(dlsym(library, "orx_runtime_open"));
  auto close = reinterpret_cast<decltype(&orx_runtime_close)>(dlsym(library, "orx_runtime_close"));
  auto lastError = reinterpret_cast<decltype(&orx_last_error)>(dlsym(library, "orx_last_error"));
  ASSERT_TRUE(open && close && lastError);

  struct Case {
    const char* what;
    bool withEvidence;
    orx_status status;
  };
  for (const Case& c : {Case{"the copied prefix's artifacts", true, ORX_OK},
                        Case{"no artifacts anywhere it looks", false, ORX_STATUS_UNAVAILABLE}}) {
    if (!c.withEvidence) fs::remove(artifacts / "evidence.json");
    orx_runtime* runtime = nullptr;
    EXPECT_EQ(open(nullptr, &runtime), c.status) << c.what << ": " << lastError();
    if (!c.withEvidence) {
      EXPECT_STREQ(lastError(), "Bundled ORX artifacts were not found") << c.what;
    }
    close(runtime);
  }
  dlclose(library);
  fs::remove_all(prefix);
}

}  // namespace
