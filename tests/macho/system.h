// Functions of macOS's system library that the loaded libraries call. Most exist on this system
// under the same name; this file replaces the others.
#pragma once

#include <string>

namespace zqv::macho {

class Image;

// The function or variable for a symbol; null when there is neither a replacement nor one of this
// system.
void* FindSystemSymbol(const std::string& name);

// Lets exception handling find the tables of the image, until RemoveImage is called.
void AddImage(const Image& image);

// Runs the functions that the image registered for its end, the last one first, and removes it.
void RemoveImage(const Image& image);

}  // namespace zqv::macho
