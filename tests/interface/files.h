// Files for tests that need real ones.
#pragma once

#include <string>
#include <string_view>

namespace zqv::interface_test {

// A folder that goes, with all in it, when this does.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }
  // The path of `name` in it, whether there is such a file or not.
  std::string Path(std::string_view name) const { return path_ + "/" + std::string(name); }
  // The same as in a URL of a file, before anything is escaped.
  std::string UrlPath(std::string_view name) const;
  // Writes a file and gives its path.
  std::string Write(std::string_view name, std::string_view bytes) const;

 private:
  std::string path_;
};

// The whole file; a file that cannot be read fails the test.
std::string ReadWholeFile(const std::string& path);

}  // namespace zqv::interface_test
