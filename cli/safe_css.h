// Sanitizes the style sheets and style attributes of a message: the result loads nothing and has no
// effect outside the message's text.
//
// The result is written anew, token by token, from known harmless rules, properties and functions.
// So escapes ("\75rl(") and comments cannot hide anything. It lacks: - all at-rules except @media
// and @supports, such as @import, @font-face and @page; - functions that load, such as url(),
// src(), image-set() and expression(), with their arguments; a url() stays if it is a picture in
// the message; - the properties behavior and -moz-binding, which run code in old browsers, and
// position, which takes text out of the layout that determines the message's height; - rules that
// select elements around the message (":host"), nested rules, and media queries for paper, by which
// a printed message could differ from the displayed one.
//
// On the page the message has no html and body elements of its own. Rules for them are applied to
// kMessageRoot and kMessageBody.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace zqv::cli {

inline constexpr std::string_view kMessageRoot = "zqv-html";
inline constexpr std::string_view kMessageBody = "zqv-body";

// A function that returns the data URI of the picture at a URL; empty when the message has none.
using PictureAt = std::function<std::string(std::string_view url)>;

// Sanitizes the content of a style element. The result contains no "<". Takes linear time.
std::string SafeStyleSheet(std::string_view css, const PictureAt& picture);

// Sanitizes the value of a style attribute, whose character references must have been decoded.
std::string SafeDeclarations(std::string_view css, const PictureAt& picture);

}  // namespace zqv::cli
