// A message as a JSON document: everything that the library's classes give, each thing once.
//
//   message     what MimeEmailZQV gives; parts
//   attachment  part (the number of the part that it describes), what MimeAttachmentZQV gives
//   part        number, what MimeEntityZQV gives; all parts are in one list, parents first, with
//               the numbers of PartTree
//   others      what their class gives
//
// The registered classes say what they give: an object has a key for each property and then one for
// each method that returns a whole list, named like the member in snake case and in the order of
// registration. cli/document.cc lists the exceptions. Every key is there; nil is null. Dates are
// "2024-04-16T14:02:05", in the machine's time zone as the library reckons it. Members are left out
// only when another one gives the same: Variants, single elements, the Body and Header of an
// attachment, and the Parts of a body.
#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "standin/class_table.h"
#include "standin/handles.h"

namespace zqv::cli {

// One key of an object, and the member of its class that gives the value: a property or a method,
// the other is null. [borrowed from the class]
struct DocumentKey {
  std::string key;
  const standin::Property* property = nullptr;
  const standin::Method* method = nullptr;  // returns a list, has no parameters
  bool is_file = false;                     // can hold a file's bytes
};

// The keys of a class's own members in their order, without those of its super class.
std::vector<DocumentKey> DocumentKeys(const standin::ClassInfo& info);

// "html_text" of "HTMLText", "is_group" of "isGroup".
std::string SnakeCase(std::string_view name);

// How a host string is written; never called for nil.
using TextForm = std::function<nlohmann::ordered_json(const standin::String&)>;

// The text in UTF-8. Of a string that cannot be converted {"bytes": ..., "encoding": number}: each
// byte can be told from the bytes (standin::EscapeBytes).
nlohmann::ordered_json ReadableText(const standin::String& string);
// {"base64": the string's bytes, "encoding": number}
nlohmann::ordered_json RawText(const standin::String& string);

// null, for files that are left out.
nlohmann::ordered_json NoText(const standin::String& string);

// `email` is a MimeEmailZQV.
nlohmann::ordered_json DescribeMessage(const standin::Object& email, const TextForm& text);
// The same, but `files` writes what holds the bytes of files: the data of attachments and inline
// parts, the bodies of the parts that they describe, and the message's source.
nlohmann::ordered_json DescribeMessage(const standin::Object& email, const TextForm& text,
                                       const TextForm& files);

}  // namespace zqv::cli
