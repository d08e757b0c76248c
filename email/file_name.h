// What the file of a part is called, and the texts that describe the part in a list.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "mime/header.h"
#include "text/encoded_word.h"

namespace zqv::email {

// The names that a part's header offers, best first: the parameters "filename" of the
// Content-Disposition, "filename" and "name" of the Content-Type, "filename*" of the
// Content-Disposition, and last a made-up one. The first that is not empty is the file's name. Each
// is decoded when it is asked for.
class FileNames {
 public:
  // Both must outlive this.
  FileNames(const mime::Header& header, std::string_view decoded)
      : header_(header), decoded_(decoded) {}

  // The next name, which may be empty; nothing after the last. Borrows from all three.
  std::optional<text::HeaderText> Next();

 private:
  text::HeaderText MadeUp();

  const mime::Header& header_;
  std::string_view decoded_;
  std::string made_up_;
  int next_ = 0;
};

// The file name for a part whose header names none: the Content-ID without its angle brackets, or
// "attachment", with the extension that the data shows.
std::string MakeUpFileName(std::string content_id, std::string_view decoded);

// "type/subtype"; the one that is not empty when the other is.
std::string MimeTypeText(const mime::ContentType& content_type);

// Without leading blanks.
std::string_view TrimStart(std::string_view text);

}  // namespace zqv::email
