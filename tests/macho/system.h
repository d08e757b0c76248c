// The functions of macOS's system library that the loaded libraries call, in terms of this
// system's. Most are the same under the same name; the rest stands here.
#pragma once

#include <string>

namespace zqv::macho {

class Image;

// The function or variable of a symbol's name, or null when neither this folder nor this system
// has it.
void* FindSystemSymbol(const std::string& name);

// From now on exceptions find their way through the image, which must stay until it is removed.
void AddImage(const Image& image);

// Runs what the image has asked to be run at its end, the last first, and forgets the image.
void RemoveImage(const Image& image);

}  // namespace zqv::macho
