// What is attached to a message, as files.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/file_name.h"
#include "cli/message.h"
#include "standin/handles.h"

namespace zqv::cli {

// Attachments and inline parts in the order of the parts that they describe.
class AttachedFiles {
 public:
  explicit AttachedFiles(const standin::Object& email);

  std::size_t count() const { return files_.size(); }
  // A clean name that no other of them has.
  const std::string& Name(std::size_t index) const { return files_[index].name; }
  // The file's bytes; nil stands for none.
  standin::String Data(std::size_t index) const;

 private:
  struct File {
    std::string name;
    standin::Object record;
  };

  std::vector<File> files_;
};

}  // namespace zqv::cli
