// Guesses the extension of a file from its content.
#pragma once

#include <string_view>

namespace zqv::email {

// Returns ".html", ".gif", ".bmp", ".png", ".tif" or ".jpg", depending on the first bytes of
// `data`. Returns an empty text when these bytes begin no such file, or `data` has fewer than 6.
std::string_view FindExtension(std::string_view data);

}  // namespace zqv::email
