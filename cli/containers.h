// Compressed files and archives, read with libarchive.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace zqv::cli {

// A function that returns the next bytes of a file, empty at its end. They are valid until the next
// call. May throw.
using NextBlock = std::function<std::string_view()>;

// Whether Container can read a file that begins with `start`: gzip, bzip2, xz, zstd, zip or tar.
bool IsContainer(std::string_view start);

// Reads the files in a container one after the other. A compressed file that is not an archive is a
// container of one file without a name. Functions throw std::runtime_error when the container
// cannot be read.
class Container {
 public:
  explicit Container(NextBlock source);
  ~Container();
  Container(const Container&) = delete;
  Container& operator=(const Container&) = delete;

  // Moves to the next regular file. False at the end.
  bool Next();
  // The file's name in the container, chosen by its author and not to be trusted. Empty when it has
  // none.
  const std::string& name() const;
  // The next bytes of the file; see NextBlock.
  std::string_view Block();

 private:
  struct State;
  const std::unique_ptr<State> state_;
};

}  // namespace zqv::cli
