// A message as a JSON document: everything that the library's classes give, each thing once.
//
//   message     subject, date, received_date, plain_text, html_text, source, attachments, inlines,
//               parts
//   attachment  part (the number of the part it describes), filename, mime_type ... data
//   part        number, header, body, body_decoded; all parts in one list, parents first, with the
//               numbers of PartTree
//   header      its texts, sender, from, to, reply_to, cc, bcc, and all fields
//
// Every key is there, in this order; nil is null. Dates are "2024-04-16T14:02:05", in the machine's
// time zone as the library reckons it. Members are left out only when another one gives the same:
// Variants, single elements, and the Body and Header of an attachment.
#pragma once

#include <functional>
#include <nlohmann/json.hpp>

#include "standin/handles.h"

namespace zqv::cli {

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
