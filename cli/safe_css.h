// The style sheets and style attributes of a message, made fit to be looked at: nothing in them
// loads anything or reaches beyond the letter.
//
// What comes out is written anew, token by token, from rules, properties and functions that are
// known to do no harm, so that escapes ("\75rl(") and comments hide nothing. Left out are:
// - all at-rules but @media and @supports, such as @import, @font-face and @page;
// - functions that load, such as url(), src(), image-set() and expression(), with what is in them;
//   a url() stays when it is a picture that the message has;
// - the properties behavior and -moz-binding, which run code in old browsers, and position, which
//   takes text out of the letter's height;
// - rules that select what is around the letter (":host"), nested rules, and queries for paper,
//   with which a letter could look different when it is printed.
//
// A letter has no elements html and body of its own on the page; rules for them go to kLetterRoot
// and kLetterBody.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace zqv::cli {

inline constexpr std::string_view kLetterRoot = "zqv-html";
inline constexpr std::string_view kLetterBody = "zqv-body";

// Gives a data URI for the picture that a URL stands for, or an empty text.
using PictureAt = std::function<std::string(std::string_view url)>;

// The content of a style element. The result has no "<". Takes time in proportion to the input.
std::string SafeStyleSheet(std::string_view css, const PictureAt& picture);

// The value of a style attribute, without character references.
std::string SafeDeclarations(std::string_view css, const PictureAt& picture);

}  // namespace zqv::cli
