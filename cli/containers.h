// Files that hold messages in another form, compressed ones and archives, read by libarchive.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace zqv::cli {

// Gives the next bytes, valid until it is asked again; none at the end. May throw.
using NextBlock = std::function<std::string_view()>;

// Whether a file that begins with `start` is one that Container reads: gzip, bzip2, xz, zstd, zip
// or tar.
bool IsContainer(std::string_view start);

// The files in a container one after the other. A compressed file that is no archive counts as a
// container of one file without a name. Throws std::runtime_error for what cannot be read.
class Container {
 public:
  explicit Container(NextBlock source);
  ~Container();
  Container(const Container&) = delete;
  Container& operator=(const Container&) = delete;

  // Goes to the next plain file; false at the end.
  bool Next();
  // Its name in the container, which whoever made that has chosen; empty when it has none.
  const std::string& name() const;
  // The file's next bytes, as NextBlock.
  std::string_view Block();

 private:
  struct State;
  const std::unique_ptr<State> state_;
};

}  // namespace zqv::cli
