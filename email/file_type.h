// What kind of file some bytes are, as far as a file name's extension needs it.
#pragma once

#include <string_view>

namespace zqv::email {

// ".html", ".gif", ".bmp", ".png", ".tif" or ".jpg" by the first bytes; empty when none fits.
std::string_view FindExtension(std::string_view data);

}  // namespace zqv::email
