// Temporary folders and files for tests.
#pragma once

#include <string>
#include <string_view>

namespace zqv::interface_test {

// A temporary folder, which is deleted with its contents by the destructor.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }
  // The path of `name` in the folder, even if there is no such file.
  std::string Path(std::string_view name) const { return path_ + "/" + std::string(name); }
  // That path as it is in a file URL, before characters are escaped.
  std::string UrlPath(std::string_view name) const;
  // Writes a file and returns its path.
  std::string Write(std::string_view name, std::string_view bytes) const;

 private:
  std::string path_;
};

// The bytes of a file. A file that cannot be read fails the test.
std::string ReadWholeFile(const std::string& path);

}  // namespace zqv::interface_test
